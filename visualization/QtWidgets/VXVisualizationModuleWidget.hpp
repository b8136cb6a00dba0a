#pragma once

#include "KXVtkLib_export.h"

#include <kxcore/DataPath.hpp>
#include <KX/ArrayThresholdRange.hpp>

#include <nlohmann/json.hpp>

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QMetaObject>
#include <QtCore/QModelIndex>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtGui/QImage>
#include <QtWidgets/QWidget>

#include <array>
#include <memory>
#include <vector>

namespace Ui
{
class VXVisualizationModuleWidget;
}

class VXAbstractViewWidget;
class VXInfoWidget;
class VXPipeline;
class VXPipelineModel;
class VXViewGridWidget;

/**
 * The visualization module as the host shows it: the grid of render views
 * beside the pipeline browser. It owns the pipeline and its item model, tracks
 * the active view, takes dropped files, and reads and writes state files and
 * presets. Everything runs in the host's GUI event loop.
 */
class KXVTKLIB_EXPORT VXVisualizationModuleWidget : public QWidget
{
  Q_OBJECT

public:
  explicit VXVisualizationModuleWidget(QWidget* parent = nullptr);
  ~VXVisualizationModuleWidget() override;

  VXPipeline* pipeline() const { return m_Pipeline; }
  VXPipelineModel* pipelineModel() const { return m_PipelineModel; }
  VXInfoWidget* getInfoWidget() const;
  VXViewGridWidget* getViewGridWidget() const;
  VXAbstractViewWidget* getActiveViewWidget() const { return m_ActiveView; }
  QList<VXAbstractViewWidget*> getAllViewWidgets() const;
  /** True when the tree has items and all their files are present. */
  bool canSaveState() const;
  void readSettings();
  void writeSettings();
  /** One image of all views, each where it stands in the grid. */
  QImage grabAllViewsImage();
  /** The window index each view had in the last state written or read. */
  QMap<VXAbstractViewWidget*, int> viewIndexMap() const { return m_ViewIndexMap; }

Q_SIGNALS:
  void changedActiveView(VXAbstractViewWidget* viewWidget);
  void visualizationActive();
  void printOutput(QString message);
  void createMultiThresholdObjectsFilter(kx::core::DataPath geometryPath,
                                         std::vector<KX::ArrayThresholdRange> ranges);
  void createApplyTransformationGeometryFilter(
    kx::core::DataPath geometryPath, const std::array<std::array<double, 4>, 4>& transformMatrix);
  void presetAdded(QString presetName);
  void loadStateRequested(QString filePath);

public Q_SLOTS:
  void renderActiveView();
  void renderAllViews();
  void setBlockRender(bool block);
  void connectViewWidget(VXAbstractViewWidget* viewWidget);
  void equalizeViewWidths();
  void equalizeViewHeights();
  void linkAllViews();
  void unlinkAllViews();
  void saveAllViewsScreenshot();
  void copyAllViewsToClipboard();
  void popupMessage(QString title, QString message);
  void saveState();
  void saveState(nlohmann::json& output);
  void loadState();
  void loadState(QString filePath);
  void loadState(nlohmann::json& input);
  void createPreset(QModelIndex dataSourceIndex, QString presetName, bool saveSplitViewState);
  void applyPreset(QModelIndex parentIndex, QString presetName);
  void exportPresets(QString filePath, QStringList presetNames);
  void importPresets(QString filePath);

protected Q_SLOTS:
  void setActiveView(VXAbstractViewWidget* viewWidget);
  void activeViewClosed(VXAbstractViewWidget* closedView);
  void clearAllRenderWindowHighlighters();
  void onLinkingDataViews(bool isLinking);

protected:
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void showEvent(QShowEvent* event) override;

private:
  void clearSplitViewState();
  void fillViewIndexMap();
  void applyDefaultSplitterSizes();
  void addPresetToSettings(const QString& presetName, const nlohmann::json& preset);
  nlohmann::json getPresetJson(const QString& presetName);
  bool anyViewLinked() const;

  std::shared_ptr<Ui::VXVisualizationModuleWidget> ui;
  VXPipeline* m_Pipeline = nullptr;
  VXPipelineModel* m_PipelineModel = nullptr;
  VXAbstractViewWidget* m_ActiveView = nullptr;
  std::vector<QMetaObject::Connection> m_ActiveViewConnections;
  QMap<VXAbstractViewWidget*, int> m_ViewIndexMap;
  QByteArray m_SplitterState;
  bool m_SplitterRestored = false;
};
