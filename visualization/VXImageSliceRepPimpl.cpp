#include "visualization/VXImageSliceRepPimpl.hpp"

#include "utils/KXVtkModuleUtils.hpp"
#include "visualization/QtWidgets/VXArrayHistogramWidget.hpp"
#include "visualization/QtWidgets/VXCustomRangeDialog.hpp"
#include "visualization/QtWidgets/VXFTransformFilterWidget.hpp"
#include "visualization/QtWidgets/VXVisualizationWidget.hpp"
#include "visualization/VXDataSource.hpp"
#include "visualization/VXImageSliceRep.hpp"
#include "visualization/VXLookupTable.hpp"
#include "visualization/VXRepresentationCallbacks.hpp"
#include "visualization/VXRepresentationUtils.hpp"
#include "visualization/VXUpdateHistogramCallback.hpp"
#include "visualization/VXUserPrompt.hpp"

#include <KXComponents/ColorPresetsDialog.hpp>
#include <KXComponents/KXColorButton.hpp>
#include <KXComponents/KXPreferences.hpp>
#include <KXComponents/KXStyle.hpp>
#include <KXComponents/QtKXSettings.hpp>

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QSlider>
#include <QtWidgets/QSpinBox>
#include <QtWidgets/QVBoxLayout>

#include <vtkAlgorithmOutput.h>
#include <vtkColorTransferFunction.h>
#include <vtkCommand.h>
#include <vtkDataArray.h>
#include <vtkExtractVOI.h>
#include <vtkImageData.h>
#include <vtkImageMapper3D.h>
#include <vtkImageProperty.h>
#include <vtkMatrix4x4.h>
#include <vtkNamedColors.h>
#include <vtkOutlineFilter.h>
#include <vtkPointData.h>
#include <vtkPolyDataMapper.h>
#include <vtkProperty.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>
#include <vtkScalarBarActor.h>
#include <vtkScalarBarRepresentation.h>
#include <vtkTextProperty.h>

#include <algorithm>
#include <cmath>

using KXVtkModule::constants::SliceDirection;
using KXVtkModule::utils::HtmlToolTip;

namespace
{
/** The image axis along which the slice number runs: z for XY, x for YZ, y for XZ. */
int AxisOf(SliceDirection direction)
{
  switch (direction)
  {
    case KXVtkModule::constants::YZ:
      return 0;
    case KXVtkModule::constants::XZ:
      return 1;
    default:
      return 2;
  }
}

/** The direction combo lists "XYPlane", "XZPlane", "YZPlane". */
constexpr std::array<SliceDirection, 3> k_ComboDirections = { KXVtkModule::constants::XY,
                                                              KXVtkModule::constants::XZ,
                                                              KXVtkModule::constants::YZ };

int ComboIndexOf(SliceDirection direction)
{
  const auto found = std::find(k_ComboDirections.begin(), k_ComboDirections.end(), direction);
  return static_cast<int>(found - k_ComboDirections.begin());
}

SliceDirection DirectionFromInt(int value)
{
  return value == 1 ? KXVtkModule::constants::YZ
                    : (value == 2 ? KXVtkModule::constants::XZ : KXVtkModule::constants::XY);
}

void SetSpinValue(QSpinBox* box, int minimum, int maximum, int value)
{
  if (box == nullptr)
    return;
  const QSignalBlocker blocker(box);
  box->setRange(minimum, maximum);
  box->setValue(value);
}
} // namespace

VXImageSliceRepPimpl::VXImageSliceRepPimpl(VXAbstractViewWidget* view, VXRepresentation* owner)
  : VXScalarColoredRepPimpl(view, owner)
{
  m_HelpUrl += "#d-image-slice-representation";
  m_ImageActor = vtkSmartPointer<vtkImageActor>::New();
  if (owner != nullptr)
  {
    QtKXSettings settings;
    BeginSettingsGroup(settings, owner->typeName());
    loadSliceDefaults(settings);
  }
  applyNanColor();
}

VXImageSliceRepPimpl::~VXImageSliceRepPimpl()
{
  if (m_Interactor != nullptr)
  {
    if (m_TimerId >= 0)
      m_Interactor->DestroyTimer(m_TimerId);
    if (m_TimerObserverTag != 0)
      m_Interactor->RemoveObserver(m_TimerObserverTag);
    if (m_StopObserverTag != 0)
      m_Interactor->RemoveObserver(m_StopObserverTag);
  }
}

// ---------------------------------------------------------------------------
// Data

vtkAlgorithmOutput* VXImageSliceRepPimpl::outputPort()
{
  return m_ImageSliceFilter != nullptr ? m_ImageSliceFilter->GetOutputPort() : nullptr;
}

vtkAlgorithmOutput* VXImageSliceRepPimpl::inputPort()
{
  if (m_ImageSliceFilter == nullptr || m_ImageSliceFilter->GetNumberOfInputConnections(0) == 0)
    return nullptr;
  return m_ImageSliceFilter->GetInputConnection(0, 0);
}

vtkImageData* VXImageSliceRepPimpl::sliceImage() const
{
  return m_ImageSliceFilter != nullptr
           ? vtkImageData::SafeDownCast(m_ImageSliceFilter->GetOutputDataObject(0))
           : nullptr;
}

