#include "visualization/VXGlyphRepPimpl.hpp"

#include "utils/KXVtkModuleUtils.hpp"
#include "visualization/QtWidgets/VXArrayHistogramWidget.hpp"
#include "visualization/QtWidgets/VXCustomRangeDialog.hpp"
#include "visualization/QtWidgets/VXFTransformFilterWidget.hpp"
#include "visualization/QtWidgets/VXVisualizationWidget.hpp"
#include "visualization/VXDataSource.hpp"
#include "visualization/VXGlyphRep.hpp"
#include "visualization/VXLookupTable.hpp"
#include "visualization/VXRepresentationCallbacks.hpp"
#include "visualization/VXRepresentationUtils.hpp"
#include "visualization/VXUserPrompt.hpp"

#include <KXComponents/ColorPresetsDialog.hpp>
#include <KXComponents/KXColorButton.hpp>
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
#include <vtkArrowSource.h>
#include <vtkColorTransferFunction.h>
#include <vtkCommand.h>
#include <vtkConeSource.h>
#include <vtkCubeSource.h>
#include <vtkDataArray.h>
#include <vtkDataArraySelection.h>
#include <vtkDataSet.h>
#include <vtkLineSource.h>
#include <vtkNamedColors.h>
#include <vtkOutlineFilter.h>
#include <vtkPassSelectedArrays.h>
#include <vtkPointData.h>
#include <vtkPolyDataMapper.h>
#include <vtkProperty.h>
#include <vtkRenderer.h>
#include <vtkScalarBarActor.h>
#include <vtkScalarBarRepresentation.h>
#include <vtkSphereSource.h>

#include <algorithm>
#include <cmath>
#include <limits>

using KXVtkModule::utils::HtmlToolTip;

const QStringList VXGlyphRepPimpl::k_GlyphTypeNames = { "Arrow", "Cone", "Sphere", "Cube", "Line" };
const QStringList VXGlyphRepPimpl::k_ScaleModeNames = { "Off", "Scalar", "Vector Magnitude" };
const QStringList VXGlyphRepPimpl::k_SamplingModeNames = { "All Points", "Every Nth Point",
                                                           "Uniform Random Subset" };

namespace
{
template<typename E>
E EnumFromInt(int value, int count)
{
  return static_cast<E>(std::clamp(value, 0, count - 1));
}

vtkSmartPointer<vtkPolyDataAlgorithm> ShapeOf(VXGlyphRepPimpl::GlyphType type)
{
  // every shape is about one unit long along +x, the direction an orientation vector turns
  switch (type)
  {
    case VXGlyphRepPimpl::Cone:
    {
      auto cone = vtkSmartPointer<vtkConeSource>::New();
      cone->SetResolution(12);
      return cone;
    }
    case VXGlyphRepPimpl::Sphere:
    {
      auto sphere = vtkSmartPointer<vtkSphereSource>::New();
      sphere->SetThetaResolution(12);
      sphere->SetPhiResolution(8);
      return sphere;
    }
    case VXGlyphRepPimpl::Cube:
      return vtkSmartPointer<vtkCubeSource>::New();
    case VXGlyphRepPimpl::Line:
    {
      auto line = vtkSmartPointer<vtkLineSource>::New();
      line->SetPoint1(0.0, 0.0, 0.0);
      line->SetPoint2(1.0, 0.0, 0.0);
      return line;
    }
    default:
      return vtkSmartPointer<vtkArrowSource>::New();
  }
}

/** The largest absolute value (one component) or magnitude (several) of an array. */
double LargestMagnitude(vtkDataArray* array)
{
  if (array == nullptr || array->GetNumberOfTuples() == 0)
    return 0.0;
  if (array->GetNumberOfComponents() == 1)
  {
    double range[2];
    array->GetFiniteRange(range, 0);
    return std::max(std::abs(range[0]), std::abs(range[1]));
  }
  double range[2];
  array->GetFiniteRange(range, -1);
  return range[1];
}

void SetComboItems(QComboBox* combo, const QStringList& items, const QString& current)
{
  if (combo == nullptr)
    return;
  const QSignalBlocker blocker(combo);
  combo->clear();
  combo->addItems(items);
  combo->setCurrentIndex(std::max(0, static_cast<int>(items.indexOf(current))));
}
} // namespace

VXGlyphRepPimpl::VXGlyphRepPimpl(VXAbstractViewWidget* view, VXRepresentation* owner)
  : VXScalarColoredRepPimpl(view, owner)
{
  m_HelpUrl += "#glyph-representation";
  m_Actor = vtkSmartPointer<vtkActor>::New();
  m_Mapper = vtkSmartPointer<vtkGlyph3DMapper>::New();
  m_Mapper->SetUseLookupTableScalarRange(true);
  m_Actor->SetMapper(m_Mapper);
  m_Mask = vtkSmartPointer<vtkMaskPoints>::New();
  m_Mask->GenerateVerticesOff();
  if (owner != nullptr)
  {
    QtKXSettings settings;
    BeginSettingsGroup(settings, owner->typeName());
    loadGlyphDefaults(settings);
  }
  applyNanColor();
  applyGlyphType();
}

VXGlyphRepPimpl::~VXGlyphRepPimpl() = default;

