#pragma once

#include "KXVtkLib_export.h"

#include <nlohmann/json.hpp>

#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QString>
#include <QtGui/QColor>

#include <vtkCallbackCommand.h>
#include <vtkGridAxesActor3D.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkSmartPointer.h>
#include <vtkWeakPointer.h>

#include <array>
#include <initializer_list>
#include <vector>

class KXIconPushButton;
class QBoxLayout;
class QPushButton;
class QCheckBox;
class QElidedLabel;
class QFrame;
class QScrollArea;
class QWidget;
class vtkAlgorithm;
class QtKXSettings;
class VXAbstractViewWidget;
class VXFTransformFilterWidget;
class VXRepresentation;
class VXVisualizationWidget;
class vtkAlgorithmOutput;
class vtkCallbackCommand;
class vtkGridAxesActor3D;
class vtkObject;
class vtkProp;
class vtkProp3D;
class vtkRenderer;
class vtkRenderWindowInteractor;
class vtkTransform;

// views are named by pointer in signals; the meta-object code needs the full type
Q_MOC_INCLUDE("visualization/QtWidgets/VXAbstractViewWidget.hpp")

/**
 * The implementation of one data view in one render view. It owns everything
 * tied to that view's renderer (actors, mappers, colour map, legend, data axes
 * grid, local transform, settings page) and the settings that may differ from
 * one split of a view to the next. A VXRepresentation holds one of these per
 * view; a split copies the source's settings once (copyFrom) and they are
 * independent afterwards.
 */
class KXVTKLIB_EXPORT VXRepresentationPimpl : public QObject
{
  Q_OBJECT

public:
  /** @param view the render view this implementation draws in; @param owner the item, not owned. */
  VXRepresentationPimpl(VXAbstractViewWidget* view, VXRepresentation* owner);
  ~VXRepresentationPimpl() override;

  /** Builds the VTK chain on @p port and adds it to the view; false when nothing was added. */
  virtual bool initialize(vtkAlgorithmOutput* port) = 0;
  /** Takes everything out of the view; false when the view or renderer is gone. */
  virtual bool finalize() = 0;
  /** Writes this implementation's state keys. */
  virtual void write(nlohmann::json& output) const;
  /** Takes the state keys present in @p input; a key of the wrong type throws. */
  virtual void read(const nlohmann::json& input);
  virtual vtkAlgorithmOutput* outputPort() = 0;
  virtual vtkAlgorithmOutput* inputPort() = 0;
  virtual void buildSettingsPage() = 0;
  /** Follows the parent data source's colours; with @p trigger the source replays them at once. */
  virtual void connectParentColorSignals(bool trigger) = 0;
  virtual void disconnectParentColorSignals() = 0;
  virtual void bounds(double bounds[6]) = 0;
  virtual bool isVisible() const = 0;
  virtual void setVisibility(bool visible) = 0;
  virtual void copySettingsToClipboard() = 0;
  /** Takes the settings of another implementation of the same data view (a split). */
  virtual void copyFrom(VXRepresentationPimpl* other);
  virtual void pasteSettingsFromClipboard() = 0;
  /** Asks, then writes the current settings as defaults for this class. */
  virtual void saveDefaultSettings();
  /** Reads the defaults of this class; missing keys keep the constructor's values. */
  virtual void loadDefaultSettings();
  virtual void openHelp();
  /** The path name, the delimiter, "Split View " and the split id. */
  virtual QString splitViewName() const;
  virtual void setHighlighted(bool highlighted) = 0;
  virtual void updateToolTips() = 0;
  virtual void useFullGeometry() = 0;
  virtual void useDecimatedGeometry() = 0;
  /** Whether initialize() has built the chain in the view. */
  virtual bool isInitialized() const { return false; }

  VXAbstractViewWidget* view() const;
  VXVisualizationWidget* visualizationWidget() const;
  vtkRenderer* renderer() const;
  VXRepresentation* owner() const { return m_Owner; }
  /** The page of this implementation: title frame above the scroll area, built on first request. */
  QWidget* settingsWidget();
  QFrame* settingsTitleFrame() const;

