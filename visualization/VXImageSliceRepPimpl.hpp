#pragma once

#include "utils/KXVtkModuleConstants.hpp"
#include "visualization/VXColoringSettings.hpp"
#include "visualization/VXImageSliceUtilities.hpp"
#include "visualization/VXScalarColoredRepPimpl.hpp"

#include <kxcore/ColorPreset.hpp>

#include <QtCore/QSharedPointer>
#include <QtWidgets/QWidget> // control<W>() searches the page

#include <vtkActor.h>
#include <vtkCallbackCommand.h>
#include <vtkImageActor.h>
#include <vtkScalarBarWidget.h>
#include <vtkSmartPointer.h>

#include <array>

class ColorPresetsDialog;
class KXColorButton;
class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QPushButton;
class QSlider;
class QSpinBox;
class VXArrayHistogramWidget;
class VXCustomRangeDialog;
class VXDataSource;
class VXLookupTable;
class vtkDataArray;
class vtkImageData;
class vtkScalarBarRepresentation;

/**
 * The image slice data view in one render view: one slice of the image drawn by a
 * vtkImageActor, coloured by an array through this view's lookup table. The colouring fields
 * are the points family's (VXColoringSettings, same keys and defaults); on top come the slice
 * direction and number, the "Play All" and "Flicker" animations driven by the interactor's
 * repeating timer, and the link of slices to the other linked image slice views.
 */
class KXVTKLIB_EXPORT VXImageSliceRepPimpl : public VXScalarColoredRepPimpl
{
  Q_OBJECT

public:
  using SliceDirection = KXVtkModule::constants::SliceDirection;

  /** The interactor events the animation timer listens to: a timer tick and the stop request. */
  static constexpr unsigned long k_TimerEvent = 25;
  static constexpr unsigned long k_StopTimerEvent = 49;

  VXImageSliceRepPimpl(VXAbstractViewWidget* view, VXRepresentation* owner);
  ~VXImageSliceRepPimpl() override;

  bool initialize(vtkAlgorithmOutput* port) override;
  bool finalize() override;
  void write(nlohmann::json& output) const override;
  void read(const nlohmann::json& input) override;
  vtkAlgorithmOutput* outputPort() override;
  vtkAlgorithmOutput* inputPort() override;
  void buildSettingsPage() override;
  void copyFrom(VXRepresentationPimpl* other) override;
  void saveDefaultSettings() override;
  void loadDefaultSettings() override;
  void updateToolTips() override;