// ---------------------------------------------------------------------------
// Data

vtkDataSet* VXGlyphRepPimpl::inputDataSet() const
{
  if (m_ArrayPass == nullptr || m_ArrayPass->GetNumberOfInputConnections(0) == 0)
    return nullptr;
  return vtkDataSet::SafeDownCast(m_ArrayPass->GetInputDataObject(0, 0));
}

vtkDataSet* VXGlyphRepPimpl::glyphedDataSet() const
{
  return m_Initialized ? vtkDataSet::SafeDownCast(m_Mapper->GetInputDataObject(0, 0)) : nullptr;
}

vtkIdType VXGlyphRepPimpl::glyphCount() const
{
  if (!m_Initialized)
    return 0;
  m_Mapper->GetInputAlgorithm()->Update();
  vtkDataSet* data = glyphedDataSet();
  return data != nullptr ? data->GetNumberOfPoints() : 0;
}

vtkAlgorithmOutput* VXGlyphRepPimpl::outputPort()
{
  return m_Initialized ? m_Mapper->GetInputConnection(0, 0) : nullptr;
}

vtkAlgorithmOutput* VXGlyphRepPimpl::inputPort()
{
  if (m_ArrayPass == nullptr || m_ArrayPass->GetNumberOfInputConnections(0) == 0)
    return nullptr;
  return m_ArrayPass->GetInputConnection(0, 0);
}

QStringList VXGlyphRepPimpl::orientationArrayChoices() const
{
  QStringList names;
  vtkDataSet* data = inputDataSet();
  if (data == nullptr)
    return names;
  vtkPointData* points = data->GetPointData();
  for (int i = 0; i < points->GetNumberOfArrays(); i++)
  {
    vtkDataArray* array = points->GetArray(i);
    if (array != nullptr && array->GetName() != nullptr && array->GetNumberOfComponents() == 3)
      names << QString::fromUtf8(array->GetName());
  }
  return names;
}

QStringList VXGlyphRepPimpl::scaleArrayChoices(ScaleMode mode) const
{
  QStringList names;
  vtkDataSet* data = inputDataSet();
  if (data == nullptr || mode == ScaleOff)
    return names;
  vtkPointData* points = data->GetPointData();
  for (int i = 0; i < points->GetNumberOfArrays(); i++)
  {
    vtkDataArray* array = points->GetArray(i);
    if (array == nullptr || array->GetName() == nullptr)
      continue;
    if ((mode == ScaleByScalar) == (array->GetNumberOfComponents() == 1))
      names << QString::fromUtf8(array->GetName());
  }
  return names;
}

double VXGlyphRepPimpl::defaultScaleFactor() const
{
  vtkDataSet* data = inputDataSet();
  if (data == nullptr || data->GetNumberOfPoints() == 0)
    return 1.0;
  double b[6];
  data->GetBounds(b);
  const double extent = std::max({ b[1] - b[0], b[3] - b[2], b[5] - b[4] });
  // a single point or a flat point cloud still gets glyphs of a visible size
  const double size = extent > 0.0 ? k_DefaultSizeOfExtent * extent : 1.0;
  if (m_ScaleMode == ScaleOff || m_ScaleArray.isEmpty())
    return size;
  const double largest =
    LargestMagnitude(data->GetPointData()->GetArray(m_ScaleArray.toStdString().c_str()));
  return largest > 0.0 ? size / largest : size;
}

bool VXGlyphRepPimpl::initialize(vtkAlgorithmOutput* port)
{
  if (m_View == nullptr || port == nullptr || port->GetProducer() == nullptr)
    return false;
  vtkRenderer* ren = renderer();
  if (ren != nullptr && ren->HasViewProp(m_Actor))
    return false;
  port->GetProducer()->Update(port->GetIndex());
  if (vtkDataSet::SafeDownCast(port->GetProducer()->GetOutputDataObject(port->GetIndex())) ==
      nullptr)
    return false;

  // a shallow pass: the parent's arrays are shared, only those not in use are dropped
  m_ArrayPass = vtkSmartPointer<vtkPassSelectedArrays>::New();
  m_ArrayPass->SetInputConnection(port);
  m_Mask->SetInputConnection(m_ArrayPass->GetOutputPort());
  m_Initialized = true;

  vtkDataSet* data = inputDataSet();
  chooseDefaultArrays();
  if (!m_Coloring.useSolidColor && m_Coloring.activeArray.isEmpty())
  {
    vtkDataArray* scalars = KXVtkModule::utils::GetActivePointArray(data);
    if (scalars == nullptr && data->GetPointData()->GetNumberOfArrays() > 0)
      scalars = data->GetPointData()->GetArray(0);
    if (scalars != nullptr && scalars->GetName() != nullptr)
      m_Coloring.activeArray = QString::fromUtf8(scalars->GetName());
  }
  if (m_ScaleFactorFromData)
    m_ScaleFactor = defaultScaleFactor();
  applySampling();
  applyOrientationAndScale();

  vtkNew<vtkOutlineFilter> outline;
  outline->SetInputConnection(m_ArrayPass->GetOutputPort());
  vtkNew<vtkPolyDataMapper> outlineMapper;
  outlineMapper->SetInputConnection(outline->GetOutputPort());
  m_HighlightActor = vtkSmartPointer<vtkActor>::New();
  m_HighlightActor->SetMapper(outlineMapper);
  vtkNew<vtkNamedColors> colors;
  m_HighlightActor->GetProperty()->SetColor(colors->GetColor3d("Magenta").GetData());
  m_HighlightActor->GetProperty()->SetLineWidth(3.0f);

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
  setupGridAxes();
  ensureTransformWidget();
  applyTransform();

  if (VXVisualizationWidget* widget = visualizationWidget(); widget != nullptr && m_Visible)
    widget->addActor(m_Actor);

  if (auto* glyphRep = qobject_cast<VXGlyphRep*>(m_Owner))
  {
    vtkNew<VXDataSetInfoWidgetUpdateCallback<VXGlyphRep>> infoCallback;
    infoCallback->setRepresentation(glyphRep);
    m_ArrayPass->AddObserver(vtkCommand::EndEvent, infoCallback);
  }
  observeDataUpdates(m_ArrayPass);

  setupScalarBar();
  if (VXDataSource* source = parentDataSource())
    connect(source, &VXDataSource::syncChildColorMaps, this,
            &VXGlyphRepPimpl::onSyncColorMapToParentGeometry, Qt::UniqueConnection);
  if (!m_DetachColorSettings)
    connectParentColorSignals(true);
  if (ren != nullptr)
    ren->ResetCamera();
  requestRender();
  return true;
}