bool VXImageSliceRepPimpl::initialize(vtkAlgorithmOutput* port)
{
  if (m_View == nullptr || port == nullptr || port->GetProducer() == nullptr)
    return false;
  vtkRenderer* ren = renderer();
  if (ren != nullptr && ren->HasViewProp(m_ImageActor))
    return false;
  port->GetProducer()->Update(port->GetIndex());
  if (vtkImageData::SafeDownCast(port->GetProducer()->GetOutputDataObject(port->GetIndex())) ==
      nullptr)
    return false;

  m_ImageSliceFilter = vtkSmartPointer<image_slice_utilities::VXImageSliceFilter>::New();
  m_ImageSliceFilter->SetInputConnection(port);
  m_ImageSliceFilter->Update();
  if (VXDataSource* source = parentDataSource())
    m_ImageSliceFilter->GetOutputDataObject(0)->SetObjectName(source->name().toStdString());
  m_ImageActor->GetMapper()->SetInputConnection(m_ImageSliceFilter->GetOutputPort());
  m_ImageActor->GetProperty()->UseLookupTableScalarRangeOn();
  m_ImageActor->GetProperty()->SetInterpolationTypeToNearest();
  m_Initialized = true;
  setupGridAxes();

  vtkNew<vtkOutlineFilter> outline;
  outline->SetInputConnection(m_ImageSliceFilter->GetOutputPort());
  vtkNew<vtkPolyDataMapper> outlineMapper;
  outlineMapper->SetInputConnection(outline->GetOutputPort());
  m_HighlightActor = vtkSmartPointer<vtkActor>::New();
  m_HighlightActor->SetMapper(outlineMapper);
  vtkNew<vtkNamedColors> colors;
  m_HighlightActor->GetProperty()->SetColor(colors->GetColor3d("Magenta").GetData());
  m_HighlightActor->GetProperty()->SetLineWidth(3.0f);

  computeSliceMaximum();
  m_SliceNumber = std::clamp(m_SliceNumber, 0, m_SliceMaximum);
  m_ToggleLeftSlice = std::clamp(m_ToggleLeftSlice, 0, m_SliceMaximum);
  m_ToggleRightSlice = std::clamp(m_ToggleRightSlice, 0, m_SliceMaximum);

  if (!m_Coloring.useSolidColor && m_Coloring.activeArray.isEmpty())
  {
    if (vtkDataArray* scalars = sliceImage()->GetPointData()->GetScalars();
        scalars != nullptr && scalars->GetName() != nullptr)
      m_Coloring.activeArray = QString::fromUtf8(scalars->GetName());
  }
  applyRgbPreset();
  {
    // the active array must not reset a custom range read before
    const int component = m_Coloring.activeComponent;
    setActiveArray(m_Coloring.useSolidColor ? QString() : m_Coloring.activeArray);
    setActiveComponent(component);
  }
  if (m_Coloring.valuesAsCategories)
    setInterpretValuesAsCategories(true);
  applyColoring();
  ensureTransformWidget();
  applySlice();

  if (VXVisualizationWidget* widget = visualizationWidget(); widget != nullptr && m_Visible)
    widget->addActor(m_ImageActor);

  m_TimerCallback = vtkSmartPointer<vtkCallbackCommand>::New();
  m_TimerCallback->SetClientData(this);
  m_TimerCallback->SetCallback(&VXImageSliceRepPimpl::OnTimerEvent);
  if (m_Interactor == nullptr && visualizationWidget() != nullptr)
    m_Interactor = visualizationWidget()->getRenderWindowInteractor();
  if (m_Interactor != nullptr)
  {
    m_TimerObserverTag = m_Interactor->AddObserver(k_TimerEvent, m_TimerCallback);
    m_StopObserverTag = m_Interactor->AddObserver(k_StopTimerEvent, m_TimerCallback);
  }

  if (auto* sliceRep = qobject_cast<VXImageSliceRep*>(m_Owner))
  {
    vtkNew<VXDataSetInfoWidgetUpdateCallback<VXImageSliceRep>> infoCallback;
    infoCallback->setRepresentation(sliceRep);
    m_ImageSliceFilter->AddObserver(vtkCommand::EndEvent, infoCallback);
  }
  observeDataUpdates(m_ImageSliceFilter);

  setupScalarBar();
  if (VXDataSource* source = parentDataSource())
    connect(source, &VXDataSource::syncChildColorMaps, this,
            &VXImageSliceRepPimpl::onSyncColorMapToParentGeometry, Qt::UniqueConnection);
  if (!m_DetachColorSettings)
    connectParentColorSignals(true);
  if (ren != nullptr)
    ren->ResetCamera();
  requestRender();
  return true;
}

bool VXImageSliceRepPimpl::finalize()
{
  startStopAnimation(false);
  startStopFlicker(false);
  if (m_ScalarBarWidget != nullptr)
    m_ScalarBarWidget->SetEnabled(0);
  vtkRenderer* ren = renderer();
  if (m_View == nullptr || ren == nullptr || !ren->HasViewProp(m_ImageActor))
    return false;
  releaseTransformWidget();
  visualizationWidget()->removeActor(m_ImageActor);
  if (m_HighlightActor != nullptr)
    ren->RemoveViewProp(m_HighlightActor);
  if (m_GridAxes != nullptr)
  {
    m_GridAxes->SetVisibility(false);
    ren->RemoveViewProp(m_GridAxes);
  }
  requestRender();
  return true;
}

