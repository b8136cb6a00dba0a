#pragma once

#include "KXVtkLib_export.h"
#include "visualization/VXRepresentation.hpp"

#include <KX/ArrayThresholdRange.hpp>
#include <kxcore/DataPath.hpp>
#include <kxcore/DataStructure.hpp>

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QString>

#include <array>
#include <memory>
#include <vector>

#include "visualization/VXBridgeObject.hpp"
#include "visualization/VXDataSource.hpp"
#include "visualization/VXFilter.hpp"
#include "visualization/VXGlobalSource.hpp"

namespace KX
{
class IPipelineController;
}

// views are named by pointer in signals; the meta-object code needs the full type
Q_MOC_INCLUDE("visualization/QtWidgets/VXAbstractViewWidget.hpp")

/**
 * The one object all items of a visualization module hang from. It makes the
 * bridges, adds filters, data views and global sources, forwards their
 * messages to the host, holds the active render view, and chooses the data
 * view a new data source gets.
 */
class KXVTKLIB_EXPORT VXPipeline : public QObject
{
  Q_OBJECT

public:
  /** Suppresses default data views while a state file is read; scopes nest. */
  class KXVTKLIB_EXPORT StateLoadScope
  {
  public:
    explicit StateLoadScope(VXPipeline& pipeline);
    ~StateLoadScope();
    StateLoadScope(const StateLoadScope&) = delete;
    StateLoadScope& operator=(const StateLoadScope&) = delete;

  private:
    VXPipeline& m_Pipeline;
    bool m_Previous;
  };

  explicit VXPipeline(QObject* parent = nullptr);
  ~VXPipeline() override;

  bool importPipelineOutput(KX::IPipelineController* controller,
                            std::shared_ptr<kx::core::DataStructure>& structure);
  /** Updates the bridge of the same host pipeline, or imports when there is none. */
  bool reloadPipelineOutput(KX::IPipelineController* controller,
                            std::shared_ptr<kx::core::DataStructure>& structure);
  /** Adds a bridge made elsewhere (e.g. by the state loader). */
  bool addVXBridgeObject(VXBridgeObject* bridge);
  void connectVXBridgeObject(const VXBridgeObject* bridge);
  bool addFilter(VXCoreObject* parent, VXFilter* filter);
  bool addRepresentation(VXCoreObject* parent, VXRepresentation::Type type);
  bool addRepresentation(VXCoreObject* parent, VXRepresentation* representation);
  bool addLoadedRepresentation(VXCoreObject* parent, VXRepresentation* representation);
  bool addGlobalSource(VXGlobalSource* source);

  VXAbstractViewWidget* activeViewWidget() const;
  void setActiveViewWidget(VXAbstractViewWidget* view);
  void setDataOnlyMode(bool dataOnly) { m_DataOnlyMode = dataOnly; }
  bool isDataOnlyMode() const { return m_DataOnlyMode; }
  bool isLoadingState() const { return m_LoadingState; }
  QList<VXBridgeObject*> bridges() const { return m_Bridges; }
  QList<VXGlobalSource*> globalSources() const { return m_GlobalSources; }

  /** The data view type a data set gets by default, from the defaults below. */
  static VXRepresentation::Type DefaultRepresentationType(vtkDataSet* dataSet);

  static VXRepresentation::Type getDefaultRepType();
  static void setDefaultRepType(VXRepresentation::Type type);
  static VXRepresentation::Type getDefaultImageGeomRepType();
  static void setDefaultImageGeomRepType(VXRepresentation::Type type);
  static VXRepresentation::Type getDefaultRectGridRepType();
  static void setDefaultRectGridRepType(VXRepresentation::Type type);
  static VXRepresentation::Type getDefaultVertexRepType();
  static void setDefaultVertexRepType(VXRepresentation::Type type);
  static VXRepresentation::Type getDefaultEdgeRepType();
  static void setDefaultEdgeRepType(VXRepresentation::Type type);
  static VXRepresentation::Type getDefaultTriangleRepType();
  static void setDefaultTriangleRepType(VXRepresentation::Type type);
  static VXRepresentation::Type getDefaultQuadRepType();
  static void setDefaultQuadRepType(VXRepresentation::Type type);
  static VXRepresentation::Type getDefaultTetRepType();
  static void setDefaultTetRepType(VXRepresentation::Type type);
  static VXRepresentation::Type getDefaultHexRepType();
  static void setDefaultHexRepType(VXRepresentation::Type type);
  static QString getDefaultPreset();
  static void setDefaultPreset(const QString& presetName);

public Q_SLOTS:
  bool importFile(const QString& filePath);
  void onDataSourceAdded(VXDataSource* source);
  void onDataSourceRemoved(VXDataSource* source);
  void pipelineBridgeRemoved(VXBridgeObject* bridge);
  void globalSourceRemoved(VXGlobalSource* source);

Q_SIGNALS:
  void pipelineBridgeAdded(VXBridgeObject* bridge);
  void dataSourceAdded(VXDataSource* source);
  void dataSourceRemoved(VXDataSource* source);
  void pipelineOutputReloaded();
  void filterAdded(VXFilter* filter);
  void representationAdded(VXRepresentation* representation);
  void removeModule(VXRepresentation* representation);
  void removeDataSource(VXDataSource* source);
  void sendOutputMessage(QString message);
  void sendPopupMessage(QString title, QString message);
  void requestRenderAll();
  void activeViewChanged(VXAbstractViewWidget* previousActiveView,
                         VXAbstractViewWidget* currentActiveView);
  void representationViewInstanceAdded();
  void createMultiThresholdObjectsFilter(kx::core::DataPath geometryPath,
                                         std::vector<KX::ArrayThresholdRange> ranges);
  void createApplyTransformationGeometryFilter(
    kx::core::DataPath geometryPath, const std::array<std::array<double, 4>, 4>& transformMatrix);
  void linkingDataViews(bool isLinking);

private:
  void addBridge(VXBridgeObject* bridge);

  QList<VXBridgeObject*> m_Bridges;
  QList<VXGlobalSource*> m_GlobalSources;
  QPointer<VXAbstractViewWidget> m_ActiveViewWidget;
  bool m_DataOnlyMode = false;
  bool m_LoadingState = false;
};