bool VXGlyphRepPimpl::finalize()
{
  if (m_ScalarBarWidget != nullptr)
    m_ScalarBarWidget->SetEnabled(0);
  vtkRenderer* ren = renderer();
  if (m_View == nullptr || ren == nullptr || !ren->HasViewProp(m_Actor))
    return false;
  releaseTransformWidget();
  visualizationWidget()->removeActor(m_Actor);
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

void VXGlyphRepPimpl::receivePipelineOutputReloaded()
{
  if (!m_Initialized)
    return;
  m_UniqueValues.clear();
  inputPort()->GetProducer()->Update(inputPort()->GetIndex());
  // arrays that went away fall back to the data's own choice
  if (!m_OrientationArray.isEmpty() && !orientationArrayChoices().contains(m_OrientationArray))
  {
    m_ArraysChosen = false;
    m_OrientationArray.clear();
  }
  if (m_ScaleMode != ScaleOff && !scaleArrayChoices(m_ScaleMode).contains(m_ScaleArray))
  {
    m_ArraysChosen = false;
    m_ScaleArray.clear();
  }
  chooseDefaultArrays();
  vtkDataSet* data = inputDataSet();
  if (!m_Coloring.useSolidColor && data != nullptr && activeDataArray() == nullptr)
  {
    vtkDataArray* scalars = KXVtkModule::utils::GetActivePointArray(data);
    m_Coloring.activeArray = scalars != nullptr && scalars->GetName() != nullptr
                               ? QString::fromUtf8(scalars->GetName())
                               : QString();
  }
  if (m_ScaleFactorFromData)
    m_ScaleFactor = defaultScaleFactor();
  applySampling();
  applyOrientationAndScale();
  updateArrayColoringChoices();
  refillGlyphCombos();
  setActiveArray(m_Coloring.useSolidColor ? QString() : m_Coloring.activeArray);
  syncControls();
}

void VXGlyphRepPimpl::chooseDefaultArrays()
{
  if (m_ArraysChosen || inputDataSet() == nullptr)
    return;
  vtkDataArray* vectors = inputDataSet()->GetPointData()->GetVectors();
  const QStringList orientations = orientationArrayChoices();
  if (vectors != nullptr && vectors->GetName() != nullptr &&
      orientations.contains(QString::fromUtf8(vectors->GetName())))
    m_OrientationArray = QString::fromUtf8(vectors->GetName());
  else
    m_OrientationArray = orientations.isEmpty() ? QString() : orientations.first();
  const QStringList scales = scaleArrayChoices(m_ScaleMode);
  if (m_ScaleMode != ScaleOff && !scales.contains(m_ScaleArray))
    m_ScaleArray = scales.isEmpty() ? QString() : scales.first();
  m_ArraysChosen = true;
}

// ---------------------------------------------------------------------------
// Glyphs

void VXGlyphRepPimpl::applyGlyphType()
{
  m_GlyphSource = ShapeOf(m_GlyphType);
  m_Mapper->SetSourceConnection(m_GlyphSource->GetOutputPort());
}

void VXGlyphRepPimpl::applyOrientationAndScale()
{
  vtkDataSet* data = inputDataSet();
  const bool orient =
    data != nullptr && !m_OrientationArray.isEmpty() &&
    data->GetPointData()->GetArray(m_OrientationArray.toStdString().c_str()) != nullptr;
  m_Mapper->SetOrient(orient);
  if (orient)
  {
    m_Mapper->SetOrientationModeToDirection();
    m_Mapper->SetOrientationArray(m_OrientationArray.toStdString().c_str());
  }
  // scaling stays on: without an array the factor alone sizes every glyph
  m_Mapper->SetScaling(true);
  m_Mapper->SetClamping(false);
  m_Mapper->SetScaleFactor(m_ScaleFactor);
  const bool byArray =
    data != nullptr && m_ScaleMode != ScaleOff && !m_ScaleArray.isEmpty() &&
    data->GetPointData()->GetArray(m_ScaleArray.toStdString().c_str()) != nullptr;
  if (byArray)
  {
    m_Mapper->SetScaleModeToScaleByMagnitude();
    m_Mapper->SetScaleArray(m_ScaleArray.toStdString().c_str());
  }
  else
  {
    m_Mapper->SetScaleModeToNoDataScaling();
  }
}

void VXGlyphRepPimpl::applySampling()
{
  if (!m_Initialized)
    return;
  // only the arrays the glyphs read go on, so a mask copies nothing else
  vtkDataArraySelection* selection = m_ArrayPass->GetPointDataArraySelection();
  selection->RemoveAllArrays();
  for (const QString& name :
       { m_OrientationArray, m_ScaleMode != ScaleOff ? m_ScaleArray : QString(),
         m_Coloring.useSolidColor ? QString() : m_Coloring.activeArray })
  {
    if (!name.isEmpty())
      selection->EnableArray(name.toStdString().c_str());
  }
  m_ArrayPass->GetCellDataArraySelection()->RemoveAllArrays();
  m_ArrayPass->Modified();

  vtkDataSet* data = inputDataSet();
  const vtkIdType points = data != nullptr ? data->GetNumberOfPoints() : 0;
  bool masked = false;
  if (m_SamplingMode == EveryNthPoint && m_Stride > 1)
  {
    m_Mask->RandomModeOff();
    m_Mask->SetOffset(0);
    m_Mask->SetOnRatio(m_Stride);
    m_Mask->SetMaximumNumberOfPoints(std::numeric_limits<vtkIdType>::max());
    masked = true;
  }
  else if (m_SamplingMode == UniformRandomSubset && m_MaximumCount < points)
  {
    m_Mask->RandomModeOn();
    m_Mask->SetRandomModeType(vtkMaskPoints::RANDOM_SAMPLING);
    m_Mask->SetMaximumNumberOfPoints(m_MaximumCount);
    masked = true;
  }
  m_Mapper->SetInputConnection(masked ? m_Mask->GetOutputPort() : m_ArrayPass->GetOutputPort());
}

void VXGlyphRepPimpl::setGlyphType(int type)
{
  m_GlyphType = EnumFromInt<GlyphType>(type, static_cast<int>(k_GlyphTypeNames.size()));
  applyGlyphType();
  syncControls();
  requestRender();
}

void VXGlyphRepPimpl::setOrientationArray(const QString& arrayName)
{
  m_OrientationArray = arrayName == k_NoOrientation ? QString() : arrayName;
  m_ArraysChosen = true;
  applySampling();
  applyOrientationAndScale();
  syncControls();
  requestRender();
}

void VXGlyphRepPimpl::setScaleMode(int mode)
{
  m_ScaleMode = EnumFromInt<ScaleMode>(mode, static_cast<int>(k_ScaleModeNames.size()));
  const QStringList choices = scaleArrayChoices(m_ScaleMode);
  if (m_ScaleMode != ScaleOff && !choices.contains(m_ScaleArray) && m_Initialized)
    m_ScaleArray = choices.isEmpty() ? QString() : choices.first();
  m_ArraysChosen = m_ArraysChosen || m_Initialized;
  if (m_ScaleFactorFromData && m_Initialized)
    m_ScaleFactor = defaultScaleFactor();
  applySampling();
  applyOrientationAndScale();
  refillGlyphCombos();
  syncControls();
  requestRender();
}

void VXGlyphRepPimpl::setScaleArray(const QString& arrayName)
{
  m_ScaleArray = arrayName;
  if (m_ScaleFactorFromData && m_Initialized)
    m_ScaleFactor = defaultScaleFactor();
  applySampling();
  applyOrientationAndScale();
  syncControls();
  requestRender();
}

void VXGlyphRepPimpl::setScaleFactor(double factor)
{
  if (!(factor > 0.0) || !std::isfinite(factor))
    return;
  m_ScaleFactor = factor;
  m_ScaleFactorFromData = false;
  applyOrientationAndScale();
  syncControls();
  requestRender();
}

void VXGlyphRepPimpl::resetScaleFactor()
{
  m_ScaleFactorFromData = true;
  m_ScaleFactor = defaultScaleFactor();
  applyOrientationAndScale();
  syncControls();
  requestRender();
}

void VXGlyphRepPimpl::setSamplingMode(int mode)
{
  m_SamplingMode = EnumFromInt<SamplingMode>(mode, static_cast<int>(k_SamplingModeNames.size()));
  applySampling();
  syncControls();
  requestRender();
}

void VXGlyphRepPimpl::setStride(int stride)
{
  m_Stride = std::max(1, stride);
  applySampling();
  syncControls();
  requestRender();
}

void VXGlyphRepPimpl::setMaximumCount(int count)
{
  m_MaximumCount = std::max(1, count);
  applySampling();
  syncControls();
  requestRender();
}

// ---------------------------------------------------------------------------
// Colouring

void VXGlyphRepPimpl::setActiveArray(const QString& arrayName)
{
  if (inputDataSet() == nullptr)
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
  applySampling();
  if (m_DetachColorSettings && m_SolidColorButton != nullptr)
    m_SolidColorButton->setEnabled(m_Coloring.useSolidColor || arrayName.isEmpty());
  refillComponentCombo();
  setActiveComponent(m_Coloring.activeComponent);
  applyColoring();
  requestRender();
}

void VXGlyphRepPimpl::setActiveComponent(int component)
{
  vtkDataArray* array = activeDataArray();
  if (array == nullptr)
    return;
  const int c = component < -1 ? -1 : component;
  const std::string name = m_Coloring.activeArray.toStdString();
  m_Mapper->SetScalarModeToUsePointFieldData();
  m_Mapper->ColorByArrayComponent(name.c_str(), c);
  KXVtkModule::utils::UpdateColorMode(m_Coloring.scalarMapping, m_Owner, m_Actor, m_Mapper,
                                      m_Coloring.activeArray, &m_Coloring.scalarMapping, false);
  applyComponent(m_LookupTable->getColorTransferFunction(), array, c);
  applyRangeOfActiveComponent(array);
  if (m_Coloring.valuesAsCategories)
    applyIndexedPreset();
  updateHistogram();
}

void VXGlyphRepPimpl::applyColoring()
{
  vtkProperty* property = m_Actor->GetProperty();
  property->SetOpacity(m_Opacity);
  if (m_Coloring.useSolidColor || activeDataArray() == nullptr)
  {
    m_Mapper->ScalarVisibilityOff();
    property->SetColor(m_SolidColor.redF(), m_SolidColor.greenF(), m_SolidColor.blueF());
  }
  else
  {
    m_Mapper->ScalarVisibilityOn();
    m_Mapper->SetLookupTable(m_LookupTable->getColorTransferFunction());
  }
  setupScalarBar();
}

void VXGlyphRepPimpl::applyOpacity()
{
  m_Actor->GetProperty()->SetOpacity(m_Opacity);
}

void VXGlyphRepPimpl::setUseSolidColor(bool checked)
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
  if (m_HistogramCheckBox != nullptr)
    m_HistogramCheckBox->setEnabled(!checked);
  applyColoring();
  requestRender();
}