void VXImageSliceRepPimpl::receivePipelineOutputReloaded()
{
  if (!m_Initialized)
    return;
  m_ImageSliceFilter->Update();
  computeSliceMaximum();
  m_SliceNumber = std::clamp(m_SliceNumber, 0, m_SliceMaximum);
  vtkImageData* image = sliceImage();
  const std::string name = m_Coloring.activeArray.toStdString();
  if (!m_Coloring.useSolidColor && image != nullptr &&
      image->GetPointData()->GetArray(name.c_str()) == nullptr &&
      image->GetPointData()->GetScalars() != nullptr)
    m_Coloring.activeArray = QString::fromUtf8(image->GetPointData()->GetScalars()->GetName());
  updateArrayColoringChoices();
  setActiveArray(m_Coloring.useSolidColor ? QString() : m_Coloring.activeArray);
  applySlice();
  refreshSliceControls();
}

// ---------------------------------------------------------------------------
// Slices

std::array<int, 2> VXImageSliceRepPimpl::sliceExtent(SliceDirection direction) const
{
  vtkImageData* image = sliceImage();
  if (image == nullptr)
    return { 0, 0 };
  const int* extent = image->GetExtent();
  const int axis = AxisOf(direction);
  if (extent[2 * axis + 1] < extent[2 * axis])
    return { 0, 0 };
  return { extent[2 * axis], extent[2 * axis + 1] };
}

void VXImageSliceRepPimpl::computeSliceMaximum()
{
  const std::array<int, 2> range = sliceExtent(m_SliceDirection);
  m_SliceMaximum = range[1] - range[0];
}

void VXImageSliceRepPimpl::applySlice()
{
  vtkImageData* image = sliceImage();
  if (image == nullptr)
    return;
  int extent[6];
  image->GetExtent(extent);
  const int axis = AxisOf(m_SliceDirection);
  const int index = std::clamp(extent[2 * axis] + m_SliceNumber, extent[2 * axis],
                               std::max(extent[2 * axis], extent[2 * axis + 1]));
  extent[2 * axis] = index;
  extent[2 * axis + 1] = index;
  m_ImageActor->SetDisplayExtent(extent);
  // the transform sets the grid to the new bounds as well
  applyTransform();
}

void VXImageSliceRepPimpl::refreshSliceControls()
{
  if (m_SliceSlider != nullptr)
  {
    const QSignalBlocker blocker(m_SliceSlider);
    m_SliceSlider->setRange(0, m_SliceMaximum);
    m_SliceSlider->setValue(m_SliceNumber);
  }
  SetSpinValue(m_SliceSpinBox, 0, m_SliceMaximum, m_SliceNumber);
  SetSpinValue(m_ToggleLeftSpinBox, 0, m_SliceMaximum, m_ToggleLeftSlice);
  SetSpinValue(m_ToggleRightSpinBox, 0, m_SliceMaximum, m_ToggleRightSlice);
  if (m_DirectionCombo != nullptr)
  {
    const QSignalBlocker blocker(m_DirectionCombo);
    m_DirectionCombo->setCurrentIndex(ComboIndexOf(m_SliceDirection));
  }
}

void VXImageSliceRepPimpl::sliceDirectionComboChanged(int index)
{
  if (index < 0 || index >= static_cast<int>(k_ComboDirections.size()))
    return;
  m_SliceDirection = k_ComboDirections[static_cast<std::size_t>(index)];
  computeSliceMaximum();
  m_SliceNumber = 0;
  m_ToggleLeftSlice = std::clamp(m_ToggleLeftSlice, 0, m_SliceMaximum);
  m_ToggleRightSlice = std::clamp(m_ToggleRightSlice, 0, m_SliceMaximum);
  Q_EMIT sliceDirectionChanged(m_SliceDirection, this);
  applySlice();
  refreshSliceControls();
  requestRender();
}

void VXImageSliceRepPimpl::followSliceDirection(SliceDirection direction)
{
  m_SliceDirection = direction;
  computeSliceMaximum();
  m_SliceNumber = 0;
  m_ToggleLeftSlice = std::clamp(m_ToggleLeftSlice, 0, m_SliceMaximum);
  m_ToggleRightSlice = std::clamp(m_ToggleRightSlice, 0, m_SliceMaximum);
  applySlice();
  refreshSliceControls();
}

void VXImageSliceRepPimpl::setSliceNumber(int sliceNumber)
{
  m_SliceNumber = std::clamp(sliceNumber, 0, m_SliceMaximum);
  refreshSliceControls();
  applySlice();
  Q_EMIT sliceNumberChanged(m_SliceNumber, this);
  requestRender();
}

void VXImageSliceRepPimpl::sliceSliderValueChanged(int value)
{
  setSliceNumber(value);
}

void VXImageSliceRepPimpl::sliceSpinBoxValueChanged(int value)
{
  setSliceNumber(value);
}

void VXImageSliceRepPimpl::followSliceNumber(int sliceNumber)
{
  m_SliceNumber = std::clamp(sliceNumber, 0, m_SliceMaximum);
  refreshSliceControls();
  applySlice();
}

void VXImageSliceRepPimpl::toggleLeftSpinBoxValueChanged(int value)
{
  m_ToggleLeftSlice = std::clamp(value, 0, m_SliceMaximum);
}

void VXImageSliceRepPimpl::toggleRightSpinBoxValueChanged(int value)
{
  m_ToggleRightSlice = std::clamp(value, 0, m_SliceMaximum);
}

void VXImageSliceRepPimpl::toggleSlices()
{
  const bool showedRight = m_FlickerShowsRight;
  m_FlickerShowsRight = !showedRight;
  setSliceNumber(showedRight ? m_ToggleLeftSlice : m_ToggleRightSlice);
}

