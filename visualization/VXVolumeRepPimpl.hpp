#pragma once

#include "visualization/VXColoringSettings.hpp"
#include "visualization/VXRepresentationPimpl.hpp"
#include "visualization/VXVolumeComponentReduceFilter.hpp"

#include <kxcore/ColorPreset.hpp>

#include <QtCore/QSharedPointer>
#include <QtWidgets/QWidget> // control<W>() searches the page

#include <vtkActor.h>
#include <vtkPiecewiseFunction.h>
#include <vtkScalarBarWidget.h>
#include <vtkSmartPointer.h>
#include <vtkNew.h>
#include <vtkSmartVolumeMapper.h>
#include <vtkTable.h>
#include <vtkVolume.h>
#include <vtkVolumeProperty.h>

#include <array>
#include <map>

class ColorPresetsDialog;
class QComboBox;
class QFormLayout;
class QPushButton;
class QCheckBox;
class QVBoxLayout;
class VXCustomRangeDialog;
class VXColorMapEditorWidget;
class VXHistogramOpacityWidget;
class VXLookupTable;
class VXDataSource;
class vtkDataArray;
class vtkImageData;
class vtkScalarBarRepresentation;

/**
 * The volume data view in one render view: the image drawn by vtkSmartVolumeMapper. Each array
 * keeps its own lookup table, opacity function and custom range, so switching arrays and back
 * restores what the user set. A multi-component array goes through a reduce filter (one
 * component or the magnitude); a one-component array goes to the mapper as it is.
 */
class KXVTKLIB_EXPORT VXVolumeRepPimpl : public VXRepresentationPimpl
{
  Q_OBJECT

public:
  using ColorPreset = kx::core::ColorTableUtilities::ColorPreset;
  /** The range the user chose for an array, and whether it is in use. */
  struct CustomRange
  {
    bool used = false;
    double min = 0.0;
    double max = 1.0;
  };

  static inline const QString k_InvalidTextureTitle = QStringLiteral("Invalid Texture dimensions");
  static inline const QString k_InvalidTextureText = QStringLiteral(
    "The data set dimensions are %1 x %2 x %3 and the system's max texture size as report by the "
    "GPU is %4. ALL dimensions of the data set MUST be below that value.");
  static inline const QString k_ResetTitle = QStringLiteral("Resetting color map");
  static inline const QString k_ResetText = QStringLiteral(
    "Resetting all color transfer function and opacity function settings back to the defaults. "
    "Any current settings will be lost. Are you sure you want to reset?");

  VXVolumeRepPimpl(VXAbstractViewWidget* view, VXRepresentation* owner);
  ~VXVolumeRepPimpl() override;

  bool initialize(vtkAlgorithmOutput* port) override;
  bool finalize() override;
  void write(nlohmann::json& output) const override;
  void read(const nlohmann::json& input) override;
  vtkAlgorithmOutput* outputPort() override;
  vtkAlgorithmOutput* inputPort() override;
  void buildSettingsPage() override;
  void connectParentColorSignals(bool trigger) override;
  void disconnectParentColorSignals() override;
  void bounds(double bounds[6]) override;
  bool isVisible() const override { return m_Visible; }
  void setVisibility(bool visible) override;
  void copySettingsToClipboard() override;
  void copyFrom(VXRepresentationPimpl* other) override;
  void pasteSettingsFromClipboard() override;
  void saveDefaultSettings() override;
  void loadDefaultSettings() override;
  void setHighlighted(bool highlighted) override;
  void updateToolTips() override;
  void useFullGeometry() override {}
  void useDecimatedGeometry() override {}
  bool isInitialized() const override { return m_Initialized; }