void VXGlyphRepPimpl::updateColorMode(int index)
{
  // as in the points family, the combo's choice lands in the active component field
  KXVtkModule::utils::UpdateColorMode(index, m_Owner, m_Actor, m_Mapper, m_Coloring.activeArray,
                                      &m_Coloring.activeComponent, false);
  requestRender();
}

vtkDataSet* VXGlyphRepPimpl::coloringDataSet() const
{
  // ranges come from all points, so a thinner sample keeps the same colours
  return inputDataSet();
}

// ---------------------------------------------------------------------------
// Legend, histogram, view

void VXGlyphRepPimpl::setGenerateHistogram(bool generate)
{
  m_Coloring.generateHistogram = generate;
  if (m_HistogramWidget != nullptr)
    m_HistogramWidget->setVisible(generate);
  updateHistogram();
}

void VXGlyphRepPimpl::updateHistogram()
{
  if (m_HistogramWidget == nullptr || m_BlockHistogram || !m_Coloring.generateHistogram)
    return;
  vtkDataArray* array = activeDataArray();
  if (array == nullptr)
    return;
  const std::array<double, 2> range = m_LookupTable->getRange();
  Q_EMIT histogramDataChanged(array, m_Coloring.activeComponent, m_Coloring.usingCustomRange,
                              m_Coloring.usingCustomRange ? m_Coloring.customRange[0] : range[0],
                              m_Coloring.usingCustomRange ? m_Coloring.customRange[1] : range[1]);
}