double VXImageSliceRepPimpl::physicalPosition(int sliceNumber) const
{
  vtkImageData* image = sliceImage();
  if (image == nullptr)
    return 0.0;
  const int axis = AxisOf(m_SliceDirection);
  double point[4] = { image->GetOrigin()[0], image->GetOrigin()[1], image->GetOrigin()[2], 1.0 };
  point[axis] = sliceNumber * image->GetSpacing()[axis] + image->GetOrigin()[axis];
  double world[4];
  m_ImageActor->GetMatrix()->MultiplyPoint(point, world);
  return world[axis];
}

int VXImageSliceRepPimpl::sliceNumberAt(double position) const
{
  vtkImageData* image = sliceImage();
  if (image == nullptr)
    return -1;
  const std::array<int, 2> range = sliceExtent(m_SliceDirection);
  const int axis = AxisOf(m_SliceDirection);
  const double spacing = image->GetSpacing()[axis];
  if (range[0] < 0 || range[1] < 0 || spacing <= 0.0)
    return -1;
  const double* origin = image->GetOrigin();
  double world[4] = { origin[0], origin[1], origin[2], 1.0 };
  world[axis] = position;
  vtkNew<vtkMatrix4x4> inverse;
  vtkMatrix4x4::Invert(m_ImageActor->GetMatrix(), inverse);
  double local[4];
  inverse->MultiplyPoint(world, local);
  const long number = std::lround((local[axis] - origin[axis]) / spacing);
  return static_cast<int>(std::clamp<long>(number, 0, m_SliceMaximum));
}

void VXImageSliceRepPimpl::setLinkPhysicalUnits(bool link)
{
  m_LinkPhysicalUnits = link;
  if (m_LinkPhysicalCheckBox != nullptr)
  {
    const QSignalBlocker blocker(m_LinkPhysicalCheckBox);
    m_LinkPhysicalCheckBox->setChecked(link);
  }
}

void VXImageSliceRepPimpl::linkSlicesClicked(bool checked)
{
  m_Linked = checked;
  if (m_LinkButton != nullptr)
  {
    const QSignalBlocker blocker(m_LinkButton);
    m_LinkButton->setChecked(checked);
    m_LinkButton->setText(checked ? "Unlink Slices" : "Link Slices");
  }
  if (m_Owner == nullptr)
    return;
  if (checked)
    Q_EMIT m_Owner->requestLinkViews(this);
  else
    Q_EMIT m_Owner->requestUnlinkViews(this);
}

// ---------------------------------------------------------------------------
// Animation

void VXImageSliceRepPimpl::setAnimationDuration(double seconds)
{
  m_AnimationDuration = std::max(0.0, seconds);
  if (m_DurationSpinBox != nullptr)
  {
    const QSignalBlocker blocker(m_DurationSpinBox);
    m_DurationSpinBox->setValue(m_AnimationDuration);
  }
}

void VXImageSliceRepPimpl::setAnimationControlsEnabled(bool enabled, bool flicker)
{
  for (QWidget* control : { static_cast<QWidget*>(m_DirectionCombo.data()),
                            static_cast<QWidget*>(m_SliceSlider.data()),
                            static_cast<QWidget*>(m_SliceSpinBox.data()) })
  {
    if (control != nullptr)
      control->setEnabled(enabled);
  }
  if (!flicker)
    return;
  for (QSpinBox* box : { m_ToggleLeftSpinBox.data(), m_ToggleRightSpinBox.data() })
  {
    if (box != nullptr)
      box->setEnabled(enabled);
  }
}

void VXImageSliceRepPimpl::startStopAnimation(bool checked)
{
  startStopTimer(checked, false);
}

void VXImageSliceRepPimpl::startStopFlicker(bool checked)
{
  startStopTimer(checked, true);
}

void VXImageSliceRepPimpl::startStopTimer(bool checked, bool flicker)
{
  if (m_Interactor == nullptr || m_TimerCallback == nullptr)
    return;
  QPushButton* button = flicker ? m_FlickerButton.data() : m_PlayAllButton.data();
  if (button != nullptr)
  {
    const QSignalBlocker blocker(button);
    button->setChecked(checked);
  }
  bool& running = flicker ? m_FlickerRunning : m_PlayAllRunning;
  if (checked == running)
    return;
  running = checked;
  if (checked)
  {
    setAnimationControlsEnabled(false, flicker);
    if (m_TimerId < 0)
      m_TimerId = m_Interactor->CreateRepeatingTimer(
        static_cast<unsigned long>(static_cast<int>(m_AnimationDuration * 1000.0)));
    // the first step does not wait for the timer
    m_Interactor->InvokeEvent(k_TimerEvent, &m_TimerId);
    return;
  }
  // one timer serves both animations: it stops with the last of them
  if (!m_FlickerRunning && !m_PlayAllRunning)
    m_Interactor->InvokeEvent(k_StopTimerEvent, nullptr);
  setAnimationControlsEnabled(true, flicker);
}

void VXImageSliceRepPimpl::OnTimerEvent(vtkObject*, unsigned long eventId, void* clientData,
                                        void* callData)
{
  auto* self = static_cast<VXImageSliceRepPimpl*>(clientData);
  if (self == nullptr)
    return;
  if (eventId == k_StopTimerEvent)
  {
    // the same number is the interactor's request for a platform timer, which carries the id
    if (callData != nullptr)
      return;
    if (self->m_TimerId >= 0 && self->m_Interactor != nullptr)
      self->m_Interactor->DestroyTimer(self->m_TimerId);
    self->m_TimerId = -1;
    return;
  }
  // the interactor's other timers (and other views' animations) tick through the same event
  if (callData == nullptr || self->m_TimerId < 0 || *static_cast<int*>(callData) != self->m_TimerId)
    return;
  self->timerTick();
}

