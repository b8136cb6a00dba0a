#pragma once

#include "visualization/VXCoreObject.hpp"

#include <QtCore/QMap>
#include <QtCore/QSharedPointer>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

class VXDataSource;
class VXDatasetInfoWidget;
class VXPipeline;
class VXRepresentationPimpl;

// views are named by pointer in signals; the meta-object code needs the full type
Q_MOC_INCLUDE("visualization/QtWidgets/VXAbstractViewWidget.hpp")

/**
 * A data view: a leaf of the pipeline tree showing its parent's output in the
 * render views. The item exists once (name, tree position, dataset info); the
 * drawing lives in one VXRepresentationPimpl per render view, so each split of
 * a view can style the same data its own way. This is also the registry through
 * which the pipeline creates data views by type.
 */
class KXVTKLIB_EXPORT VXRepresentation : public VXCoreObject
{
  Q_OBJECT

public:
  enum Type : std::uint32_t
  {
    None = 0,
    Outline = 1,
    Points = 2,
    Wireframe = 3,
    Surface = 4,
    ImageSlice = 5,
    Volume = 6,
    Glyph = 7
  };

  /** User strings of the types, both ways. */
  static const QMap<QString, Type> k_RepresentationStringToType;
  static const QMap<Type, QString> k_RepresentationTypeToString;

  using Factory = std::function<VXRepresentation*(VXPipeline*)>;
  /** Makes the data view class of a type available to the pipeline. */
  static void RegisterType(Type type, Factory factory);
  /** A new data view of the type, or null when no class is registered for it. */
  static VXRepresentation* Create(Type type, VXPipeline* pipeline);
  static bool IsRegistered(Type type);
  /** Registers the outline, points, wireframe, surface, image slice, volume and glyph data views
   * (done once when the library loads). */
  static void RegisterBuiltInRepresentations();

  /** Implementations by view, in address order of the views. */
  using ImplementationMap = QMap<VXAbstractViewWidget*, std::shared_ptr<VXRepresentationPimpl>>;

  explicit VXRepresentation(VXPipeline* pipeline, const QString& defaultName,
                            QObject* parent = nullptr);
  ~VXRepresentation() override;

  /** Writes the name, its suffix and one object per implementation (with its view index). */
  void write(nlohmann::json& output,
             const QMap<VXAbstractViewWidget*, int>& viewIndices) const override;
  /** Reads the name and the implementations of the views that exist; creates missing ones hidden.
   */
  void read(const nlohmann::json& input, const QMap<int, VXAbstractViewWidget*>& views) override;
  /** Finalizes every implementation; true only if all of them succeed. */
  bool finalize() override;
  /** The active view's page, rebuilt on each call. */
  QWidget* settingsWidget() override;
  void initializeSettingsWidget() override;
  /** Visibility in the active view; false where this data view has no implementation. */
  bool isVisible() const override;
  /** Shows or hides in the active view, creating an implementation there if needed. */
  void setVisibility(bool visible) override;
  void copyActiveSettings() const override;
  void pasteToActiveSettings() override;
  void updatePath() override;
  void receivePipelineOutputReloaded() override;
  /** A split view gets a hidden copy of the source view's implementation. */
  void addViewWidgetCopy(VXAbstractViewWidget* sourceViewWidget,
                         VXAbstractViewWidget* splitViewWidget) override;
  void activeViewChanged(VXAbstractViewWidget* previousActiveView,
                         VXAbstractViewWidget* currentActiveView) override;

  virtual Type type() const = 0;
  /** Creates the per-view implementations for the views this item knows, over the port. */
  virtual void initializeImplementations(vtkAlgorithmOutput* inputPort) = 0;
  /**
   * Adds an implementation in @p view. With @p sourceView (a split) the new one
   * copies that view's settings. A port is only taken for the first instance.
   * False when none was added.
   */
  virtual bool addViewInstance(VXAbstractViewWidget* sourceView, VXAbstractViewWidget* view,
                               vtkAlgorithmOutput* inputPort, bool visible) = 0;
  virtual void showDataSetInfoWidget();
  /** Hands the first implementation's data to the dataset info widget. */
  virtual void updateDataSetInfo() = 0;
  virtual void initializeDataSetInfoWidget();

  /** Adds an implementation in every view the item knows. */
  virtual void initializeViewWidgetSplits(vtkAlgorithmOutput* port, bool visible);
  QSharedPointer<VXDatasetInfoWidget> getDataSetInfoWidget();
  /** The implementations in map order. */
  std::vector<VXRepresentationPimpl*> getDataViewSplits() const;
  /** The implementation in a view, or null. */
  VXRepresentationPimpl* implementation(VXAbstractViewWidget* view) const;
  /** The implementation in the pipeline's active view, or null. */
  VXRepresentationPimpl* activeImplementation() const;
  const ImplementationMap& viewImplementations() const { return m_ViewImplementations; }
  void highlightInRenderWindows(bool highlighted);
  bool isHighlighted() const { return m_Highlighted; }

  void setParentSource(VXCoreObject* parent);
  VXCoreObject* parentSource() const { return m_ParentSource; }
  VXDataSource* parentDataSource() const;
  QString defaultName() const { return m_DefaultName; }
  /** Drops the implementation of one view. */
  void removeModuleInstance(VXAbstractViewWidget* view);

public Q_SLOTS:
  void renderAll();
  /** Asks the pipeline to remove this data view. */
  void removeModule();
  void updateGridAxesBounds();

Q_SIGNALS:
  void canHoverInfo(int allowHoverInfo);
  void requestLinkViews(VXRepresentationPimpl* repToLink);
  void requestUnlinkViews(VXRepresentationPimpl* repToUnlink);

protected:
  /** The view's signal that a split is being made reaches this item. */
  void connectViewSignals(VXAbstractViewWidget* view);
  /** A new implementation of this class's own kind for a view; null where the class makes none. */
  virtual std::shared_ptr<VXRepresentationPimpl> createImplementation(VXAbstractViewWidget* view);
  /** Whether an existing implementation is of the kind this class drives. */
  virtual bool isOwnImplementation(VXRepresentationPimpl* implementation) const;
  /** The rules of addViewInstance for classes whose implementations come from
   * createImplementation: a split copies its source view, later instances share the first one's
   * input. */
  bool addImplementationInView(VXAbstractViewWidget* sourceView, VXAbstractViewWidget* view,
                               vtkAlgorithmOutput* inputPort, bool visible);
  /** Initializes every implementation not yet initialized, over @p inputPort or the parent's
   * output. */
  void initializePendingImplementations(vtkAlgorithmOutput* inputPort);

  ImplementationMap m_ViewImplementations;
  QSharedPointer<VXDatasetInfoWidget> m_DataSetInfoWidget;
  QString m_DefaultName;
  bool m_Highlighted = false;

private:
  VXCoreObject* m_ParentSource = nullptr;
};