vtkProp3D* VXGlyphRepPimpl::coloredProp() const
{
  return m_Actor;
}

// ---------------------------------------------------------------------------
// State, clipboard, defaults

void VXGlyphRepPimpl::write(nlohmann::json& output) const
{
  VXScalarColoredRepPimpl::write(output);
  output["glyph_type"] = static_cast<int>(m_GlyphType);
  output["glyph_orientation_array"] = m_OrientationArray.toStdString();
  output["glyph_scale_mode"] = static_cast<int>(m_ScaleMode);
  output["glyph_scale_array"] = m_ScaleArray.toStdString();
  output["glyph_scale_factor"] = m_ScaleFactor;
  output["glyph_sampling_mode"] = static_cast<int>(m_SamplingMode);
  output["glyph_stride"] = m_Stride;
  output["glyph_maximum_count"] = m_MaximumCount;
}

void VXGlyphRepPimpl::read(const nlohmann::json& input)
{
  VXRepresentationPimpl::read(input);
  m_Coloring = currentColoringSettings();
  m_Coloring.read(input);
  if (input.contains("opacity_percent"))
    m_Opacity = std::clamp(input.at("opacity_percent").get<double>() / 100.0, 0.0, 1.0);
  if (input.contains("solid_color_r") && input.contains("solid_color_g") &&
      input.contains("solid_color_b"))
    m_SolidColor =
      QColor(std::clamp(KXVtkModule::utils::StateInt(input.at("solid_color_r")), 0, 255),
             std::clamp(KXVtkModule::utils::StateInt(input.at("solid_color_g")), 0, 255),
             std::clamp(KXVtkModule::utils::StateInt(input.at("solid_color_b")), 0, 255));
  if (input.contains("glyph_type"))
    m_GlyphType = EnumFromInt<GlyphType>(KXVtkModule::utils::StateInt(input.at("glyph_type")),
                                         static_cast<int>(k_GlyphTypeNames.size()));
  if (input.contains("glyph_orientation_array"))
  {
    m_OrientationArray =
      QString::fromStdString(input.at("glyph_orientation_array").get<std::string>());
    m_ArraysChosen = true;
  }
  if (input.contains("glyph_scale_mode"))
    m_ScaleMode = EnumFromInt<ScaleMode>(KXVtkModule::utils::StateInt(input.at("glyph_scale_mode")),
                                         static_cast<int>(k_ScaleModeNames.size()));
  if (input.contains("glyph_scale_array"))
    m_ScaleArray = QString::fromStdString(input.at("glyph_scale_array").get<std::string>());
  if (input.contains("glyph_scale_factor"))
  {
    const double factor = input.at("glyph_scale_factor").get<double>();
    if (factor > 0.0 && std::isfinite(factor))
    {
      m_ScaleFactor = factor;
      m_ScaleFactorFromData = false;
    }
  }
  if (input.contains("glyph_sampling_mode"))
    m_SamplingMode =
      EnumFromInt<SamplingMode>(KXVtkModule::utils::StateInt(input.at("glyph_sampling_mode")),
                                static_cast<int>(k_SamplingModeNames.size()));
  if (input.contains("glyph_stride"))
    m_Stride = std::max(1, KXVtkModule::utils::StateInt(input.at("glyph_stride")));
  if (input.contains("glyph_maximum_count"))
    m_MaximumCount = std::max(1, KXVtkModule::utils::StateInt(input.at("glyph_maximum_count")));
  applyNanColor();
  applyGlyphType();
  applyLegendPosition();
  if (!m_Initialized)
    return;
  applySampling();
  applyOrientationAndScale();
  applyReadColoring();
  refillGlyphCombos();
  syncControls();
}