  vtkVolume* volume() const { return m_Volume; }
  vtkSmartVolumeMapper* volumeMapper() const { return m_VolumeMapper; }
  VXVolumeComponentReduceFilter* reduceFilter() const { return m_ReduceFilter; }
  vtkVolumeProperty* volumeProperty() const { return m_VolumeProperty; }
  vtkActor* highlightActor() const { return m_HighlightActor; }
  QString activeArray() const { return m_ActiveArray; }
  int activeComponent() const { return m_ActiveComponent; }
  QString legendTitle() const { return m_LegendTitle; }
  bool showLegend() const { return m_ShowLegend; }
  bool colorMapInverted() const { return m_ColorMapInverted; }
  bool usingDefaultPreset() const { return m_UsingDefaultPreset; }
  ColorPreset colorPreset() const { return m_ColorPreset; }
  /** The table, opacity function and range of an array; null or default where none was made. */
  VXLookupTable* lookupTable(const QString& arrayName) const;
  vtkPiecewiseFunction* opacityFunction(const QString& arrayName) const;
  CustomRange customRange(const QString& arrayName) const;
  VXCustomRangeDialog* customRangeDialog() const { return m_CustomRangeDialog.data(); }
  vtkScalarBarWidget* scalarBarWidget() const { return m_ScalarBarWidget; }
  /** The drawn array's 200-bin histogram: bin centres and "image_pops" counts. */
  vtkTable* histogramTable() const { return m_HistogramTable; }
  /** The data the mapper draws from: the input, or the reduce filter's output. */
  vtkImageData* inputImage() const;
  /** The histogram with the opacity function over it, on the settings page; null before it. */
  VXHistogramOpacityWidget* opacityEditor() const;
  /** The editor of the active array's colours on the settings page; null before the page. */
  VXColorMapEditorWidget* colorMapEditor() const;
  /** A control of the settings page by object name (for hosts and tests). */
  template<typename W>
  W* control(const QString& name) const
  {
    return m_SettingsWidget != nullptr ? m_SettingsWidget->template findChild<W*>(name) : nullptr;
  }

public Q_SLOTS:
  void receivePipelineOutputReloaded() override;
  void arrayNameComboChanged(QString text);
  void arrayComponentComboChanged(int index);
  void updateArrayColoringChoices();
  void loadPresetColors(kx::core::ColorTableUtilities::ColorPreset preset);
  void restoreDefaultPresetColors();
  void setColorMapInverted(bool inverted);
  /** Colours by the named array; its own table and opacity function come back. */
  void setActiveArray(const QString& arrayName);
  /** A component of the active array; below -1 counts as -1, the magnitude. */
  void setActiveComponent(int component);
  /** "Scale to Data": the data range of the active component for the table and the opacity. */
  void rescaleToDataRange();
  void rescaleToCustomRange(double min, double max);
  void openCustomRangeDialog();
  /** "Reset": asks, then gives the active array a default table, opacity function and range. */
  void resetColorAndOpacity();
  void setScalarBarVisibility(bool visible);
  void onSyncColorMapToParentGeometry() override;
  void applyTransform() override;
  void decimateGeometry() override {}
  void updateHistogram() override;

Q_SIGNALS:
  /** The colour or opacity function of the active array changed (editors redraw). */
  void transferFunctionsChanged();
  /** The histogram of the drawn array was computed again. */
  void histogramChanged(vtkTable* table);

private:
  VXDataSource* parentDataSource() const;
  vtkDataArray* findArray(vtkImageData* image, const QString& name, bool* isCellArray) const;
  /** Checks the image against the texture limit; shows the message when it does not fit. */
  bool checkTextureLimit(vtkImageData* image);
  /** The finite data range of the active array's component, or the image's scalar range. */
  std::array<double, 2> dataRange() const;
  /** Makes the active array's table and opacity function if missing, over @p range. */
  void ensureFunctions(const std::array<double, 2>& range);
  /** The active array's functions onto the volume property and the legend. */
  void applyFunctions();
  /** Moves the opacity points to a new range, keeping their relative positions. */
  static void rescaleOpacity(vtkPiecewiseFunction* function, double min, double max);
  void setupScalarBar();
  void refillComponentCombo();
  void syncControls();
  void applyPresetTo(VXLookupTable* table) const;

  vtkSmartPointer<vtkVolume> m_Volume;
  vtkSmartPointer<vtkSmartVolumeMapper> m_VolumeMapper;
  vtkSmartPointer<VXVolumeComponentReduceFilter> m_ReduceFilter;
  vtkSmartPointer<vtkVolumeProperty> m_VolumeProperty;
  vtkSmartPointer<vtkActor> m_HighlightActor;
  vtkSmartPointer<vtkAlgorithmOutput> m_InputPort;
  std::map<QString, QSharedPointer<VXLookupTable>> m_ArrayLookupTables;
  std::map<QString, vtkSmartPointer<vtkPiecewiseFunction>> m_ArrayOpacityFunctions;
  std::map<QString, CustomRange> m_ArrayCustomRanges;
  QString m_ActiveArray;
  int m_ActiveComponent = -1;
  bool m_ColorMapInverted = false;
  ColorPreset m_ColorPreset;
  bool m_UsingDefaultPreset = true;
  bool m_ShowLegend = true;
  std::array<double, 2> m_LegendPosition = VXColoringSettings::k_DefaultLegendPosition;
  std::array<double, 2> m_LegendPosition2 = VXColoringSettings::k_DefaultLegendPosition2;
  QString m_LegendTitle;
  bool m_Initialized = false;
  bool m_Highlighted = false;
  /** The modification time of the array the histogram was last computed for. */
  vtkMTimeType m_HistogramArrayMTime = 0;
  QString m_HistogramArray;
  vtkNew<vtkTable> m_HistogramTable;

  QSharedPointer<ColorPresetsDialog> m_ColorPresetsDialog;
  QSharedPointer<VXCustomRangeDialog> m_CustomRangeDialog;
  vtkSmartPointer<vtkScalarBarWidget> m_ScalarBarWidget;
  vtkSmartPointer<vtkScalarBarRepresentation> m_ScalarBarRepresentation;

  QPointer<QWidget> m_PageContent;
  QPointer<QComboBox> m_ArrayCombo;
  QPointer<QComboBox> m_ComponentCombo;
  QPointer<QPushButton> m_ResetButton;
  QPointer<QPushButton> m_ColorPresetButton;
  QPointer<QPushButton> m_InvertColorBtn;
  QPointer<QPushButton> m_ScaleToDataButton;
  QPointer<QPushButton> m_CustomRangeButton;
  QPointer<QCheckBox> m_LegendCheckBox;
  QPointer<QCheckBox> m_DataGridCheckBox;
  QPointer<VXHistogramOpacityWidget> m_OpacityEditor;
  QPointer<VXColorMapEditorWidget> m_ColorMapEditor;
};