  bool detachColorSettings() const { return m_DetachColorSettings; }
  bool isDataGridVisible() const { return m_DataGridVisible; }
  vtkGridAxesActor3D* gridAxes() const { return m_GridAxes; }
  std::array<double, 3> gridAxesSpacing() const { return m_GridSpacing; }
  bool gridLinesVisible() const { return m_GridLines; }
  QColor gridColor() const { return m_GridColor; }
  double gridOpacity() const;
  bool gridLabelsVisible() const { return m_GridLabels; }
  std::array<QString, 3> gridTitles() const { return m_GridTitles; }
  /** The custom label values last given to the grid for an axis; empty where VTK labels the axis.
   */
  std::vector<double> gridCustomLabels(int axis) const;
  void setGridAxesOptions(const std::array<double, 3>& spacing, bool gridLines, const QColor& color,
                          double opacity, bool labels, const std::array<QString, 3>& titles);
  int splitId() const { return m_SplitId; }
  bool isLinked() const { return m_Linked; }
  void setLinked(bool linked) { m_Linked = linked; }
  bool showBoxTool() const { return m_ShowBoxTool; }
  /** The "Transform" section's widget; null until the data view is shown or its page built. */
  VXFTransformFilterWidget* transformWidget() const;
  /** The bounds of the data this view shows, before its local transform. */
  std::array<double, 6> inputBounds();
  /**
   * The local transform as applied to the actors: the box tool's while it exists, else scale and
   * rotation (Z, X, then Y) about the data's centre followed by the translation.
   */
  vtkSmartPointer<vtkTransform> localTransform();
  std::array<double, 3> translation() const { return m_Translation; }
  std::array<double, 3> rotation() const { return m_Rotation; }
  std::array<double, 3> scale() const { return m_Scale; }
  bool linkPhysicalUnits() const { return m_LinkPhysicalUnits; }
  bool useDecimationOnInteraction() const { return m_UseDecimationOnInteraction; }
  std::array<int, 3> numberOfDimensions() const { return m_DecimationDivisions; }
  QString helpUrl() const { return m_HelpUrl; }

  static inline const QString k_NoTransformGeometryTitle =
    QStringLiteral("Cannot Create Apply Transformation Filter");
  static inline const QString k_NoTransformGeometryText =
    QStringLiteral("Cannot create an Apply Transformation filter from %1 because no parent "
                   "geometry could be found.");
  static inline const QString k_IdentityTransformText = QStringLiteral(
    "%1 has no transform (translation 0, rotation 0, scale 1): there is nothing to hand to the "
    "host.");

  /** The settings group of a data view class:
   * VisualizationSettings/RepresentationSettings/<typeName>. */
  static void BeginSettingsGroup(QtKXSettings& settings, const QString& typeName);

public Q_SLOTS:
  virtual void receivePipelineOutputReloaded() = 0;
  /** Shows or hides the data axes grid of this implementation, creating it on first use. */
  void setDataGridVisibility(bool visible);
  void updateGridAxesBounds();
  void show();
  void hide();
  virtual void onSyncColorMapToParentGeometry() = 0;
  virtual void applyTransform() = 0;
  virtual void setTransform(const std::array<double, 3>& translation,
                            const std::array<double, 3>& rotation,
                            const std::array<double, 3>& scale);
  void setTranslation(const std::array<double, 3>& translation);
  void setRotation(const std::array<double, 3>& rotation);
  void setScale(const std::array<double, 3>& scale);
  /** Shows or hides the transform box tool in this view. */
  void setShowBoxTool(bool show);
  /**
   * Asks the host to move its own geometry by this data view's local transform: the geometry
   * of the parent data source and the 4x4 matrix go out through
   * VXPipeline::createApplyTransformationGeometryFilter. Without a host geometry the user is
   * told so and nothing goes out.
   */
  void createApplyTransformationGeometryFilter();
  void setNumberOfDimensions(std::array<int, 3> dimensions);
  void setUseInputPoints(bool use);
  void setUseFeatureEdges(bool use);
  void setUseFeaturePoints(bool use);
  void setUseInternalTriangles(bool use);
  void setUseDecimationOnInteraction(bool use);
  virtual void decimateGeometry() = 0;
  virtual void updateHistogram() = 0;
  /** Applies spacing, grid lines, colour, opacity, labels and titles to the grid actor. */
  void setCustomGridAxesOptions();
  /** The grid options dialog belongs to the render widget's module; nothing to open here yet. */
  void showEditGridAxesDialog();

Q_SIGNALS:
  void showTransformBoxChanged(bool shown);

protected:
  /**
   * After each run of the algorithm that feeds this view's mapper: the coarse copy used while
   * interacting and the histogram follow the new data.
   */
  void observeDataUpdates(vtkAlgorithm* algorithm);
  /** Asks the view for one frame. */
  void requestRender();
  /** Puts @p prop into the view or takes it out (with @p highlight), keeps the page's eye button in
   * step and asks for a frame; the scene is left alone until @p initialized. */
  void setPropVisibility(vtkProp* prop, vtkProp* highlight, bool visible, bool initialized);
  /** Shows @p highlight in the view while the data view is selected and visible. */
  void setPropHighlighted(vtkProp* highlight, bool highlighted);
  /** The local transform onto @p props (a copy each, so a later change never moves them). */
  void applyTransformTo(std::initializer_list<vtkProp3D*> props);
  /** The transform widget, created (without a parent) if missing; pages put it in their
   * "Transform" section. */
  VXFTransformFilterWidget* ensureTransformWidget();
  /** Deletes the transform widget and its box tool, as the data view leaves the view. */
  void releaseTransformWidget();
  /** A button of the settings page with a theme icon (null: none), added to @p row. */
  static QPushButton* addPageButton(QBoxLayout* row, const char* icon, const QString& text,
                                    const QString& objectName);
  /** Creates the grid actor if missing and puts it in the renderer when both flags are on. */
  void setupGridAxes();
  /** The title row of the page: eye, help, save-defaults and grid buttons beside the name. */
  void initializeSettingsTitle();
  /** The display name used in the title-row tooltips and the save question. */
  QString displayName() const;
  /** Reads the base keys from an open group. */
  void loadBaseDefaults(QtKXSettings& settings);
  void saveBaseDefaults(QtKXSettings& settings) const;
  /** True when the user agreed to overwrite the defaults. */
  bool askSaveDefaults() const;
  /** Writes the JSON of this implementation to the clipboard. */
  void writeToClipboard() const;
  /** The clipboard's JSON object, or null when the text is no JSON object. */
  static nlohmann::json readClipboard();