void VXGlyphRepPimpl::copyFrom(VXRepresentationPimpl* other)
{
  VXRepresentationPimpl::copyFrom(other);
  auto* source = dynamic_cast<VXGlyphRepPimpl*>(other);
  if (source == nullptr)
    return;
  m_Coloring = source->currentColoringSettings();
  m_SolidColor = source->m_SolidColor;
  m_Opacity = source->m_Opacity;
  m_GlyphType = source->m_GlyphType;
  m_OrientationArray = source->m_OrientationArray;
  m_ScaleMode = source->m_ScaleMode;
  m_ScaleArray = source->m_ScaleArray;
  m_ScaleFactor = source->m_ScaleFactor;
  m_ScaleFactorFromData = source->m_ScaleFactorFromData;
  m_ArraysChosen = source->m_ArraysChosen;
  m_SamplingMode = source->m_SamplingMode;
  m_Stride = source->m_Stride;
  m_MaximumCount = source->m_MaximumCount;
  applyNanColor();
  applyGlyphType();
}

void VXGlyphRepPimpl::loadGlyphDefaults(QtKXSettings& settings)
{
  m_Coloring = currentColoringSettings();
  m_Coloring.loadDefaults(settings);
  if (settings.contains("opacity_percent"))
    m_Opacity = std::clamp(settings.value("opacity_percent", 100).toDouble() / 100.0, 0.0, 1.0);
  if (settings.contains("glyph_type"))
    m_GlyphType = EnumFromInt<GlyphType>(settings.value("glyph_type", 0).toInt(),
                                         static_cast<int>(k_GlyphTypeNames.size()));
  if (settings.contains("glyph_scale_mode"))
    m_ScaleMode = EnumFromInt<ScaleMode>(settings.value("glyph_scale_mode", 0).toInt(),
                                         static_cast<int>(k_ScaleModeNames.size()));
  if (settings.contains("glyph_sampling_mode"))
    m_SamplingMode = EnumFromInt<SamplingMode>(settings.value("glyph_sampling_mode", 2).toInt(),
                                               static_cast<int>(k_SamplingModeNames.size()));
  if (settings.contains("glyph_stride"))
    m_Stride = std::max(1, settings.value("glyph_stride", 10).toInt());
  if (settings.contains("glyph_maximum_count"))
    m_MaximumCount = std::max(1, settings.value("glyph_maximum_count", 5000).toInt());
}

void VXGlyphRepPimpl::loadDefaultSettings()
{
  VXRepresentationPimpl::loadDefaultSettings();
  if (m_Owner == nullptr)
    return;
  QtKXSettings settings;
  BeginSettingsGroup(settings, m_Owner->typeName());
  loadGlyphDefaults(settings);
  applyNanColor();
  applyGlyphType();
}