void VXImageSliceRepPimpl::timerTick()
{
  if (m_PlayAllRunning)
  {
    if (m_SliceMaximum == 0)
      computeSliceMaximum();
    setSliceNumber((m_SliceNumber + 1) % (m_SliceMaximum + 1));
  }
  else if (m_FlickerRunning)
  {
    toggleSlices();
  }
  else
  {
    return;
  }
  if (m_Interactor != nullptr && m_Interactor->GetRenderWindow() != nullptr)
    m_Interactor->GetRenderWindow()->Render();
}

// ---------------------------------------------------------------------------
// Colouring

void VXImageSliceRepPimpl::setActiveArray(const QString& arrayName)
{
  vtkImageData* image = sliceImage();
  if (image == nullptr)
    return;
  const bool colouring = !m_Coloring.useSolidColor;
  m_Coloring.activeArray = colouring ? arrayName : QString("");
  for (QWidget* control : { static_cast<QWidget*>(m_ComponentCombo.data()),
                            static_cast<QWidget*>(m_EditColorMapButton.data()) })
  {
    if (control != nullptr)
      control->setEnabled(colouring);
  }
  if (m_LUTEditor != nullptr)
    m_LUTEditor->setLookupTable(m_LookupTable.data(), m_Coloring.activeArray);
  if (!m_Coloring.activeArray.isEmpty())
  {
    const std::string name = m_Coloring.activeArray.toStdString();
    if (image->GetPointData()->GetArray(name.c_str()) == nullptr)
      return;
    image->GetPointData()->SetActiveScalars(name.c_str());
  }
  if (m_DetachColorSettings && m_SolidColorButton != nullptr)
    m_SolidColorButton->setEnabled(m_Coloring.useSolidColor || arrayName.isEmpty());
  refillComponentCombo();
  setActiveComponent(m_Coloring.activeComponent);
  applyColoring();
  requestRender();
}

void VXImageSliceRepPimpl::setActiveComponent(int component)
{
  vtkDataArray* array = activeDataArray();
  if (array == nullptr)
    return;
  applyComponent(m_LookupTable->getColorTransferFunction(), array, component);
  applyRangeOfActiveComponent(array);
  if (m_Coloring.valuesAsCategories)
    applyIndexedPreset();
  updateHistogram();
}

void VXImageSliceRepPimpl::applyColoring()
{
  vtkImageProperty* property = m_ImageActor->GetProperty();
  property->SetOpacity(m_Opacity);
  if (m_Coloring.useSolidColor || activeDataArray() == nullptr)
  {
    // an image actor always maps its scalars: one colour for every value is the solid colour
    vtkNew<vtkColorTransferFunction> solid;
    solid->AddRGBPoint(0.0, m_SolidColor.redF(), m_SolidColor.greenF(), m_SolidColor.blueF());
    property->SetLookupTable(solid);
  }
  else
  {
    property->SetLookupTable(m_LookupTable->getColorTransferFunction());
    KXVtkModule::utils::UpdateColorMode(m_Coloring.scalarMapping, m_Owner, m_ImageActor,
                                        m_Coloring.activeArray, &m_Coloring.scalarMapping);
  }
  setupScalarBar();
}

void VXImageSliceRepPimpl::applyOpacity()
{
  m_ImageActor->GetProperty()->SetOpacity(m_Opacity);
}

void VXImageSliceRepPimpl::setUseSolidColor(bool checked)
{
  m_Coloring.useSolidColor = checked;
  const int component = m_Coloring.activeComponent;
  setActiveArray(
    checked ? QString()
            : (m_ArrayCombo != nullptr ? m_ArrayCombo->currentText() : m_Coloring.activeArray));
  m_Coloring.activeComponent = component;
  if (m_SolidColorCheckBox != nullptr)
  {
    const QSignalBlocker blocker(m_SolidColorCheckBox);
    m_SolidColorCheckBox->setChecked(checked);
  }
  applyColoring();
  requestRender();
}

void VXImageSliceRepPimpl::updateColorMode(int index)
{
  // the table comes back first: a change from direct colours to mapped ones needs it
  if (!m_Coloring.useSolidColor && activeDataArray() != nullptr)
    m_ImageActor->GetProperty()->SetLookupTable(m_LookupTable->getColorTransferFunction());
  // as in the points family, the combo's choice lands in the active component field
  KXVtkModule::utils::UpdateColorMode(index, m_Owner, m_ImageActor, m_Coloring.activeArray,
                                      &m_Coloring.activeComponent);
  requestRender();
}

vtkDataSet* VXImageSliceRepPimpl::coloringDataSet() const
{
  return sliceImage();
}

// ---------------------------------------------------------------------------
// Legend, histogram, view

void VXImageSliceRepPimpl::histogramChoiceChanged(int index)
{
  m_Coloring.generateHistogram = index > 0;
  m_VisibleDataHistogram = index == 2;
  if (m_HistogramWidget != nullptr)
    m_HistogramWidget->setVisible(m_Coloring.generateHistogram);
  if (m_HistogramCombo != nullptr && m_HistogramCombo->currentIndex() != index)
  {
    const QSignalBlocker blocker(m_HistogramCombo);
    m_HistogramCombo->setCurrentIndex(index);
  }
  if (m_Coloring.generateHistogram)
    updateHistogram();
}

