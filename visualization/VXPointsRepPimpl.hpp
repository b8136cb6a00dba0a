#pragma once

#include "visualization/VXColoringSettings.hpp"
#include "visualization/VXOutlineRepPimpl.hpp"
#include "visualization/VXScalarColoring.hpp"

#include <kxcore/ColorPreset.hpp>

#include <QtCore/QSharedPointer>
#include <QtWidgets/QComboBox>

#include <KXComponents/ColorPresetsDialog.hpp>

#include <vtkGeometryFilter.h>
#include <vtkScalarBarRepresentation.h>
#include <vtkScalarBarWidget.h>

#include <map>
#include <set>

class ColorPresetsDialog;
class VXArrayHistogramWidget;
class VXCustomRangeDialog;
class VXLUTEditor;
class QComboBox;
class vtkDataArray;
class vtkDataSet;
class vtkGeometryFilter;
class vtkScalarBarRepresentation;
class vtkScalarBarWidget;

/**
 * The points data view in one render view: the data's own geometry drawn as
 * points, coloured by an array (component or magnitude) through this view's
 * lookup table, or by a solid colour. It adds the legend, categorical colours,
 * presets, custom range, the histogram hook and the decimated copy of the
 * geometry used while the camera moves. Wireframe and surface derive from it
 * and only change how the actor is drawn.
 */
class KXVTKLIB_EXPORT VXPointsRepPimpl
  : public VXOutlineRepPimpl
  , public VXScalarColoring
{
  Q_OBJECT

public:
  using ColorPreset = VXScalarColoring::ColorPreset;

  VXPointsRepPimpl(VXAbstractViewWidget* view, VXRepresentation* owner);
  ~VXPointsRepPimpl() override;

  bool initialize(vtkAlgorithmOutput* port) override;
  bool finalize() override;
  void write(nlohmann::json& output) const override;
  void read(const nlohmann::json& input) override;
  vtkAlgorithmOutput* outputPort() override;
  vtkAlgorithmOutput* inputPort() override;
  void buildSettingsPage() override;
  void connectParentColorSignals(bool trigger) override;
  void disconnectParentColorSignals() override;
  void setVisibility(bool visible) override;
  void copyFrom(VXRepresentationPimpl* other) override;
  void pasteSettingsFromClipboard() override;
  void saveDefaultSettings() override;
  void loadDefaultSettings() override;
  void openHelp() override;
  void updateToolTips() override;
  void useFullGeometry() override;
  void useDecimatedGeometry() override;
  virtual VXLookupTable* lookupTable() const { return m_LookupTable.data(); }

  /** Colours by the named array (point array before cell array); an empty name means none. */
  void setActiveArray(const QString& arrayName);
  /** Colours by a component of the active array; below -1 counts as -1, the magnitude. */
  void setActiveComponent(int component);
  int pointSize() const { return m_PointSize; }
  bool renderPointsAsSpheres() const { return m_RenderPointsAsSpheres; }
  /** The histogram of the settings page, null before the page is built. */
  VXArrayHistogramWidget* histogramWidget() const;
  vtkGeometryFilter* geometryFilter() const { return m_GeometryFilter; }
  vtkQuadricClustering* quadricClustering() const { return m_QuadricClustering; }
  /** Whether the mapper shows the decimated copy. */
  bool usingDecimatedGeometry() const { return m_UsingDecimatedGeometry; }

public Q_SLOTS:
  void receivePipelineOutputReloaded() override;
  void arrayNameComboTextChanged(QString text);
  void arrayNameComboIndexChanged(int index);
  void arrayComponentComboChanged(int index);
  /** The scalar mapping combo: the chosen mode lands in the active component field, as the host
   * expects. */
  void updateColorMode(int index);
  void updateArrayColoringChoices();
  void loadRGBPresetColors(kx::core::ColorTableUtilities::ColorPreset preset);
  void loadIndexedPresetColors(kx::core::ColorTableUtilities::ColorPreset preset);
  void restoreDefaultRgbPresetColors();
  void restoreDefaultIndexedPresetColors();
  void onDetachColorSettings(bool checked) override;
  void setColorMapInverted(bool inverted);
  void pointSizeChanged();
  void pointSizeEdited(QString text);
  void setRenderPointsAsSpheres(bool spheres);
  void setScalarBarVisibility(bool visible);
  void setScalarBarTitleText(QString arrayName);
  /** "Scale to Data": the finite range of the active component goes to the lookup table. */
  void rescaleToDataRange();
  void rescaleToCustomRange(double min, double max);
  /** "Custom Range": opens the range dialog; accepting it calls rescaleToCustomRange. */
  void openCustomRangeDialog();
  void setNanColor(QColor color);
  /** "Edit Color Map": opens the colour map editor on this view's table. */
  void editColorsButtonClicked();
  /**
   * The user edited the map in the editor: the edited map becomes this view's own preset
   * (continuous or categorical), kept in the state; a continuous map whose ends moved off the
   * data range keeps its range as the custom range. A view that followed its parent's colours
   * detaches from them, or the parent's next change would undo the edit.
   */
  void onColorMapEdited();
  void setUseSolidColor(bool checked);
  void setInterpretValuesAsCategories(bool categories);
  void setGenerateHistogram(bool generate);
  void decimateGeometry() override;
  void updateHistogram() override;
  void onSyncColorMapToParentGeometry() override;

Q_SIGNALS:
  /** The data of the histogram changed: the array, its component and the range in use. */
  void histogramDataChanged(vtkDataArray* array, int component, bool usingCustomRange,
                            double rangeMin, double rangeMax);
  /** The colour editor was asked for; hosts with a colour map editor open it. */
  void editColorMapRequested(VXLookupTable* table);

protected:
  /** The data set this view colours from: the parent's output. */
  vtkDataSet* inputDataSet() const;
  vtkDataArray* activeDataArray() const;
  /** Sets up the legend once and applies title, table and visibility. */
  void setupScalarBar();
  void syncControls() override;
  vtkDataSet* coloringDataSet() const override;
  void coloringTableChanged() override;
  void coloringHistogramChanged() override;
  void coloringRender() override;
  void refillComponentCombo();
  void loadPointsDefaults(QtKXSettings& settings);
  void savePointsDefaults(QtKXSettings& settings) const;

  vtkSmartPointer<vtkGeometryFilter> m_GeometryFilter;
  int m_PointSize = 1;
  bool m_RenderPointsAsSpheres = false;
  bool m_UsingDecimatedGeometry = false;

  QPointer<QComboBox> m_ArrayCombo;
  QPointer<QComboBox> m_ComponentCombo;
  QPointer<QCheckBox> m_SolidColorCheckBox;
  QPointer<QCheckBox> m_CategoriesCheckBox;
  QPointer<QPushButton> m_ColorPresetButton;
  QPointer<QPushButton> m_InvertColorBtn;
  QPointer<QPushButton> m_EditColorMapButton;
  QPointer<QPushButton> m_ScaleToDataButton;
  QPointer<QPushButton> m_CustomRangeButton;
  QPointer<QComboBox> m_ScalarMappingCombo;
  QPointer<QLineEdit> m_PointSizeEdit;
  QPointer<QCheckBox> m_SpheresCheckBox;
  QPointer<QCheckBox> m_LegendCheckBox;
  QPointer<QCheckBox> m_HistogramCheckBox;
  QPointer<VXArrayHistogramWidget> m_HistogramWidget;
};