void VXGlyphRepPimpl::saveDefaultSettings()
{
  if (m_Owner == nullptr || !askSaveDefaults())
    return;
  QtKXSettings settings;
  BeginSettingsGroup(settings, m_Owner->typeName());
  saveBaseDefaults(settings);
  currentColoringSettings().saveDefaults(settings);
  // arrays and the factor belong to one data set: they are not defaults
  settings.setValue("opacity_percent", m_Opacity * 100.0);
  settings.setValue("glyph_type", static_cast<int>(m_GlyphType));
  settings.setValue("glyph_scale_mode", static_cast<int>(m_ScaleMode));
  settings.setValue("glyph_sampling_mode", static_cast<int>(m_SamplingMode));
  settings.setValue("glyph_stride", m_Stride);
  settings.setValue("glyph_maximum_count", m_MaximumCount);
  settings.sync();
}

// ---------------------------------------------------------------------------
// Page

void VXGlyphRepPimpl::refillGlyphCombos()
{
  SetComboItems(m_OrientationCombo, QStringList{ k_NoOrientation } + orientationArrayChoices(),
                m_OrientationArray.isEmpty() ? k_NoOrientation : m_OrientationArray);
  SetComboItems(m_ScaleArrayCombo, scaleArrayChoices(m_ScaleMode), m_ScaleArray);
}

void VXGlyphRepPimpl::syncControls()
{
  auto setChecked = [](QAbstractButton* box, bool value)
  {
    if (box == nullptr)
      return;
    const QSignalBlocker blocker(box);
    box->setChecked(value);
  };
  auto setIndex = [](QComboBox* combo, int index)
  {
    if (combo == nullptr)
      return;
    const QSignalBlocker blocker(combo);
    combo->setCurrentIndex(index);
  };
  auto setSpin = [](QSpinBox* box, int value, bool enabled)
  {
    if (box == nullptr)
      return;
    const QSignalBlocker blocker(box);
    box->setValue(value);
    box->setEnabled(enabled);
  };
  setIndex(m_GlyphTypeCombo, m_GlyphType);
  setIndex(m_ScaleModeCombo, m_ScaleMode);
  setIndex(m_SamplingCombo, m_SamplingMode);
  setIndex(m_ScalarMappingCombo, m_Coloring.scalarMapping);
  setIndex(m_OrientationCombo, m_OrientationCombo != nullptr
                                 ? std::max(0, m_OrientationCombo->findText(m_OrientationArray))
                                 : 0);
  if (m_ScaleArrayCombo != nullptr)
  {
    setIndex(m_ScaleArrayCombo, std::max(0, m_ScaleArrayCombo->findText(m_ScaleArray)));
    m_ScaleArrayCombo->setEnabled(m_ScaleMode != ScaleOff);
  }
  if (m_ScaleFactorSpinBox != nullptr)
  {
    const QSignalBlocker blocker(m_ScaleFactorSpinBox);
    m_ScaleFactorSpinBox->setValue(m_ScaleFactor);
  }
  setSpin(m_StrideSpinBox, m_Stride, m_SamplingMode == EveryNthPoint);
  setSpin(m_MaximumCountSpinBox, m_MaximumCount, m_SamplingMode == UniformRandomSubset);
  setChecked(m_DetachColorCheckBox, m_DetachColorSettings);
  setChecked(m_SolidColorCheckBox, m_Coloring.useSolidColor);
  setChecked(m_CategoriesCheckBox, m_Coloring.valuesAsCategories);
  setChecked(m_LegendCheckBox, m_Coloring.showLegend);
  setChecked(m_HistogramCheckBox, m_Coloring.generateHistogram);
  if (m_HistogramWidget != nullptr)
    m_HistogramWidget->setVisible(m_Coloring.generateHistogram);
  if (m_OpacitySlider != nullptr)
  {
    const QSignalBlocker blocker(m_OpacitySlider);
    m_OpacitySlider->setValue(static_cast<int>(m_Opacity * 100.0 + 0.5));
  }
  if (m_EditColorMapButton != nullptr)
    m_EditColorMapButton->setEnabled(!m_Coloring.useSolidColor);
  if (m_ComponentCombo != nullptr)
    m_ComponentCombo->setEnabled(!m_Coloring.useSolidColor);
  updateArrayColoringChoices();
  refillComponentCombo();
}