void VXImageSliceRepPimpl::updateHistogram()
{
  if (m_HistogramWidget == nullptr || m_BlockHistogram || !m_Coloring.generateHistogram)
    return;
  vtkDataArray* array = activeDataArray();
  if (array == nullptr)
    return;
  vtkSmartPointer<vtkDataArray> shown = array;
  if (m_VisibleDataHistogram)
  {
    // the values of the slice on screen only
    vtkNew<vtkExtractVOI> extract;
    extract->SetInputData(sliceImage());
    extract->SetVOI(m_ImageActor->GetDisplayExtent());
    extract->Update();
    if (vtkDataArray* slice = extract->GetOutput()->GetPointData()->GetArray(array->GetName()))
      shown = slice;
  }
  const std::array<double, 2> range = m_LookupTable->getRange();
  Q_EMIT histogramDataChanged(shown, m_Coloring.activeComponent, m_Coloring.usingCustomRange,
                              m_Coloring.usingCustomRange ? m_Coloring.customRange[0] : range[0],
                              m_Coloring.usingCustomRange ? m_Coloring.customRange[1] : range[1]);
}

vtkProp3D* VXImageSliceRepPimpl::coloredProp() const
{
  return m_ImageActor;
}

// ---------------------------------------------------------------------------
// State, clipboard, defaults

void VXImageSliceRepPimpl::write(nlohmann::json& output) const
{
  VXScalarColoredRepPimpl::write(output);
  output["slice_dir"] = static_cast<int>(m_SliceDirection);
  output["slice_num"] = m_SliceNumber;
  output["toggle_left_slice_num"] = m_ToggleLeftSlice;
  output["toggle_right_slice_num"] = m_ToggleRightSlice;
  output["animation_duration"] = m_AnimationDuration;
}

void VXImageSliceRepPimpl::read(const nlohmann::json& input)
{
  VXRepresentationPimpl::read(input);
  m_Coloring = currentColoringSettings();
  m_Coloring.read(input);
  if (input.contains("opacity_percent"))
    m_Opacity = std::clamp(input.at("opacity_percent").get<double>() / 100.0, 0.0, 1.0);
  if (input.contains("solid_color_r") && input.contains("solid_color_g") &&
      input.contains("solid_color_b"))
    m_SolidColor = QColor(KXVtkModule::utils::StateInt(input.at("solid_color_r")),
                          KXVtkModule::utils::StateInt(input.at("solid_color_g")),
                          KXVtkModule::utils::StateInt(input.at("solid_color_b")));
  if (input.contains("slice_dir"))
    m_SliceDirection = DirectionFromInt(KXVtkModule::utils::StateInt(input.at("slice_dir")));
  if (input.contains("slice_num"))
    m_SliceNumber = std::max(0, KXVtkModule::utils::StateInt(input.at("slice_num")));
  if (input.contains("toggle_left_slice_num"))
    m_ToggleLeftSlice =
      std::max(0, KXVtkModule::utils::StateInt(input.at("toggle_left_slice_num")));
  if (input.contains("toggle_right_slice_num"))
    m_ToggleRightSlice =
      std::max(0, KXVtkModule::utils::StateInt(input.at("toggle_right_slice_num")));
  if (input.contains("animation_duration"))
    m_AnimationDuration = std::max(0.0, input.at("animation_duration").get<double>());
  applyNanColor();
  applyLegendPosition();
  if (!m_Initialized)
    return;
  computeSliceMaximum();
  m_SliceNumber = std::clamp(m_SliceNumber, 0, m_SliceMaximum);
  m_ToggleLeftSlice = std::clamp(m_ToggleLeftSlice, 0, m_SliceMaximum);
  m_ToggleRightSlice = std::clamp(m_ToggleRightSlice, 0, m_SliceMaximum);
  applyReadColoring();
  applySlice();
  syncControls();
}

void VXImageSliceRepPimpl::copyFrom(VXRepresentationPimpl* other)
{
  VXRepresentationPimpl::copyFrom(other);
  auto* source = dynamic_cast<VXImageSliceRepPimpl*>(other);
  if (source == nullptr)
    return;
  m_Coloring = source->currentColoringSettings();
  m_SolidColor = source->m_SolidColor;
  m_Opacity = source->m_Opacity;
  m_SliceDirection = source->m_SliceDirection;
  m_SliceNumber = source->m_SliceNumber;
  m_ToggleLeftSlice = source->m_ToggleLeftSlice;
  m_ToggleRightSlice = source->m_ToggleRightSlice;
  m_AnimationDuration = source->m_AnimationDuration;
  applyNanColor();
}

void VXImageSliceRepPimpl::loadSliceDefaults(QtKXSettings& settings)
{
  m_Coloring = currentColoringSettings();
  m_Coloring.loadDefaults(settings);
  if (settings.contains("opacity_percent"))
    m_Opacity = std::clamp(settings.value("opacity_percent", 100).toDouble() / 100.0, 0.0, 1.0);
  if (settings.contains("slice_dir"))
    m_SliceDirection = DirectionFromInt(settings.value("slice_dir", 0).toInt());
  if (settings.contains("slice_num"))
    m_SliceNumber = std::max(0, settings.value("slice_num", 0).toInt());
  if (settings.contains("toggle_left_slice_num"))
    m_ToggleLeftSlice = std::max(0, settings.value("toggle_left_slice_num", 0).toInt());
  if (settings.contains("toggle_right_slice_num"))
    m_ToggleRightSlice = std::max(0, settings.value("toggle_right_slice_num", 0).toInt());
  if (settings.contains("animation_duration"))
    m_AnimationDuration = std::max(0.0, settings.value("animation_duration", 0.5).toDouble());
}

