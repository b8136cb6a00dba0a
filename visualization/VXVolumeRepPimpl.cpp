#include "visualization/VXVolumeRepPimpl.hpp"

#include "utils/KXVtkModuleUtils.hpp"
#include "utils/PopulateHistogram.hpp"
#include "visualization/QtWidgets/VXCustomRangeDialog.hpp"
#include "visualization/QtWidgets/VXColorMapEditorWidget.hpp"
#include "visualization/QtWidgets/VXHistogramOpacityWidget.hpp"
#include "visualization/QtWidgets/VXFTransformFilterWidget.hpp"
#include "visualization/QtWidgets/VXVisualizationWidget.hpp"
#include "visualization/VXDataSource.hpp"
#include "visualization/VXLookupTable.hpp"
#include "visualization/VXPipeline.hpp"
#include "visualization/VXRepresentationCallbacks.hpp"
#include "visualization/VXRepresentationUtils.hpp"
#include "visualization/VXUpdateHistogramCallback.hpp"
#include "visualization/VXUserPrompt.hpp"
#include "visualization/VXVolumeComponentReduceFilter.hpp"
#include "visualization/VXVolumeRep.hpp"

#include <KXComponents/ColorPresetsDialog.hpp>
#include <KXComponents/KXIconPushButton.hpp>
#include <KXComponents/KXPreferences.hpp>
#include <KXComponents/QtKXSettings.hpp>

#include <QtCore/QDebug>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QVBoxLayout>

#include <vtkAlgorithmOutput.h>
#include <vtkCellData.h>
#include <vtkColorTransferFunction.h>
#include <vtkCommand.h>
#include <vtkDataArray.h>
#include <vtkImageData.h>
#include <vtkNamedColors.h>
#include <vtkOutlineFilter.h>
#include <vtkPointData.h>
#include <vtkPolyDataMapper.h>
#include <vtkProperty.h>
#include <vtkRenderer.h>
#include <vtkScalarBarActor.h>
#include <vtkTable.h>
#include <vtkScalarBarRepresentation.h>
#include <vtkScalarBarWidget.h>
#include <vtkTextProperty.h>

#include <algorithm>
#include <vector>

using KXVtkModule::utils::HtmlToolTip;

namespace
{
const char* const k_ReducedName = VXVolumeComponentReduceFilter::k_ReducedArrayName;

vtkImageData* ImageAt(vtkAlgorithmOutput* port)
{
  if (port == nullptr || port->GetProducer() == nullptr)
    return nullptr;
  port->GetProducer()->Update(port->GetIndex());
  return vtkImageData::SafeDownCast(port->GetProducer()->GetOutputDataObject(port->GetIndex()));
}

/** An opacity ramp from transparent at @p min to opaque at @p max. */
vtkSmartPointer<vtkPiecewiseFunction> DefaultOpacity(double min, double max)
{
  auto function = vtkSmartPointer<vtkPiecewiseFunction>::New();
  function->AddPoint(min, 0.0);
  function->AddPoint(max, 1.0);
  return function;
}

nlohmann::json OpacityToJson(vtkPiecewiseFunction* function)
{
  nlohmann::json points = nlohmann::json::array();
  double node[4];
  for (int i = 0; i < function->GetSize(); ++i)
  {
    function->GetNodeValue(i, node);
    points.push_back({ node[0], node[1], node[2], node[3] });
  }
  return points;
}

vtkSmartPointer<vtkPiecewiseFunction> OpacityFromJson(const nlohmann::json& points)
{
  auto function = vtkSmartPointer<vtkPiecewiseFunction>::New();
  for (const nlohmann::json& point : points)
  {
    const auto values = point.get<std::vector<double>>();
    if (values.size() >= 4)
      function->AddPoint(values[0], values[1], values[2], values[3]);
    else if (values.size() >= 2)
      function->AddPoint(values[0], values[1]);
  }
  return function;
}
} // namespace

VXVolumeRepPimpl::VXVolumeRepPimpl(VXAbstractViewWidget* view, VXRepresentation* owner)
  : VXRepresentationPimpl(view, owner)
  , m_ColorPreset(KXPreferences::getDefaultColorPreset())
{
  m_HelpUrl += "#volume-representation";
  m_Volume = vtkSmartPointer<vtkVolume>::New();
  m_VolumeMapper = vtkSmartPointer<vtkSmartVolumeMapper>::New();
  m_ReduceFilter = vtkSmartPointer<VXVolumeComponentReduceFilter>::New();
  m_VolumeProperty = vtkSmartPointer<vtkVolumeProperty>::New();
  m_ScalarBarWidget = vtkSmartPointer<vtkScalarBarWidget>::New();
  m_ColorPresetsDialog =
    QSharedPointer<ColorPresetsDialog>(new ColorPresetsDialog(), &QObject::deleteLater);
  connect(m_ColorPresetsDialog.data(), &ColorPresetsDialog::presetSelected, this,
          &VXVolumeRepPimpl::loadPresetColors);
  m_CustomRangeDialog =
    QSharedPointer<VXCustomRangeDialog>(new VXCustomRangeDialog(), &QObject::deleteLater);
  connect(m_CustomRangeDialog.data(), &VXCustomRangeDialog::rangeAccepted, this,
          &VXVolumeRepPimpl::rescaleToCustomRange);
  if (auto* volumeRep = qobject_cast<VXVolumeRep*>(owner))
  {
    vtkNew<VXDataSetInfoWidgetUpdateCallback<VXVolumeRep>> infoCallback;
    infoCallback->setRepresentation(volumeRep);
    m_ReduceFilter->AddObserver(vtkCommand::EndEvent, infoCallback);
  }
  vtkNew<VXUpdateHistogramCallback> histogramCallback;
  histogramCallback->setRepresentationPimpl(this);
  m_ReduceFilter->AddObserver(vtkCommand::EndEvent, histogramCallback);
  if (owner != nullptr)
    loadDefaultSettings();
}