void VXGlyphRepPimpl::buildSettingsPage()
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
  auto combo = [&](const QString& name, const QStringList& items)
  {
    auto* box = new QComboBox(m_PageContent);
    box->setObjectName(name);
    box->addItems(items);
    return box;
  };

  QFormLayout* glyphs = section("Glyph");
  m_GlyphTypeCombo = combo("m_GlyphTypeCombo", k_GlyphTypeNames);
  glyphs->addRow("Glyph Type", m_GlyphTypeCombo);
  m_OrientationCombo = combo("m_OrientationCombo", {});
  glyphs->addRow("Orientation Array", m_OrientationCombo);
  m_ScaleModeCombo = combo("m_ScaleModeCombo", k_ScaleModeNames);
  glyphs->addRow("Scale Mode", m_ScaleModeCombo);
  m_ScaleArrayCombo = combo("m_ScaleArrayCombo", {});
  glyphs->addRow("Scale Array", m_ScaleArrayCombo);
  auto* factorRow = new QWidget(m_PageContent);
  auto* factorLayout = new QHBoxLayout(factorRow);
  factorLayout->setContentsMargins(0, 0, 0, 0);
  m_ScaleFactorSpinBox = new QDoubleSpinBox(factorRow);
  m_ScaleFactorSpinBox->setObjectName("m_ScaleFactorSpinBox");
  m_ScaleFactorSpinBox->setDecimals(6);
  m_ScaleFactorSpinBox->setRange(1e-6, 1e9);
  factorLayout->addWidget(m_ScaleFactorSpinBox, 1);
  m_ResetScaleFactorButton =
    addPageButton(factorLayout, "ScaleToData", "Reset", "resetScaleFactorButton");
  glyphs->addRow("Scale Factor", factorRow);

  QFormLayout* sampling = section("Sampling");
  m_SamplingCombo = combo("m_SamplingCombo", k_SamplingModeNames);
  sampling->addRow("Glyph Points", m_SamplingCombo);
  m_StrideSpinBox = new QSpinBox(m_PageContent);
  m_StrideSpinBox->setObjectName("m_StrideSpinBox");
  m_StrideSpinBox->setRange(1, std::numeric_limits<int>::max());
  sampling->addRow("Every N", m_StrideSpinBox);
  m_MaximumCountSpinBox = new QSpinBox(m_PageContent);
  m_MaximumCountSpinBox->setObjectName("m_MaximumCountSpinBox");
  m_MaximumCountSpinBox->setRange(1, std::numeric_limits<int>::max());
  sampling->addRow("Maximum Glyphs", m_MaximumCountSpinBox);

  addColoringSections(section);

  QFormLayout* histogram = section("Array Histogram");
  m_HistogramCheckBox = new QCheckBox("Generate Active Array Histogram", m_PageContent);
  m_HistogramCheckBox->setObjectName("m_HistogramCheckBox");
  m_HistogramCheckBox->setEnabled(!m_Coloring.useSolidColor);
  histogram->addRow(m_HistogramCheckBox);
  m_HistogramWidget = new VXArrayHistogramWidget(m_PageContent);
  histogram->addRow(m_HistogramWidget);
  pageLayout->addStretch(1);

  refillGlyphCombos();
  syncControls();
  connect(m_GlyphTypeCombo, &QComboBox::currentIndexChanged, this, &VXGlyphRepPimpl::setGlyphType);
  connect(m_OrientationCombo, &QComboBox::currentTextChanged, this,
          &VXGlyphRepPimpl::setOrientationArray);
  connect(m_ScaleModeCombo, &QComboBox::currentIndexChanged, this, &VXGlyphRepPimpl::setScaleMode);
  connect(m_ScaleArrayCombo, &QComboBox::currentTextChanged, this, &VXGlyphRepPimpl::setScaleArray);
  connect(m_ScaleFactorSpinBox, &QDoubleSpinBox::valueChanged, this,
          &VXGlyphRepPimpl::setScaleFactor);
  connect(m_ResetScaleFactorButton, &QPushButton::clicked, this,
          &VXGlyphRepPimpl::resetScaleFactor);
  connect(m_SamplingCombo, &QComboBox::currentIndexChanged, this,
          &VXGlyphRepPimpl::setSamplingMode);
  connect(m_StrideSpinBox, &QSpinBox::valueChanged, this, &VXGlyphRepPimpl::setStride);
  connect(m_MaximumCountSpinBox, &QSpinBox::valueChanged, this, &VXGlyphRepPimpl::setMaximumCount);
  connectColoringControls();
  connect(m_HistogramCheckBox, &QCheckBox::toggled, this, &VXGlyphRepPimpl::setGenerateHistogram);
  connect(this, &VXGlyphRepPimpl::histogramDataChanged, m_HistogramWidget,
          &VXArrayHistogramWidget::setArray);
  updateHistogram();
}

void VXGlyphRepPimpl::updateToolTips()
{
  auto tip = [](QWidget* widget, const QString& text)
  {
    if (widget != nullptr)
      widget->setToolTip(HtmlToolTip(text));
  };
  tip(m_GlyphTypeCombo, "The shape drawn at each point");
  tip(m_OrientationCombo, "The vector array that turns each glyph; without one the glyphs keep "
                          "the direction of their shape");
  tip(m_ScaleModeCombo, "Size every glyph the same (Off), by a scalar array, or by the magnitude "
                        "of a vector array");
  tip(m_ScaleArrayCombo, "The array whose value or magnitude sizes each glyph");
  tip(m_ScaleFactorSpinBox, "Multiplies every glyph's size");
  tip(m_ResetScaleFactorButton, "Size the largest glyph to a tenth of the data's extent");
  tip(m_SamplingCombo, "Which points get a glyph: all of them, every Nth point, or a uniform "
                       "random subset of at most the maximum count");
  tip(m_StrideSpinBox, "A glyph at every Nth point");
  tip(m_MaximumCountSpinBox, "The most glyphs a uniform random subset draws");
  updateColoringToolTips();
  tip(m_OpacitySlider, "Use this to adjust the opacity of the geometry");
  tip(m_HistogramCheckBox, "Toggle the generation of the active array histogram on/off. WARNING: "
                           "This may slow down rendering!");
}