void VXImageSliceRepPimpl::loadDefaultSettings()
{
  VXRepresentationPimpl::loadDefaultSettings();
  if (m_Owner == nullptr)
    return;
  QtKXSettings settings;
  BeginSettingsGroup(settings, m_Owner->typeName());
  loadSliceDefaults(settings);
  applyNanColor();
}

void VXImageSliceRepPimpl::saveDefaultSettings()
{
  if (m_Owner == nullptr || !askSaveDefaults())
    return;
  QtKXSettings settings;
  BeginSettingsGroup(settings, m_Owner->typeName());
  saveBaseDefaults(settings);
  currentColoringSettings().saveDefaults(settings);
  settings.setValue("opacity_percent", m_Opacity * 100.0);
  settings.setValue("slice_dir", static_cast<int>(m_SliceDirection));
  settings.setValue("slice_num", m_SliceNumber);
  settings.setValue("toggle_left_slice_num", m_ToggleLeftSlice);
  settings.setValue("toggle_right_slice_num", m_ToggleRightSlice);
  settings.setValue("animation_duration", m_AnimationDuration);
  settings.sync();
}

// ---------------------------------------------------------------------------
// Page

void VXImageSliceRepPimpl::syncControls()
{
  auto setChecked = [](QAbstractButton* box, bool value)
  {
    if (box == nullptr)
      return;
    const QSignalBlocker blocker(box);
    box->setChecked(value);
  };
  setChecked(m_SolidColorCheckBox, m_Coloring.useSolidColor);
  setChecked(m_CategoriesCheckBox, m_Coloring.valuesAsCategories);
  setChecked(m_LegendCheckBox, m_Coloring.showLegend);
  setChecked(m_LinkPhysicalCheckBox, m_LinkPhysicalUnits);
  setChecked(m_LinkButton, m_Linked);
  if (m_LinkButton != nullptr)
    m_LinkButton->setText(m_Linked ? "Unlink Slices" : "Link Slices");
  if (m_HistogramCombo != nullptr)
  {
    const QSignalBlocker blocker(m_HistogramCombo);
    m_HistogramCombo->setCurrentIndex(
      m_Coloring.generateHistogram ? (m_VisibleDataHistogram ? 2 : 1) : 0);
  }
  if (m_DurationSpinBox != nullptr)
  {
    const QSignalBlocker blocker(m_DurationSpinBox);
    m_DurationSpinBox->setValue(m_AnimationDuration);
  }
  if (m_ScalarMappingCombo != nullptr)
  {
    const QSignalBlocker blocker(m_ScalarMappingCombo);
    m_ScalarMappingCombo->setCurrentIndex(m_Coloring.scalarMapping);
  }
  if (m_EditColorMapButton != nullptr)
    m_EditColorMapButton->setEnabled(!m_Coloring.useSolidColor);
  updateArrayColoringChoices();
  refillComponentCombo();
  refreshSliceControls();
}