VXVolumeRepPimpl::~VXVolumeRepPimpl()
{
  if (m_ScalarBarWidget != nullptr)
  {
    m_ScalarBarWidget->SetEnabled(0);
    m_ScalarBarWidget->SetInteractor(nullptr);
  }
}

// ---------------------------------------------------------------------------
// Data

vtkAlgorithmOutput* VXVolumeRepPimpl::inputPort()
{
  return m_InputPort;
}

vtkAlgorithmOutput* VXVolumeRepPimpl::outputPort()
{
  return m_InputPort;
}

vtkImageData* VXVolumeRepPimpl::inputImage() const
{
  return vtkImageData::SafeDownCast(m_VolumeMapper->GetInput());
}

VXHistogramOpacityWidget* VXVolumeRepPimpl::opacityEditor() const
{
  return m_OpacityEditor;
}

VXColorMapEditorWidget* VXVolumeRepPimpl::colorMapEditor() const
{
  return m_ColorMapEditor;
}

VXDataSource* VXVolumeRepPimpl::parentDataSource() const
{
  return m_Owner != nullptr ? m_Owner->parentDataSource() : nullptr;
}

vtkDataArray* VXVolumeRepPimpl::findArray(vtkImageData* image, const QString& name,
                                          bool* isCellArray) const
{
  if (image == nullptr || name.isEmpty())
    return nullptr;
  const std::string key = name.toStdString();
  if (vtkDataArray* array = image->GetPointData()->GetArray(key.c_str()))
  {
    if (isCellArray != nullptr)
      *isCellArray = false;
    return array;
  }
  vtkDataArray* array = image->GetCellData()->GetArray(key.c_str());
  if (array != nullptr && isCellArray != nullptr)
    *isCellArray = true;
  return array;
}

std::array<double, 2> VXVolumeRepPimpl::dataRange() const
{
  vtkImageData* image = ImageAt(m_InputPort);
  double range[2] = { 0.0, 1.0 };
  if (vtkDataArray* array = findArray(image, m_ActiveArray, nullptr))
    array->GetFiniteRange(range, m_ActiveComponent);
  else if (image != nullptr)
    image->GetScalarRange(range);
  return { range[0], range[1] };
}

bool VXVolumeRepPimpl::checkTextureLimit(vtkImageData* image)
{
  VXVisualizationWidget* widget = visualizationWidget();
  if (widget == nullptr || image == nullptr)
    return false;
  widget->makeCurrent();
  int dims[3];
  image->GetDimensions(dims);
  int maxSize = 0;
  if (widget->areDimensionsValid(dims[0], dims[1], dims[2], maxSize))
    return true;
  const QString text = k_InvalidTextureText.arg(dims[0]).arg(dims[1]).arg(dims[2]).arg(maxSize);
  VXPipeline* pipeline = m_Owner != nullptr ? m_Owner->pipeline() : nullptr;
  if (pipeline != nullptr)
    Q_EMIT pipeline->sendPopupMessage(k_InvalidTextureTitle, text);
  else
    qWarning().noquote() << text;
  return false;
}

// ---------------------------------------------------------------------------
// Life cycle

bool VXVolumeRepPimpl::initialize(vtkAlgorithmOutput* port)
{
  if (m_View == nullptr || port == nullptr)
    return false;
  vtkImageData* image = ImageAt(port);
  if (image == nullptr)
    return false;
  m_InputPort = port;
  if (!checkTextureLimit(image))
    return false;
  if (VXDataSource* source = parentDataSource())
    image->SetObjectName(source->name().toStdString());
  m_VolumeMapper->SetInputConnection(port);
  m_VolumeMapper->SetBlendModeToComposite();
  m_VolumeMapper->SetRequestedRenderModeToDefault();
  // interactive frames may sample coarser; the still frame is always full resolution
  m_VolumeMapper->SetAutoAdjustSampleDistances(1);
  m_VolumeMapper->SetInteractiveUpdateRate(4.0);
  if (m_VolumeMapper->GetNumberOfInputConnections(0) == 0)
    return false;

  if (m_ActiveArray.isEmpty() || findArray(image, m_ActiveArray, nullptr) == nullptr)
  {
    vtkDataArray* array = KXVtkModule::utils::GetActiveCellArray(image);
    if (array == nullptr)
      array = KXVtkModule::utils::GetActivePointArray(image);
    m_ActiveArray = array != nullptr && array->GetName() != nullptr
                      ? QString::fromUtf8(array->GetName())
                      : QString();
  }
  CustomRange& record = m_ArrayCustomRanges[m_ActiveArray];
  if (record.used)
    m_CustomRangeDialog->setRangeAndValues(dataRange(), { record.min, record.max });
  else
  {
    const std::array<double, 2> range = dataRange();
    m_CustomRangeDialog->setRange(range[0], range[1]);
    record = { false, range[0], range[1] };
  }
  ensureFunctions({ record.min, record.max });

  m_VolumeProperty->ShadeOff(0);
  m_VolumeProperty->SetInterpolationTypeToLinear();
  m_VolumeProperty->SetAmbient(0, 0.0);
  m_VolumeProperty->SetDiffuse(0, 1.0);
  m_VolumeProperty->SetSpecular(0, 1.0);
  m_VolumeProperty->SetSpecularPower(0, 100.0);
  applyFunctions();
  setActiveComponent(m_ActiveComponent);
  m_Volume->SetProperty(m_VolumeProperty);
  m_Volume->SetMapper(m_VolumeMapper);

  vtkNew<vtkOutlineFilter> outline;
  outline->SetInputConnection(port);
  vtkNew<vtkPolyDataMapper> outlineMapper;
  outlineMapper->SetInputConnection(outline->GetOutputPort());
  m_HighlightActor = vtkSmartPointer<vtkActor>::New();
  m_HighlightActor->SetMapper(outlineMapper);
  vtkNew<vtkNamedColors> colors;
  m_HighlightActor->GetProperty()->SetColor(colors->GetColor3d("Magenta").GetData());
  m_HighlightActor->GetProperty()->SetLineWidth(3.0f);

  m_Initialized = true;
  setupScalarBar();
  if (VXVisualizationWidget* widget = visualizationWidget(); widget != nullptr && m_Visible)
    widget->addActor(m_Volume);
  setupGridAxes();
  ensureTransformWidget();
  applyTransform();
  if (vtkRenderer* ren = renderer())
    ren->ResetCamera();
  requestRender();
  return true;
}