  vtkImageActor* imageActor() const { return m_ImageActor; }
  image_slice_utilities::VXImageSliceFilter* imageSliceFilter() const { return m_ImageSliceFilter; }
  /** The image the actor slices: the filter's output, null before initialize. */
  vtkImageData* sliceImage() const;
  SliceDirection sliceDirection() const { return m_SliceDirection; }
  int sliceNumber() const { return m_SliceNumber; }
  int sliceMaximum() const { return m_SliceMaximum; }
  int toggleLeftSlice() const { return m_ToggleLeftSlice; }
  int toggleRightSlice() const { return m_ToggleRightSlice; }
  double animationDuration() const { return m_AnimationDuration; }
  bool flickerShowsRight() const { return m_FlickerShowsRight; }
  /** The repeating timer of a running animation, or -1. */
  int animationTimerId() const { return m_TimerId; }
  /** The first and last slice of the direction, from the image's extent; 0, 0 without one. */
  std::array<int, 2> sliceExtent(SliceDirection direction) const;
  /** The world position of a slice along the direction's axis, through the actor's matrix. */
  double physicalPosition(int sliceNumber) const;
  /** The slice nearest a world position along the direction's axis; -1 where none can be told. */
  int sliceNumberAt(double position) const;
  /** Stores the number, moves the slider and spin box with their signals blocked and reapplies
   * the slice; emits nothing (a linked view following another). */
  void followSliceNumber(int sliceNumber);
  /** The direction combo goes to @p direction with its signals blocked; the controls follow. */
  void followSliceDirection(SliceDirection direction);
  void setLinkPhysicalUnits(bool link);
  void setAnimationDuration(double seconds);

public Q_SLOTS:
  void receivePipelineOutputReloaded() override;
  /** @p index is the combo's row: "XYPlane", "XZPlane", "YZPlane". */
  void sliceDirectionComboChanged(int index);
  void sliceSliderValueChanged(int value);
  void sliceSpinBoxValueChanged(int value);
  void toggleRightSpinBoxValueChanged(int value);
  void toggleLeftSpinBoxValueChanged(int value);
  /** Shows the other end of the toggle pair. */
  void toggleSlices();
  void startStopFlicker(bool checked);
  void startStopAnimation(bool checked);
  /** "Link Slices" / "Unlink Slices". */
  void linkSlicesClicked(bool checked);
  void setActiveArray(const QString& arrayName) override;
  void setActiveComponent(int component) override;
  void setUseSolidColor(bool checked) override;
  /** "Map Scalars :": through the table, or direct colours for colour arrays or always. */
  void updateColorMode(int index) override;
  /** "Off", "Generate Full Histogram", "Generate Visible Data Histogram". */
  void histogramChoiceChanged(int index);
  void updateHistogram() override;

Q_SIGNALS:
  void sliceNumberChanged(int sliceNumber, VXImageSliceRepPimpl* sourceView);
  void sliceDirectionChanged(KXVtkModule::constants::SliceDirection sliceDirection,
                             VXImageSliceRepPimpl* sourceView);
  void linkPhysicalUnitsChanged(bool linkPhysicalUnits, VXImageSliceRepPimpl* sourceView);

private:
  static void OnTimerEvent(vtkObject* caller, unsigned long eventId, void* clientData,
                           void* callData);
  void timerTick();
  /** Starts or stops "Play All" or "Flicker" on the interactor's repeating timer. */
  void startStopTimer(bool checked, bool flicker);
  /** Display extent, grid bounds, transform: the slice of the present number on screen. */
  void applySlice();
  /** Slider, spin box and toggle boxes get the range and, signals blocked, the values. */
  void refreshSliceControls();
  void setSliceNumber(int sliceNumber);
  void computeSliceMaximum();
  void setAnimationControlsEnabled(bool enabled, bool flicker);
  /** The lookup table or the solid colour onto the actor's property. */
  void applyColoring() override;
  void applyOpacity() override;
  vtkProp3D* coloredProp() const override;
  void syncControls();
  vtkDataSet* coloringDataSet() const override;
  void loadSliceDefaults(QtKXSettings& settings);

  vtkSmartPointer<image_slice_utilities::VXImageSliceFilter> m_ImageSliceFilter;
  vtkSmartPointer<vtkImageActor> m_ImageActor;
  SliceDirection m_SliceDirection = KXVtkModule::constants::XY;
  int m_SliceNumber = 0;
  int m_SliceMaximum = 0;
  int m_ToggleLeftSlice = 0;
  int m_ToggleRightSlice = 0;
  double m_AnimationDuration = 0.5;
  bool m_FlickerShowsRight = false;
  vtkSmartPointer<vtkCallbackCommand> m_TimerCallback;

  bool m_PlayAllRunning = false;
  bool m_FlickerRunning = false;
  bool m_VisibleDataHistogram = false;
  int m_TimerId = -1;
  unsigned long m_TimerObserverTag = 0;
  unsigned long m_StopObserverTag = 0;

  QPointer<QComboBox> m_DirectionCombo;
  QPointer<QSlider> m_SliceSlider;
  QPointer<QSpinBox> m_SliceSpinBox;
  QPointer<QPushButton> m_LinkButton;
  QPointer<QCheckBox> m_LinkPhysicalCheckBox;
  QPointer<QDoubleSpinBox> m_DurationSpinBox;
  QPointer<QPushButton> m_PlayAllButton;
  QPointer<QPushButton> m_FlickerButton;
  QPointer<QPushButton> m_ToggleButton;
  QPointer<QSpinBox> m_ToggleLeftSpinBox;
  QPointer<QSpinBox> m_ToggleRightSpinBox;
  QPointer<QComboBox> m_HistogramCombo;
};