void VXImageSliceRepPimpl::buildSettingsPage()
{
  m_PageContent = new QWidget();
  auto* pageLayout = new QVBoxLayout(m_PageContent);
  m_SettingsScrollArea->setWidget(m_PageContent);
  auto section = [&](const QString& title)
  {
    auto* box = new QGroupBox(title, m_PageContent);
    box->setObjectName(title);
    pageLayout->addWidget(box);
    return new QFormLayout(box);
  };

  QFormLayout* slicing = section("Slicing");
  m_DirectionCombo = new QComboBox(m_PageContent);
  m_DirectionCombo->setObjectName("m_DirectionCombo");
  m_DirectionCombo->addItems({ "XYPlane", "XZPlane", "YZPlane" });
  slicing->addRow("Slice Direction", m_DirectionCombo);
  auto* numberRow = new QWidget(m_PageContent);
  auto* numberLayout = new QHBoxLayout(numberRow);
  numberLayout->setContentsMargins(0, 0, 0, 0);
  m_SliceSlider = new QSlider(Qt::Horizontal, numberRow);
  m_SliceSlider->setObjectName("m_SliceSlider");
  m_SliceSpinBox = new QSpinBox(numberRow);
  m_SliceSpinBox->setObjectName("m_SliceSpinBox");
  numberLayout->addWidget(m_SliceSlider, 1);
  numberLayout->addWidget(m_SliceSpinBox);
  slicing->addRow("Slice Number", numberRow);
  m_LinkButton = new QPushButton(m_Linked ? "Unlink Slices" : "Link Slices", m_PageContent);
  m_LinkButton->setObjectName("linkSlicesButton");
  m_LinkButton->setCheckable(true);
  m_LinkButton->setChecked(m_Linked);
  m_LinkButton->setIcon(KXStyle::generateThemeIconFromName("target"));
  m_LinkPhysicalCheckBox = new QCheckBox("Link physical units", m_PageContent);
  m_LinkPhysicalCheckBox->setObjectName("m_LinkPhysicalCheckBox");
  m_LinkPhysicalCheckBox->setChecked(m_LinkPhysicalUnits);
  slicing->addRow(m_LinkButton, m_LinkPhysicalCheckBox);

  QFormLayout* animation = section("Animation");
  m_DurationSpinBox = new QDoubleSpinBox(m_PageContent);
  m_DurationSpinBox->setObjectName("m_DurationSpinBox");
  m_DurationSpinBox->setSuffix("sec");
  m_DurationSpinBox->setRange(0.0, 60.0);
  m_DurationSpinBox->setSingleStep(0.1);
  m_DurationSpinBox->setValue(m_AnimationDuration);
  animation->addRow("Duration", m_DurationSpinBox);
  auto* animationRow = new QWidget(m_PageContent);
  auto* animationLayout = new QHBoxLayout(animationRow);
  animationLayout->setContentsMargins(0, 0, 0, 0);
  m_PlayAllButton = addPageButton(animationLayout, "Run", "Play All", "m_PlayAllButton");
  m_PlayAllButton->setCheckable(true);
  m_FlickerButton = addPageButton(animationLayout, "Run", "Flicker", "m_FlickerButton");
  m_FlickerButton->setCheckable(true);
  animation->addRow(animationRow);
  auto* toggleRow = new QWidget(m_PageContent);
  auto* toggleLayout = new QHBoxLayout(toggleRow);
  toggleLayout->setContentsMargins(0, 0, 0, 0);
  m_ToggleLeftSpinBox = new QSpinBox(toggleRow);
  m_ToggleLeftSpinBox->setObjectName("m_ToggleLeftSpinBox");
  m_ToggleRightSpinBox = new QSpinBox(toggleRow);
  m_ToggleRightSpinBox->setObjectName("m_ToggleRightSpinBox");
  toggleLayout->addWidget(m_ToggleLeftSpinBox);
  m_ToggleButton = addPageButton(toggleLayout, nullptr, "Toggle", "m_ToggleButton");
  toggleLayout->addWidget(m_ToggleRightSpinBox);
  animation->addRow(toggleRow);

  addColoringSections(section);

  QFormLayout* histogram = section("Array Histogram");
  m_HistogramCombo = new QComboBox(m_PageContent);
  m_HistogramCombo->setObjectName("m_HistogramCombo");
  m_HistogramCombo->addItems(
    { "Off", "Generate Full Histogram", "Generate Visible Data Histogram" });
  histogram->addRow(m_HistogramCombo);
  m_HistogramWidget = new VXArrayHistogramWidget(m_PageContent);
  m_HistogramWidget->setVisible(m_Coloring.generateHistogram);
  histogram->addRow(m_HistogramWidget);
  pageLayout->addStretch(1);

  syncControls();
  connect(m_DirectionCombo, &QComboBox::currentIndexChanged, this,
          &VXImageSliceRepPimpl::sliceDirectionComboChanged);
  connect(m_SliceSlider, &QSlider::valueChanged, this,
          &VXImageSliceRepPimpl::sliceSliderValueChanged);
  connect(m_SliceSpinBox, &QSpinBox::valueChanged, this,
          &VXImageSliceRepPimpl::sliceSpinBoxValueChanged);
  connect(m_LinkButton, &QPushButton::clicked, this, &VXImageSliceRepPimpl::linkSlicesClicked);
  connect(m_LinkPhysicalCheckBox, &QCheckBox::toggled, this,
          [this](bool checked)
          {
            m_LinkPhysicalUnits = checked;
            Q_EMIT linkPhysicalUnitsChanged(checked, this);
          });
  connect(m_DurationSpinBox, &QDoubleSpinBox::valueChanged, this,
          &VXImageSliceRepPimpl::setAnimationDuration);
  connect(m_PlayAllButton, &QPushButton::toggled, this, &VXImageSliceRepPimpl::startStopAnimation);
  connect(m_FlickerButton, &QPushButton::toggled, this, &VXImageSliceRepPimpl::startStopFlicker);
  connect(m_ToggleButton, &QPushButton::clicked, this, &VXImageSliceRepPimpl::toggleSlices);
  connect(m_ToggleLeftSpinBox, &QSpinBox::valueChanged, this,
          &VXImageSliceRepPimpl::toggleLeftSpinBoxValueChanged);
  connect(m_ToggleRightSpinBox, &QSpinBox::valueChanged, this,
          &VXImageSliceRepPimpl::toggleRightSpinBoxValueChanged);
  connectColoringControls();
  connect(m_HistogramCombo, &QComboBox::currentIndexChanged, this,
          &VXImageSliceRepPimpl::histogramChoiceChanged);
  connect(this, &VXImageSliceRepPimpl::histogramDataChanged, m_HistogramWidget,
          &VXArrayHistogramWidget::setArray);
  updateHistogram();
}

void VXImageSliceRepPimpl::updateToolTips()
{
  auto tip = [](QWidget* widget, const QString& text)
  {
    if (widget != nullptr)
      widget->setToolTip(HtmlToolTip(text));
  };
  tip(m_DirectionCombo, "Sets the 2D plane that the resulting slice will come from. Changing "
                        "this control resets the Slice Number control.");
  tip(m_SliceSlider, "Sets the slice number that will be shown on application of this filter.");
  tip(m_SliceSpinBox, "Sets the slice number that will be shown on application of this filter.");
  tip(m_DurationSpinBox, "Defines how long the timer will wait at each slice during the play all "
                         "and flicker animations.");
  tip(m_FlickerButton, "Toggle automatically between the each of the slices entered for the "
                       "entered duration.");
  tip(m_PlayAllButton,
      "Start/stop the animation loop of all the slices in the current slice direction");
  tip(m_LinkButton, "When clicked, this allows the user to link/unlink the slice number in the "
                    "current 2D Image/Slice View to/from other 2D Image/Slice Views.");
  tip(m_LinkPhysicalCheckBox,
      "When linking slices between slice views, this option will allow you to link the slices by "
      "the physical position rather than the slice number.");
  updateColoringToolTips();
  tip(m_HistogramCombo, "Generate a histogram of the active array: of all its values, or of the "
                        "values of the slice shown. WARNING: This may slow down rendering!");
}