bool VXVolumeRepPimpl::finalize()
{
  vtkRenderer* ren = renderer();
  if (m_ScalarBarWidget != nullptr)
    m_ScalarBarWidget->SetEnabled(0);
  if (m_View == nullptr || ren == nullptr || !ren->HasViewProp(m_Volume))
    return false;
  releaseTransformWidget();
  visualizationWidget()->removeActor(m_Volume);
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

void VXVolumeRepPimpl::receivePipelineOutputReloaded()
{
  vtkImageData* image = ImageAt(m_InputPort);
  if (image == nullptr || !checkTextureLimit(image))
    return;
  updateArrayColoringChoices();
  if (findArray(image, m_ActiveArray, nullptr) == nullptr)
  {
    const QMap<QString, QIcon> names = parentDataSource() != nullptr
                                         ? parentDataSource()->getImportedArrayNames()
                                         : QMap<QString, QIcon>();
    m_ActiveArray = names.isEmpty() ? QString() : names.firstKey();
  }
  setActiveComponent(m_ActiveComponent);
}

// ---------------------------------------------------------------------------
// Arrays, components and their functions

void VXVolumeRepPimpl::ensureFunctions(const std::array<double, 2>& range)
{
  if (m_ArrayLookupTables.count(m_ActiveArray) == 0)
  {
    auto table = QSharedPointer<VXLookupTable>(new VXLookupTable());
    applyPresetTo(table.data());
    table->setRange(range[0], range[1]);
    m_ArrayLookupTables[m_ActiveArray] = table;
  }
  if (m_ArrayOpacityFunctions.count(m_ActiveArray) == 0)
  {
    const CustomRange record = customRange(m_ActiveArray);
    const std::array<double, 2> opacityRange =
      record.used ? std::array<double, 2>{ record.min, record.max } : dataRange();
    m_ArrayOpacityFunctions[m_ActiveArray] = DefaultOpacity(opacityRange[0], opacityRange[1]);
  }
}

void VXVolumeRepPimpl::applyPresetTo(VXLookupTable* table) const
{
  if (!m_UsingDefaultPreset)
    table->parseRgbJson(m_ColorPreset);
  else
    table->createDefaultRgbColorTransferFunction();
  if (m_ColorMapInverted != table->isInverted())
    table->invert();
}

void VXVolumeRepPimpl::applyFunctions()
{
  VXLookupTable* table = lookupTable(m_ActiveArray);
  vtkPiecewiseFunction* opacity = opacityFunction(m_ActiveArray);
  if (table == nullptr || opacity == nullptr)
    return;
  m_VolumeProperty->SetColor(0, table->getColorTransferFunction());
  m_VolumeProperty->SetScalarOpacity(0, opacity);
  if (m_ScalarBarRepresentation != nullptr)
    m_ScalarBarWidget->GetScalarBarActor()->SetLookupTable(table->getColorTransferFunction());
  Q_EMIT transferFunctionsChanged();
}

void VXVolumeRepPimpl::setActiveArray(const QString& arrayName)
{
  vtkImageData* image = ImageAt(m_InputPort);
  if (findArray(image, arrayName, nullptr) == nullptr)
    return;
  m_ActiveArray = arrayName;
  CustomRange& record = m_ArrayCustomRanges[m_ActiveArray];
  if (!record.used)
  {
    const std::array<double, 2> range = dataRange();
    record = { false, range[0], range[1] };
  }
  refillComponentCombo();
  setActiveComponent(m_ActiveComponent);
}

void VXVolumeRepPimpl::setActiveComponent(int component)
{
  const int c = std::max(component, -1);
  vtkImageData* image = ImageAt(m_InputPort);
  bool cells = false;
  vtkDataArray* array = findArray(image, m_ActiveArray, &cells);
  if (array == nullptr)
    return;
  m_ActiveComponent = c;
  const int n = array->GetNumberOfComponents();
  const std::string name = m_ActiveArray.toStdString();
  if (n > 1)
  {
    m_ReduceFilter->SetInputConnection(m_InputPort);
    m_ReduceFilter->SetArrayName(name.c_str());
    m_ReduceFilter->SetComponent(c);
    m_ReduceFilter->Update();
    m_VolumeMapper->SetInputConnection(m_ReduceFilter->GetOutputPort());
    m_VolumeMapper->SelectScalarArray(k_ReducedName);
  }
  else
  {
    m_VolumeMapper->SetInputConnection(m_InputPort);
    m_VolumeMapper->SelectScalarArray(name.c_str());
    m_ReduceFilter->RemoveAllInputConnections(0);
  }
  if (cells)
    m_VolumeMapper->SetScalarModeToUseCellFieldData();
  else
    m_VolumeMapper->SetScalarModeToUsePointFieldData();

  CustomRange& record = m_ArrayCustomRanges[m_ActiveArray];
  ensureFunctions(record.used ? std::array<double, 2>{ record.min, record.max } : dataRange());
  if (n >= 2 && !record.used)
  {
    // each component has its own range: table and opacity follow it, relative points kept
    const std::array<double, 2> range = dataRange();
    lookupTable(m_ActiveArray)->setRange(range[0], range[1]);
    rescaleOpacity(opacityFunction(m_ActiveArray), range[0], range[1]);
    record = { false, range[0], range[1] };
    m_CustomRangeDialog->setRange(range[0], range[1]);
  }
  applyFunctions();

  if (n > 1 && c == -1)
    m_LegendTitle = m_ActiveArray + " Magnitude";
  else if (n > 1)
  {
    const QList<QString> names = parentDataSource() != nullptr
                                   ? parentDataSource()->getComponentNames(m_ActiveArray)
                                   : QList<QString>();
    // the data source lists "Magnitude" first, then the components
    const int index = names.value(0) == "Magnitude" ? c + 1 : c;
    m_LegendTitle = m_ActiveArray + " " + names.value(index, QString::number(std::min(c, n - 1)));
  }
  else
    m_LegendTitle = m_ActiveArray;
  if (m_ScalarBarRepresentation != nullptr)
    m_ScalarBarWidget->GetScalarBarActor()->SetTitle(m_LegendTitle.toStdString().c_str());
  updateHistogram();
  requestRender();
}

void VXVolumeRepPimpl::rescaleOpacity(vtkPiecewiseFunction* function, double min, double max)
{
  if (function == nullptr || function->GetSize() == 0)
    return;
  double range[2];
  function->GetRange(range);
  const double oldWidth = range[1] - range[0];
  std::vector<std::array<double, 4>> nodes(function->GetSize());
  for (int i = 0; i < function->GetSize(); ++i)
    function->GetNodeValue(i, nodes[i].data());
  function->RemoveAllPoints();
  for (const auto& node : nodes)
  {
    const double t = oldWidth > 0.0 ? (node[0] - range[0]) / oldWidth : 0.0;
    function->AddPoint(min + t * (max - min), node[1], node[2], node[3]);
  }
}

VXLookupTable* VXVolumeRepPimpl::lookupTable(const QString& arrayName) const
{
  auto found = m_ArrayLookupTables.find(arrayName);
  return found != m_ArrayLookupTables.end() ? found->second.data() : nullptr;
}

vtkPiecewiseFunction* VXVolumeRepPimpl::opacityFunction(const QString& arrayName) const
{
  auto found = m_ArrayOpacityFunctions.find(arrayName);
  return found != m_ArrayOpacityFunctions.end() ? found->second.Get() : nullptr;
}

VXVolumeRepPimpl::CustomRange VXVolumeRepPimpl::customRange(const QString& arrayName) const
{
  auto found = m_ArrayCustomRanges.find(arrayName);
  return found != m_ArrayCustomRanges.end() ? found->second : CustomRange{};
}

void VXVolumeRepPimpl::arrayNameComboChanged(QString text)
{
  setActiveArray(text);
}

void VXVolumeRepPimpl::arrayComponentComboChanged(int index)
{
  if (m_ComponentCombo == nullptr || index < 0)
    return;
  setActiveComponent(m_ComponentCombo->itemText(index) == "Magnitude" ? -1 : index);
}

void VXVolumeRepPimpl::rescaleToDataRange()
{
  VXLookupTable* table = lookupTable(m_ActiveArray);
  if (table == nullptr)
    return;
  const std::array<double, 2> range = dataRange();
  table->setRange(range[0], range[1]);
  rescaleOpacity(opacityFunction(m_ActiveArray), range[0], range[1]);
  m_ArrayCustomRanges[m_ActiveArray] = { false, range[0], range[1] };
  m_CustomRangeDialog->setRange(range[0], range[1]);
  Q_EMIT transferFunctionsChanged();
  requestRender();
}

void VXVolumeRepPimpl::rescaleToCustomRange(double min, double max)
{
  VXLookupTable* table = lookupTable(m_ActiveArray);
  if (table == nullptr)
    return;
  table->setRange(min, max);
  rescaleOpacity(opacityFunction(m_ActiveArray), min, max);
  m_ArrayCustomRanges[m_ActiveArray] = { true, min, max };
  m_CustomRangeDialog->setRangeAndValues(m_CustomRangeDialog->dataRange(), { min, max });
  Q_EMIT transferFunctionsChanged();
  requestRender();
}

void VXVolumeRepPimpl::openCustomRangeDialog()
{
  m_CustomRangeDialog->open();
  m_CustomRangeDialog->raise();
}

void VXVolumeRepPimpl::resetColorAndOpacity()
{
  VXUserPrompt::Question question;
  question.icon = QMessageBox::Question;
  question.title = k_ResetTitle;
  question.text = k_ResetText;
  question.buttons = QMessageBox::Yes | QMessageBox::No;
  question.defaultButton = QMessageBox::No;
  if (VXUserPrompt::ask(m_SettingsWidget, question) != QMessageBox::Yes)
    return;
  m_ArrayLookupTables.erase(m_ActiveArray);
  m_ArrayOpacityFunctions.erase(m_ActiveArray);
  const std::array<double, 2> range = dataRange();
  m_ArrayCustomRanges[m_ActiveArray] = { false, range[0], range[1] };
  m_CustomRangeDialog->setRange(range[0], range[1]);
  ensureFunctions(range);
  applyFunctions();
  requestRender();
}

void VXVolumeRepPimpl::loadPresetColors(kx::core::ColorTableUtilities::ColorPreset preset)
{
  m_ColorPreset = preset;
  m_UsingDefaultPreset = false;
  if (VXLookupTable* table = lookupTable(m_ActiveArray))
  {
    const std::array<double, 2> range = table->getRange();
    applyPresetTo(table);
    table->setRange(range[0], range[1]);
  }
  Q_EMIT transferFunctionsChanged();
  requestRender();
}

void VXVolumeRepPimpl::restoreDefaultPresetColors()
{
  m_ColorPreset = KXPreferences::getDefaultColorPreset();
  m_UsingDefaultPreset = true;
  if (VXLookupTable* table = lookupTable(m_ActiveArray))
  {
    const std::array<double, 2> range = table->getRange();
    applyPresetTo(table);
    table->setRange(range[0], range[1]);
  }
  requestRender();
}

void VXVolumeRepPimpl::setColorMapInverted(bool inverted)
{
  m_ColorMapInverted = inverted;
  if (VXLookupTable* table = lookupTable(m_ActiveArray);
      table != nullptr && table->isInverted() != inverted)
    table->invert();
  Q_EMIT transferFunctionsChanged();
  requestRender();
}

void VXVolumeRepPimpl::updateHistogram()
{
  // the mapper's input holds the array that is drawn (reduced or not)
  vtkImageData* image = inputImage();
  const QString drawn = m_VolumeMapper->GetArrayName() != nullptr
                          ? QString::fromUtf8(m_VolumeMapper->GetArrayName())
                          : QString();
  vtkDataArray* array = findArray(image, drawn, nullptr);
  if (array == nullptr)
    return;
  // counting is a full pass over the volume: only when the array changed
  if (drawn == m_HistogramArray && array->GetMTime() == m_HistogramArrayMTime)
    return;
  fliozi::PopulateHistogram(image, drawn.toStdString(), "image_pops", m_HistogramTable);
  m_HistogramArray = drawn;
  m_HistogramArrayMTime = array->GetMTime();
  Q_EMIT histogramChanged(m_HistogramTable);
}

// ---------------------------------------------------------------------------
// Parent colours are refused

void VXVolumeRepPimpl::connectParentColorSignals(bool)
{
  if (VXPipeline* pipeline = m_Owner != nullptr ? m_Owner->pipeline() : nullptr)
    Q_EMIT pipeline->sendOutputMessage(
      "Error: Cannot connect parent data source color settings for volume representations");
}

void VXVolumeRepPimpl::disconnectParentColorSignals()
{
  if (VXPipeline* pipeline = m_Owner != nullptr ? m_Owner->pipeline() : nullptr)
    Q_EMIT pipeline->sendOutputMessage(
      "Error: Cannot disconnect parent data source color settings for volume representations");
}

void VXVolumeRepPimpl::onSyncColorMapToParentGeometry()
{
  qDebug() << "Volume Data Views do not currently support syncing color maps with parent data "
              "source!";
}

// ---------------------------------------------------------------------------
// View

void VXVolumeRepPimpl::bounds(double bounds[6])
{
  const double* b = m_Volume->GetBounds();
  std::copy(b, b + 6, bounds);
}

void VXVolumeRepPimpl::setVisibility(bool visible)
{
  setPropVisibility(m_Volume, m_HighlightActor, visible, m_Initialized);
  setupScalarBar();
}

void VXVolumeRepPimpl::setHighlighted(bool highlighted)
{
  m_Highlighted = highlighted;
  setPropHighlighted(m_HighlightActor, highlighted);
}

void VXVolumeRepPimpl::applyTransform()
{
  applyTransformTo({ m_Volume, m_HighlightActor });
}

void VXVolumeRepPimpl::setupScalarBar()
{
  if (m_ScalarBarRepresentation == nullptr)
  {
    m_ScalarBarRepresentation = vtkSmartPointer<vtkScalarBarRepresentation>::New();
    m_ScalarBarRepresentation->SetPosition(m_LegendPosition.data());
    m_ScalarBarRepresentation->SetPosition2(m_LegendPosition2.data());
    m_ScalarBarWidget->SetRepresentation(m_ScalarBarRepresentation);
    vtkScalarBarActor* bar = m_ScalarBarWidget->GetScalarBarActor();
    bar->SetNumberOfLabels(5);
    bar->SetUnconstrainedFontSize(false);
    bar->SetBarRatio(0.3);
    bar->SetTitleRatio(0.5);
    bar->SetTextPad(2);
    bar->SetTextPositionToPrecedeScalarBar();
    bar->GetTitleTextProperty()->SetJustificationToCentered();
    bar->GetTitleTextProperty()->SetColor(0.5, 0.5, 0.0);
  }
  vtkScalarBarActor* bar = m_ScalarBarWidget->GetScalarBarActor();
  bar->SetTitle(m_LegendTitle.toStdString().c_str());
  if (VXLookupTable* table = lookupTable(m_ActiveArray))
    bar->SetLookupTable(table->getColorTransferFunction());
  if (VXVisualizationWidget* widget = visualizationWidget();
      widget != nullptr && m_ScalarBarWidget->GetInteractor() == nullptr &&
      widget->getRenderWindowInteractor() != nullptr)
  {
    m_ScalarBarWidget->SetInteractor(widget->getRenderWindowInteractor());
    m_ScalarBarWidget->SetCurrentRenderer(widget->getRenderer());
  }
  if (m_ScalarBarWidget->GetInteractor() != nullptr)
    m_ScalarBarWidget->SetEnabled(
      m_ShowLegend && m_Visible && m_Initialized && !m_ActiveArray.isEmpty() ? 1 : 0);
}

void VXVolumeRepPimpl::setScalarBarVisibility(bool visible)
{
  m_ShowLegend = visible;
  setupScalarBar();
  if (m_LegendCheckBox != nullptr)
  {
    const QSignalBlocker blocker(m_LegendCheckBox);
    m_LegendCheckBox->setChecked(visible);
  }
  requestRender();
}

// ---------------------------------------------------------------------------
// State

void VXVolumeRepPimpl::write(nlohmann::json& output) const
{
  VXRepresentationPimpl::write(output);
  nlohmann::json tables = nlohmann::json::object();
  for (const auto& [name, table] : m_ArrayLookupTables)
  {
    nlohmann::json json = nlohmann::json::object();
    table->write(json);
    tables[name.toStdString()] = json;
  }
  output["array_lut_fct"] = tables;
  nlohmann::json opacities = nlohmann::json::object();
  for (const auto& [name, function] : m_ArrayOpacityFunctions)
    opacities[name.toStdString()] = OpacityToJson(function);
  output["array_scalar_opacity_fct"] = opacities;
  nlohmann::json ranges = nlohmann::json::object();
  for (const auto& [name, record] : m_ArrayCustomRanges)
    ranges[name.toStdString()] = { { "used", record.used },
                                   { "min", record.min },
                                   { "max", record.max } };
  output["array_custom_ranges"] = ranges;
  output["active_array"] = m_ActiveArray.toStdString();
  output["active_component"] = m_ActiveComponent;
  output["color_map_inverted"] = m_ColorMapInverted;
  output["color_preset"] = m_ColorPreset.toJson();
  output["using_default_preset"] = m_UsingDefaultPreset;
  output["scalar_bar_visible"] = m_ShowLegend;
  std::array<double, 2> position = m_LegendPosition;
  std::array<double, 2> position2 = m_LegendPosition2;
  if (m_ScalarBarRepresentation != nullptr)
  {
    std::copy_n(m_ScalarBarRepresentation->GetPosition(), 2, position.begin());
    std::copy_n(m_ScalarBarRepresentation->GetPosition2(), 2, position2.begin());
  }
  output["source_position_x"] = position[0];
  output["source_position_y"] = position[1];
  output["source_position2_x"] = position2[0];
  output["source_position2_y"] = position2[1];
  const CustomRange active = customRange(m_ActiveArray);
  output["using_custom_range"] = active.used;
  output["custom_range_min"] = active.min;
  output["custom_range_max"] = active.max;
}

void VXVolumeRepPimpl::read(const nlohmann::json& input)
{
  VXRepresentationPimpl::read(input);
  if (input.contains("array_lut_fct"))
  {
    m_ArrayLookupTables.clear();
    for (const auto& [name, json] : input.at("array_lut_fct").items())
    {
      auto table = QSharedPointer<VXLookupTable>(new VXLookupTable());
      table->read(json);
      m_ArrayLookupTables[QString::fromStdString(name)] = table;
    }
  }
  if (input.contains("array_scalar_opacity_fct"))
  {
    m_ArrayOpacityFunctions.clear();
    for (const auto& [name, points] : input.at("array_scalar_opacity_fct").items())
      m_ArrayOpacityFunctions[QString::fromStdString(name)] = OpacityFromJson(points);
  }
  if (input.contains("array_custom_ranges"))
  {
    m_ArrayCustomRanges.clear();
    for (const auto& [name, record] : input.at("array_custom_ranges").items())
      m_ArrayCustomRanges[QString::fromStdString(name)] = { record.at("used").get<bool>(),
                                                            record.at("min").get<double>(),
                                                            record.at("max").get<double>() };
  }
  if (input.contains("active_array"))
    m_ActiveArray = QString::fromStdString(input.at("active_array").get<std::string>());
  if (input.contains("active_component"))
    m_ActiveComponent = KXVtkModule::utils::StateInt(input.at("active_component"));
  if (input.contains("color_map_inverted"))
    m_ColorMapInverted = input.at("color_map_inverted").get<bool>();
  if (input.contains("color_preset"))
    m_ColorPreset = ColorPreset(input.at("color_preset"));
  if (input.contains("using_default_preset"))
    m_UsingDefaultPreset = input.at("using_default_preset").get<bool>();
  if (input.contains("scalar_bar_visible"))
    m_ShowLegend = input.at("scalar_bar_visible").get<bool>();
  if (input.contains("source_position_x") && input.contains("source_position_y"))
    m_LegendPosition = { input.at("source_position_x").get<double>(),
                         input.at("source_position_y").get<double>() };
  if (input.contains("source_position2_x") && input.contains("source_position2_y"))
    m_LegendPosition2 = { input.at("source_position2_x").get<double>(),
                          input.at("source_position2_y").get<double>() };
  if (input.contains("using_custom_range") && input.contains("custom_range_min") &&
      input.contains("custom_range_max"))
    m_ArrayCustomRanges[m_ActiveArray] = { input.at("using_custom_range").get<bool>(),
                                           input.at("custom_range_min").get<double>(),
                                           input.at("custom_range_max").get<double>() };
  if (m_ScalarBarRepresentation != nullptr)
  {
    m_ScalarBarRepresentation->SetPosition(m_LegendPosition.data());
    m_ScalarBarRepresentation->SetPosition2(m_LegendPosition2.data());
  }
  if (m_Initialized)
  {
    setActiveComponent(m_ActiveComponent);
    applyTransform();
    setupScalarBar();
    syncControls();
  }
}

void VXVolumeRepPimpl::copyFrom(VXRepresentationPimpl* other)
{
  VXRepresentationPimpl::copyFrom(other);
  auto* source = dynamic_cast<VXVolumeRepPimpl*>(other);
  if (source == nullptr)
    return;
  // each view gets functions of its own: editing one split leaves the other as it was
  m_ArrayLookupTables.clear();
  for (const auto& [name, table] : source->m_ArrayLookupTables)
    m_ArrayLookupTables[name] = QSharedPointer<VXLookupTable>(table->deepCopy());
  m_ArrayOpacityFunctions.clear();
  for (const auto& [name, function] : source->m_ArrayOpacityFunctions)
  {
    auto copy = vtkSmartPointer<vtkPiecewiseFunction>::New();
    copy->DeepCopy(function);
    m_ArrayOpacityFunctions[name] = copy;
  }
  m_ArrayCustomRanges = source->m_ArrayCustomRanges;
  m_ActiveArray = source->m_ActiveArray;
  m_ActiveComponent = source->m_ActiveComponent;
  m_ColorMapInverted = source->m_ColorMapInverted;
  m_ColorPreset = source->m_ColorPreset;
  m_UsingDefaultPreset = source->m_UsingDefaultPreset;
  m_ShowLegend = source->m_ShowLegend;
}

void VXVolumeRepPimpl::copySettingsToClipboard()
{
  writeToClipboard();
}

void VXVolumeRepPimpl::pasteSettingsFromClipboard()
{
  const nlohmann::json input = readClipboard();
  if (input.is_null())
    return;
  read(input);
}

void VXVolumeRepPimpl::loadDefaultSettings()
{
  VXRepresentationPimpl::loadDefaultSettings();
  if (m_Owner == nullptr)
    return;
  QtKXSettings settings;
  BeginSettingsGroup(settings, m_Owner->typeName());
  m_ColorMapInverted = settings.value("color_map_inverted", false).toBool();
  m_UsingDefaultPreset = settings.value("using_default_preset", true).toBool();
  m_ShowLegend = settings.value("scalar_bar_visible", true).toBool();
  if (settings.contains("color_preset"))
  {
    const nlohmann::json preset = nlohmann::json::parse(
      settings.value("color_preset").toString().toStdString(), nullptr, false);
    if (preset.is_object())
      m_ColorPreset = ColorPreset(preset);
  }
}

void VXVolumeRepPimpl::saveDefaultSettings()
{
  if (m_Owner == nullptr || !askSaveDefaults())
    return;
  QtKXSettings settings;
  BeginSettingsGroup(settings, m_Owner->typeName());
  saveBaseDefaults(settings);
  settings.setValue("color_map_inverted", m_ColorMapInverted);
  settings.setValue("using_default_preset", m_UsingDefaultPreset);
  settings.setValue("scalar_bar_visible", m_ShowLegend);
  settings.setValue("color_preset", QString::fromStdString(m_ColorPreset.toJson().dump()));
  settings.sync();
}

// ---------------------------------------------------------------------------
// Page

void VXVolumeRepPimpl::updateArrayColoringChoices()
{
  if (m_ArrayCombo == nullptr)
    return;
  const QSignalBlocker blocker(m_ArrayCombo);
  m_ArrayCombo->clear();
  if (VXDataSource* source = parentDataSource())
  {
    const QMap<QString, QIcon> names = source->getImportedArrayNames();
    for (auto iter = names.constBegin(); iter != names.constEnd(); ++iter)
      m_ArrayCombo->addItem(iter.value(), iter.key());
  }
  m_ArrayCombo->setCurrentIndex(m_ArrayCombo->findText(m_ActiveArray));
}

void VXVolumeRepPimpl::refillComponentCombo()
{
  if (m_ComponentCombo == nullptr)
    return;
  const QSignalBlocker blocker(m_ComponentCombo);
  m_ComponentCombo->clear();
  if (VXDataSource* source = parentDataSource())
    m_ComponentCombo->addItems(source->getComponentNames(m_ActiveArray));
  const int magnitude = m_ComponentCombo->findText("Magnitude");
  m_ComponentCombo->setCurrentIndex(
    m_ActiveComponent < 0 ? std::max(magnitude, 0) : m_ActiveComponent + (magnitude == 0 ? 1 : 0));
}

void VXVolumeRepPimpl::syncControls()
{
  updateArrayColoringChoices();
  refillComponentCombo();
  if (m_LegendCheckBox != nullptr)
  {
    const QSignalBlocker blocker(m_LegendCheckBox);
    m_LegendCheckBox->setChecked(m_ShowLegend);
  }
}

void VXVolumeRepPimpl::buildSettingsPage()
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

  QFormLayout* coloring = section("Volume Coloring");
  m_ArrayCombo = new QComboBox(m_PageContent);
  m_ArrayCombo->setObjectName("m_ArrayCombo");
  m_ComponentCombo = new QComboBox(m_PageContent);
  m_ComponentCombo->setObjectName("m_ComponentCombo");
  coloring->addRow(m_ArrayCombo, m_ComponentCombo);
  updateArrayColoringChoices();
  refillComponentCombo();
  connect(m_ArrayCombo, &QComboBox::currentTextChanged, this,
          &VXVolumeRepPimpl::arrayNameComboChanged);
  connect(m_ComponentCombo, &QComboBox::currentIndexChanged, this,
          &VXVolumeRepPimpl::arrayComponentComboChanged);

  auto* buttons = new QWidget(m_PageContent);
  auto* buttonLayout = new QHBoxLayout(buttons);
  buttonLayout->setContentsMargins(0, 0, 0, 0);
  m_ResetButton = addPageButton(buttonLayout, "Undo", "Reset", "resetButton");
  connect(m_ResetButton, &QPushButton::clicked, this, &VXVolumeRepPimpl::resetColorAndOpacity);
  m_ColorPresetButton = addPageButton(buttonLayout, "preset", "Edit", "m_ColorPresetButton");
  connect(m_ColorPresetButton, &QPushButton::clicked, this,
          [this]() { m_ColorPresetsDialog->show(); });
  m_InvertColorBtn = addPageButton(buttonLayout, "invert", QString(), "m_InvertColorBtn");
  connect(m_InvertColorBtn, &QPushButton::clicked, this,
          [this]() { setColorMapInverted(!m_ColorMapInverted); });
  m_ScaleToDataButton =
    addPageButton(buttonLayout, "ScaleToData", "Scale to Data", "scaleToDataBtn");
  connect(m_ScaleToDataButton, &QPushButton::clicked, this, &VXVolumeRepPimpl::rescaleToDataRange);
  m_CustomRangeButton =
    addPageButton(buttonLayout, "CustomRange", "Custom Range", "customRangeBtn");
  connect(m_CustomRangeButton, &QPushButton::clicked, this,
          &VXVolumeRepPimpl::openCustomRangeDialog);
  coloring->addRow(buttons);
  m_OpacityEditor = new VXHistogramOpacityWidget(m_PageContent);
  m_OpacityEditor->setHistogram(m_HistogramTable, "image_pops");
  if (VXLookupTable* table = lookupTable(m_ActiveArray))
    m_OpacityEditor->setFunctions(opacityFunction(m_ActiveArray),
                                  table->getColorTransferFunction());
  connect(this, &VXVolumeRepPimpl::histogramChanged, m_OpacityEditor,
          [this](vtkTable* histogram) { m_OpacityEditor->setHistogram(histogram, "image_pops"); });
  connect(this, &VXVolumeRepPimpl::transferFunctionsChanged, m_OpacityEditor,
          [this]()
          {
            VXLookupTable* table = lookupTable(m_ActiveArray);
            m_OpacityEditor->setFunctions(opacityFunction(m_ActiveArray),
                                          table != nullptr ? table->getColorTransferFunction()
                                                           : nullptr);
            m_ColorMapEditor->setLookupTable(table);
          });
  connect(m_OpacityEditor, &VXHistogramOpacityWidget::opacityFunctionEdited, this,
          &VXVolumeRepPimpl::requestRender);
  coloring->addRow(m_OpacityEditor);
  // the colours under the opacity curve, edited point by point as in the surface editor
  m_ColorMapEditor = new VXColorMapEditorWidget(m_PageContent);
  m_ColorMapEditor->setLookupTable(lookupTable(m_ActiveArray));
  connect(m_ColorMapEditor, &VXColorMapEditorWidget::colorMapEdited, this,
          [this]()
          {
            m_OpacityEditor->render();
            requestRender();
          });
  coloring->addRow(m_ColorMapEditor);

  QFormLayout* annotations = section("Annotations");
  m_LegendCheckBox = new QCheckBox("Show Legend", m_PageContent);
  m_LegendCheckBox->setObjectName("m_LegendCheckBox");
  m_LegendCheckBox->setChecked(m_ShowLegend);
  connect(m_LegendCheckBox, &QCheckBox::toggled, this, &VXVolumeRepPimpl::setScalarBarVisibility);
  annotations->addRow(m_LegendCheckBox);
  m_DataGridCheckBox = new QCheckBox("Show Data Axes Grid", m_PageContent);
  m_DataGridCheckBox->setObjectName("m_DataGridCheckBox");
  m_DataGridCheckBox->setChecked(m_DataGridVisible);
  connect(m_DataGridCheckBox, &QCheckBox::toggled, this,
          &VXRepresentationPimpl::setDataGridVisibility);
  annotations->addRow(m_DataGridCheckBox);
  section("Transform")->addRow(ensureTransformWidget());
  pageLayout->addStretch(1);
}

void VXVolumeRepPimpl::updateToolTips()
{
  auto tip = [](QWidget* widget, const QString& text)
  {
    if (widget != nullptr)
      widget->setToolTip(HtmlToolTip(text));
  };
  tip(m_ResetButton, "Reset the custom color transfer function and scalar opacity function for "
                     "the active array");
  tip(m_ColorPresetButton, "Choose a preset color map for volume rendering");
  tip(m_InvertColorBtn, "Invert the color map for volume rendering");
  tip(m_ScaleToDataButton, "Rescale the color map to the data's range");
  tip(m_CustomRangeButton, "Scale the data's color mapping to a custom user defined range");
  tip(m_LegendCheckBox, "Show/Hide the legend for this volume");
  tip(m_DataGridCheckBox, "Show/Hide the data axis grid for this volume");
}