  static void OnInteractionEvent(vtkObject* caller, unsigned long eventId, void* clientData,
                                 void* callData);

  bool m_DetachColorSettings = true;
  bool m_DataGridVisible = false;
  bool m_Visible = true;
  vtkSmartPointer<vtkGridAxesActor3D> m_GridAxes;
  QPointer<VXAbstractViewWidget> m_View;
  QPointer<QWidget> m_SettingsWidget;
  QPointer<QScrollArea> m_SettingsScrollArea;
  QPointer<QFrame> m_SettingsTitleFrame;
  QPointer<KXIconPushButton> m_VisibilityButton;
  QPointer<KXIconPushButton> m_HelpButton;
  QPointer<KXIconPushButton> m_SaveDefaultsButton;
  QPointer<QElidedLabel> m_TitleLabel;
  QPointer<KXIconPushButton> m_GridAxesButton;
  QPointer<KXIconPushButton> m_GridAxesEditButton;
  bool m_ShowBoxTool = false;
  std::array<double, 3> m_Translation = { 0.0, 0.0, 0.0 };
  std::array<double, 3> m_Rotation = { 0.0, 0.0, 0.0 };
  std::array<double, 3> m_Scale = { 1.0, 1.0, 1.0 };
  QPointer<VXFTransformFilterWidget> m_TransformWidget;
  QString m_HelpUrl;
  int m_SplitId = 1;
  bool m_Linked = false;
  std::array<double, 3> m_GridSpacing = { 0.0, 0.0, 0.0 };
  bool m_GridLines = false;
  QColor m_GridColor = Qt::white;
  double m_GridOpacity = 1.0;
  bool m_GridLabels = true;
  std::array<QString, 3> m_GridTitles;
  std::array<std::vector<double>, 3> m_GridCustomLabels;
  bool m_LinkPhysicalUnits = false;
  std::array<int, 3> m_DecimationDivisions = { 50, 50, 50 };
  bool m_UseInputPoints = true;
  bool m_UseFeatureEdges = false;
  bool m_UseFeaturePoints = false;
  bool m_UseInternalTriangles = false;
  bool m_UseDecimationOnInteraction = false;
  bool m_DecimationOutOfDate = true;
  unsigned long m_PressObserverTag = 0;
  unsigned long m_EndInteractionObserverTag = 0;
  vtkWeakPointer<vtkRenderWindowInteractor> m_Interactor;
  vtkSmartPointer<vtkCallbackCommand> m_PressCallback;
  vtkSmartPointer<vtkCallbackCommand> m_EndInteractionCallback;
  VXRepresentation* m_Owner = nullptr;
};
