#include "visualization/VXPointsRepPimpl.hpp"

#include <vtkAlgorithm.h>

#include "utils/KXVtkModuleUtils.hpp"
#include "visualization/QtWidgets/VXArrayHistogramWidget.hpp"
#include "visualization/QtWidgets/VXCustomRangeDialog.hpp"
#include "visualization/QtWidgets/VXLUTEditor.hpp"
#include "visualization/QtWidgets/VXVisualizationWidget.hpp"
#include "visualization/VXDataSource.hpp"
#include "visualization/VXLookupTable.hpp"
#include "visualization/VXPointsRep.hpp"
#include "visualization/VXRepresentationCallbacks.hpp"
#include "visualization/VXRepresentationUtils.hpp"
#include "visualization/VXUpdateHistogramCallback.hpp"
#include "visualization/VXUserPrompt.hpp"

#include <KXComponents/ColorPresetsDialog.hpp>
#include <KXComponents/KXColorButton.hpp>
#include <KXComponents/KXPreferences.hpp>
#include <KXComponents/QtKXSettings.hpp>

#include <QtCore/QUrl>
#include <QtGui/QDesktopServices>
#include <QtGui/QIntValidator>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>

#include <vtkActor.h>
#include <vtkAlgorithmOutput.h>
#include <vtkCellData.h>
#include <vtkColorTransferFunction.h>
#include <vtkCommand.h>
#include <vtkDataArray.h>
#include <vtkDataSet.h>
#include <vtkGeometryFilter.h>
#include <vtkNamedColors.h>
#include <vtkPointData.h>
#include <vtkPolyData.h>
#include <vtkPolyDataMapper.h>
#include <vtkProperty.h>
#include <vtkQuadricClustering.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRenderer.h>
#include <vtkScalarBarActor.h>
#include <vtkScalarBarRepresentation.h>
#include <vtkScalarBarWidget.h>
#include <vtkTextProperty.h>

#include <cmath>

using KXVtkModule::utils::HtmlToolTip;

namespace
{

QColor nanColorFromPreferences()
{
  return QColor::fromRgbF(0.5f, 0.75f, 1.0f);
}
} // namespace

VXPointsRepPimpl::VXPointsRepPimpl(VXAbstractViewWidget* view, VXRepresentation* owner)
  : VXOutlineRepPimpl(view, owner)
{
  m_HelpAnchor = "#points-representation";
  VXUserPrompt::routeColorButton(m_ColorPresetsDialog->nanColorButton(),
                                 QStringLiteral("Select NaN Color"));
  connectColoringDialogs(this);
  m_LookupTable->setNANColor(nanColorFromPreferences());
  if (owner != nullptr)
  {
    QtKXSettings settings;
    BeginSettingsGroup(settings, owner->typeName());
    loadPointsDefaults(settings);
  }
}

VXPointsRepPimpl::~VXPointsRepPimpl() = default;

vtkDataSet* VXPointsRepPimpl::inputDataSet() const
{
  if (m_GeometryFilter == nullptr || m_GeometryFilter->GetNumberOfInputConnections(0) == 0)
    return nullptr;
  return vtkDataSet::SafeDownCast(m_GeometryFilter->GetInputDataObject(0, 0));
}

vtkDataArray* VXPointsRepPimpl::activeDataArray() const
{
  return KXVtkModule::utils::GetActiveDataArray(inputDataSet(), m_Coloring.activeArray);
}

vtkAlgorithmOutput* VXPointsRepPimpl::outputPort()
{
  return m_GeometryFilter != nullptr ? m_GeometryFilter->GetOutputPort() : nullptr;
}

vtkAlgorithmOutput* VXPointsRepPimpl::inputPort()
{
  if (m_GeometryFilter == nullptr || m_GeometryFilter->GetNumberOfInputConnections(0) == 0)
    return nullptr;
  return m_GeometryFilter->GetInputConnection(0, 0);
}

bool VXPointsRepPimpl::initialize(vtkAlgorithmOutput* port)
{
  if (m_View == nullptr || port == nullptr || port->GetProducer() == nullptr)
    return false;
  port->GetProducer()->Update(port->GetIndex());
  auto* data = vtkDataSet::SafeDownCast(port->GetProducer()->GetOutputDataObject(port->GetIndex()));
  if (data == nullptr)
    return false;
  vtkRenderer* ren = renderer();
  if (ren != nullptr && ren->HasViewProp(m_Actor))
    return false;

  m_GeometryFilter = vtkSmartPointer<vtkGeometryFilter>::New();
  m_GeometryFilter->SetInputConnection(port);
  if (VXDataSource* source = parentDataSource())
    m_GeometryFilter->GetOutput()->SetObjectName(source->name().toStdString());
  m_GeometryFilter->Update();

  auto polyMapper = vtkSmartPointer<vtkPolyDataMapper>::New();
  polyMapper->SetInputConnection(m_GeometryFilter->GetOutputPort());
  // the lookup table carries its own range (custom range, scale to data)
  polyMapper->SetUseLookupTableScalarRange(true);
  polyMapper->SetInterpolateScalarsBeforeMapping(true);
  setMapper(polyMapper);

  applyActorProperties();
  m_Initialized = true;
  setupGridAxes();
  m_Actor->GetProperty()->SetRepresentationToPoints();

  m_HighlightMapper = vtkSmartPointer<vtkPolyDataMapper>::New();
  m_HighlightMapper->SetInputConnection(m_GeometryFilter->GetOutputPort());
  m_HighlightMapper->ScalarVisibilityOff();
  m_HighlightActor = vtkSmartPointer<vtkActor>::New();
  m_HighlightActor->SetMapper(m_HighlightMapper);
  vtkNew<vtkNamedColors> colors;
  m_HighlightActor->GetProperty()->SetColor(colors->GetColor3d("Magenta").GetData());
  m_HighlightActor->GetProperty()->SetRepresentationToWireframe();
  m_HighlightActor->GetProperty()->SetLineWidth(3.0f);
  ensureTransformWidget();
  applyTransform();

  if (m_LookupTable == nullptr)
    m_LookupTable = QSharedPointer<VXLookupTable>(new VXLookupTable());

  vtkDataArray* array = nullptr;
  if (!m_Coloring.useSolidColor)
  {
    if (!m_Coloring.activeArray.isEmpty())
      array = KXVtkModule::utils::GetActiveDataArray(data, m_Coloring.activeArray);
    else
    {
      array = KXVtkModule::utils::GetActiveCellArray(data);
      if (array == nullptr)
        array = KXVtkModule::utils::GetActivePointArray(data);
      if (array != nullptr && array->GetName() != nullptr)
        m_Coloring.activeArray = QString::fromUtf8(array->GetName());
    }
  }
  double dataRange[2] = { 0.0, 1.0 };
  if (array != nullptr)
    array->GetFiniteRange(dataRange, m_Coloring.activeComponent);
  else
    data->GetScalarRange(dataRange);
  if (!m_Coloring.usingCustomRange)
  {
    m_LookupTable->setRange(dataRange[0], dataRange[1]);
    m_CustomRangeDialog->setRange(dataRange[0], dataRange[1]);
  }
  else
  {
    m_LookupTable->setRange(m_Coloring.customRange[0], m_Coloring.customRange[1]);
    m_CustomRangeDialog->setRangeAndValues({ dataRange[0], dataRange[1] }, m_Coloring.customRange);
  }

  if (!m_Coloring.valuesAsCategories && !m_Coloring.usingDefaultPreset)
    m_LookupTable->parseRgbJson(m_Coloring.colorPreset);
  if (m_Coloring.colorMapInverted)
    m_LookupTable->invert();
  m_Mapper->SetLookupTable(m_LookupTable->getColorTransferFunction());
  if (m_Coloring.valuesAsCategories)
    setInterpretValuesAsCategories(true);

  {
    // the active array must not reset the custom range that was just applied
    const int component = m_Coloring.activeComponent;
    setActiveArray(m_Coloring.useSolidColor ? QString() : m_Coloring.activeArray);
    setActiveComponent(component);
  }
  m_Actor->GetProperty()->SetPointSize(static_cast<float>(m_PointSize));
  m_Actor->GetProperty()->SetRenderPointsAsSpheres(m_RenderPointsAsSpheres);

  if (VXVisualizationWidget* widget = visualizationWidget(); widget != nullptr && m_Visible)
    widget->addActor(m_Actor);
  requestRender();

  if (auto* pointsRep = qobject_cast<VXPointsRep*>(m_Owner))
  {
    vtkNew<VXDataSetInfoWidgetUpdateCallback<VXPointsRep>> infoCallback;
    infoCallback->setRepresentation(pointsRep);
    m_GeometryFilter->AddObserver(vtkCommand::EndEvent, infoCallback);
  }
  observeDataUpdates(m_GeometryFilter);

  setupScalarBar();
  if (VXDataSource* source = parentDataSource())
    connect(source, &VXDataSource::syncChildColorMaps, this,
            &VXPointsRepPimpl::onSyncColorMapToParentGeometry, Qt::UniqueConnection);
  if (!m_DetachColorSettings)
    connectParentColorSignals(true);
  if (m_UseDecimationOnInteraction)
    decimateGeometry();
  return true;
}

bool VXPointsRepPimpl::finalize()
{
  if (m_ScalarBarWidget != nullptr)
    m_ScalarBarWidget->SetEnabled(0);
  return VXOutlineRepPimpl::finalize();
}

// ---------------------------------------------------------------------------
// Colour by array and component

void VXPointsRepPimpl::setActiveArray(const QString& arrayName)
{
  // before the first frame the mapper's input is still empty: bring it up to date
  if (m_Mapper != nullptr && m_Mapper->GetInputAlgorithm() != nullptr)
    m_Mapper->GetInputAlgorithm()->Update();
  vtkDataSet* input = m_Mapper != nullptr ? m_Mapper->GetInput() : nullptr;
  if (input == nullptr)
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
  if (!m_Coloring.activeArray.isEmpty() && colouring)
  {
    const std::string name = m_Coloring.activeArray.toStdString();
    if (input->GetPointData()->GetArray(name.c_str()) != nullptr)
      input->GetPointData()->SetActiveScalars(name.c_str());
    else if (input->GetCellData()->GetArray(name.c_str()) != nullptr)
      input->GetCellData()->SetActiveScalars(name.c_str());
    else
      return;
    m_Mapper->ScalarVisibilityOn();
  }
  else
  {
    m_Mapper->SelectColorArray(-1);
    m_Mapper->ScalarVisibilityOff();
    m_Actor->GetProperty()->SetColor(m_SolidColor.redF(), m_SolidColor.greenF(),
                                     m_SolidColor.blueF());
  }
  if (m_DetachColorSettings && m_SolidColorButton != nullptr)
    m_SolidColorButton->setEnabled(m_Coloring.useSolidColor || arrayName.isEmpty());
  refillComponentCombo();
  setActiveComponent(m_Coloring.activeComponent);
  requestRender();
}

void VXPointsRepPimpl::setActiveComponent(int component)
{
  vtkDataSet* data = inputDataSet();
  vtkDataArray* array = KXVtkModule::utils::GetActiveDataArray(data, m_Coloring.activeArray);
  if (data == nullptr || array == nullptr)
    return;
  const int c = component < -1 ? -1 : component;
  const std::string name = m_Coloring.activeArray.toStdString();
  if (data->GetPointData()->GetArray(name.c_str()) != nullptr)
    m_Mapper->SetScalarModeToUsePointFieldData();
  else
    m_Mapper->SetScalarModeToUseCellFieldData();
  m_Mapper->ColorByArrayComponent(name.c_str(), c);
  KXVtkModule::utils::UpdateColorMode(m_Coloring.scalarMapping, m_Owner, m_Actor, m_Mapper,
                                      m_Coloring.activeArray, &m_Coloring.scalarMapping, false);
  applyComponent(m_Mapper->GetLookupTable(), array, c);
  applyRangeOfActiveComponent(array);
  if (m_Coloring.valuesAsCategories)
    setInterpretValuesAsCategories(true);
  updateHistogram();
}

void VXPointsRepPimpl::rescaleToDataRange()
{
  rescaleColoringToData();
}

void VXPointsRepPimpl::rescaleToCustomRange(double min, double max)
{
  rescaleColoringToCustom(min, max);
}

void VXPointsRepPimpl::openCustomRangeDialog()
{
  // window modal but not blocking: scripted runs and tests answer it through its fields
  m_CustomRangeDialog->open();
  m_CustomRangeDialog->raise();
}

void VXPointsRepPimpl::setUseSolidColor(bool checked)
{
  m_Coloring.useSolidColor = checked;
  const int component = m_Coloring.activeComponent;
  m_BlockHistogram = true;
  if (checked)
    setActiveArray(QString(""));
  else
    setActiveArray(m_ArrayCombo != nullptr ? m_ArrayCombo->currentText() : m_Coloring.activeArray);
  m_Coloring.activeComponent = component;
  m_BlockHistogram = false;
  if (m_HistogramCheckBox != nullptr)
    m_HistogramCheckBox->setEnabled(!m_Coloring.useSolidColor);
  if (m_HistogramWidget != nullptr)
    m_HistogramWidget->setEnabled(!m_Coloring.useSolidColor);
  if (!m_Coloring.useSolidColor)
  {
    refillComponentCombo();
    setActiveComponent(m_Coloring.activeComponent);
  }
  if (m_SolidColorCheckBox != nullptr)
  {
    const QSignalBlocker blocker(m_SolidColorCheckBox);
    m_SolidColorCheckBox->setChecked(checked);
  }
  requestRender();
}

void VXPointsRepPimpl::updateColorMode(int index)
{
  // the stored-mode target is the active component and the texture follows
  // m_Coloring.scalarMapping: this crossing is what existing state files and hosts expect
  KXVtkModule::utils::UpdateColorMode(index, m_Owner, m_Actor, m_Mapper, m_Coloring.activeArray,
                                      &m_Coloring.activeComponent, m_Coloring.scalarMapping != 0);
  requestRender();
}

// ---------------------------------------------------------------------------
// Categories and presets

void VXPointsRepPimpl::setInterpretValuesAsCategories(bool categories)
{
  applyCategories(categories);
  if (m_CategoriesCheckBox != nullptr)
  {
    const QSignalBlocker blocker(m_CategoriesCheckBox);
    m_CategoriesCheckBox->setChecked(categories);
  }
  requestRender();
}

void VXPointsRepPimpl::coloringTableChanged()
{
  if (m_Mapper != nullptr)
    m_Mapper->SetLookupTable(m_LookupTable->getColorTransferFunction());
}

vtkDataSet* VXPointsRepPimpl::coloringDataSet() const
{
  return inputDataSet();
}

void VXPointsRepPimpl::coloringHistogramChanged()
{
  updateHistogram();
}

void VXPointsRepPimpl::coloringRender()
{
  requestRender();
}

void VXPointsRepPimpl::loadRGBPresetColors(kx::core::ColorTableUtilities::ColorPreset preset)
{
  chooseRgbPreset(&preset);
  requestRender();
}

void VXPointsRepPimpl::restoreDefaultRgbPresetColors()
{
  chooseRgbPreset(nullptr);
  requestRender();
}

void VXPointsRepPimpl::loadIndexedPresetColors(kx::core::ColorTableUtilities::ColorPreset preset)
{
  chooseIndexedPreset(&preset);
  requestRender();
}

void VXPointsRepPimpl::restoreDefaultIndexedPresetColors()
{
  chooseIndexedPreset(nullptr);
  requestRender();
}

void VXPointsRepPimpl::setColorMapInverted(bool inverted)
{
  if (invertColoring(inverted))
    requestRender();
}

void VXPointsRepPimpl::setNanColor(QColor color)
{
  setNanColorOfTable(color);
  requestRender();
}

void VXPointsRepPimpl::editColorsButtonClicked()
{
  Q_EMIT editColorMapRequested(m_LookupTable.data());
  openColorMapEditor(this);
}

void VXPointsRepPimpl::onColorMapEdited()
{
  if (!m_DetachColorSettings)
  {
    m_SavedSolidColor = m_SolidColor;
    onDetachColorSettings(true);
  }
  recordEditedColorMap();
  requestRender();
}

// ---------------------------------------------------------------------------
// Parent colours

void VXPointsRepPimpl::connectParentColorSignals(bool trigger)
{
  VXDataSource* source = parentDataSource();
  if (source == nullptr)
    return;
  disconnectParentColorSignals();
  m_ParentColorConnections.append(
    connect(source, &VXDataSource::solidColorChanged, this, &VXOutlineRepPimpl::setSolidColor));
  connectParentColoring(this, source, m_ParentColorConnections);
  if (trigger)
    source->triggerColorSettingsChange();
}

void VXPointsRepPimpl::disconnectParentColorSignals()
{
  VXOutlineRepPimpl::disconnectParentColorSignals();
}

void VXPointsRepPimpl::onDetachColorSettings(bool checked)
{
  VXOutlineRepPimpl::onDetachColorSettings(checked);
  for (QWidget* control : { static_cast<QWidget*>(m_ColorPresetButton.data()),
                            static_cast<QWidget*>(m_InvertColorBtn.data()) })
  {
    if (control != nullptr)
      control->setEnabled(checked);
  }
}

void VXPointsRepPimpl::onSyncColorMapToParentGeometry()
{
  if (!m_DetachColorSettings)
    return;
  onDetachColorSettings(false);
}

// ---------------------------------------------------------------------------
// Legend, visibility, styling

void VXPointsRepPimpl::setupScalarBar()
{
  setupScalarBarRepresentation();
  vtkScalarBarActor* bar = m_ScalarBarWidget->GetScalarBarActor();
  if (m_Mapper != nullptr)
    bar->SetLookupTable(m_Mapper->GetLookupTable());
  if (VXVisualizationWidget* widget = visualizationWidget())
  {
    if (m_ScalarBarWidget->GetInteractor() == nullptr &&
        widget->getRenderWindowInteractor() != nullptr)
    {
      m_ScalarBarWidget->SetInteractor(widget->getRenderWindowInteractor());
      m_ScalarBarWidget->SetCurrentRenderer(widget->getRenderer());
    }
  }
  if (m_ScalarBarWidget->GetInteractor() != nullptr)
    m_ScalarBarWidget->SetEnabled(
      m_Coloring.showLegend && m_Visible && !m_Coloring.useSolidColor ? 1 : 0);
}

void VXPointsRepPimpl::setScalarBarVisibility(bool visible)
{
  m_Coloring.showLegend = visible;
  if (m_Initialized)
    setupScalarBar();
  if (m_LegendCheckBox != nullptr)
  {
    const QSignalBlocker blocker(m_LegendCheckBox);
    m_LegendCheckBox->setChecked(visible);
  }
  requestRender();
}

void VXPointsRepPimpl::setScalarBarTitleText(QString arrayName)
{
  setScalarBarTitle(arrayName);
}

void VXPointsRepPimpl::setVisibility(bool visible)
{
  const bool legend = m_Coloring.showLegend;
  VXOutlineRepPimpl::setVisibility(visible);
  m_Coloring.showLegend = legend;
  if (m_ScalarBarWidget != nullptr && m_ScalarBarWidget->GetInteractor() != nullptr)
    m_ScalarBarWidget->SetEnabled(
      m_Coloring.showLegend && visible && !m_Coloring.useSolidColor ? 1 : 0);
  requestRender();
  if (visible && m_Owner != nullptr && outputPort() != nullptr)
  {
    auto* poly = vtkPolyData::SafeDownCast(m_GeometryFilter->GetOutputDataObject(0));
    Q_EMIT m_Owner->requestPolyDataUpdate(m_Owner->pathName(), poly);
  }
}

void VXPointsRepPimpl::pointSizeChanged()
{
  if (m_PointSizeEdit != nullptr)
    pointSizeEdited(m_PointSizeEdit->text());
}

void VXPointsRepPimpl::pointSizeEdited(QString text)
{
  if (text.isEmpty())
    return;
  m_PointSize = text.toInt();
  m_Actor->GetProperty()->SetPointSize(static_cast<float>(m_PointSize));
  requestRender();
}

void VXPointsRepPimpl::setRenderPointsAsSpheres(bool spheres)
{
  m_RenderPointsAsSpheres = spheres;
  m_Actor->GetProperty()->SetRenderPointsAsSpheres(spheres);
  requestRender();
}

// ---------------------------------------------------------------------------
// Histogram and decimation

VXArrayHistogramWidget* VXPointsRepPimpl::histogramWidget() const
{
  return m_HistogramWidget.data();
}

void VXPointsRepPimpl::setGenerateHistogram(bool generate)
{
  m_Coloring.generateHistogram = generate;
  updateHistogram();
  if (m_HistogramWidget != nullptr)
    m_HistogramWidget->setVisible(generate);
}

void VXPointsRepPimpl::updateHistogram()
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

void VXPointsRepPimpl::decimateGeometry()
{
  if (m_GeometryFilter == nullptr || !m_UseDecimationOnInteraction)
    return;
  // the coarse copy of a large data set is as large as a good part of it: it is built when an
  // interaction first shows it, not each time the geometry or a decimation value changes
  m_DecimationOutOfDate = true;
  if (!m_UsingDecimatedGeometry)
    return;
  m_QuadricClustering->SetInputConnection(m_GeometryFilter->GetOutputPort());
  m_QuadricClustering->SetNumberOfDivisions(m_DecimationDivisions[0], m_DecimationDivisions[1],
                                            m_DecimationDivisions[2]);
  m_QuadricClustering->SetUseInputPoints(m_UseInputPoints);
  m_QuadricClustering->SetUseFeatureEdges(m_UseFeatureEdges);
  m_QuadricClustering->SetUseFeaturePoints(m_UseFeaturePoints);
  m_QuadricClustering->SetUseInternalTriangles(m_UseInternalTriangles);
  m_QuadricClustering->Update();
  m_DecimationOutOfDate = false;
}

void VXPointsRepPimpl::useDecimatedGeometry()
{
  if (m_GeometryFilter == nullptr || m_UsingDecimatedGeometry || !m_UseDecimationOnInteraction)
    return;
  m_UsingDecimatedGeometry = true;
  if (m_DecimationOutOfDate || m_QuadricClustering->GetNumberOfInputConnections(0) == 0)
    decimateGeometry();
  m_Mapper->SetInputConnection(m_QuadricClustering->GetOutputPort());
}

void VXPointsRepPimpl::useFullGeometry()
{
  if (m_GeometryFilter == nullptr || !m_UsingDecimatedGeometry)
    return;
  m_Mapper->SetInputConnection(m_GeometryFilter->GetOutputPort());
  m_UsingDecimatedGeometry = false;
  requestRender();
}

// ---------------------------------------------------------------------------
// Reload

void VXPointsRepPimpl::receivePipelineOutputReloaded()
{
  m_UniqueValues.clear();
  VXDataSource* source = parentDataSource();
  const QStringList names =
    source != nullptr ? source->getImportedArrayNames().keys() : QStringList();
  if (m_ArrayCombo == nullptr)
  {
    if (!names.contains(m_Coloring.activeArray) && !names.isEmpty())
      setActiveArray(names.first());
    else if (m_Initialized)
      setActiveArray(m_Coloring.useSolidColor ? QString() : m_Coloring.activeArray);
    setScalarBarVisibility(m_Coloring.showLegend);
    return;
  }
  const QString componentText =
    m_ComponentCombo != nullptr ? m_ComponentCombo->currentText() : QString();
  updateArrayColoringChoices();
  if (names.contains(m_Coloring.activeArray))
  {
    if (m_ComponentCombo != nullptr)
    {
      const int index = m_ComponentCombo->findText(componentText);
      if (index >= 0)
        m_ComponentCombo->setCurrentIndex(index);
    }
    setActiveComponent(m_Coloring.activeComponent);
  }
  else if (!names.isEmpty())
  {
    setActiveArray(names.first());
  }
  setScalarBarVisibility(m_Coloring.showLegend);
}

void VXPointsRepPimpl::updateArrayColoringChoices()
{
  fillArrayCombo(m_ArrayCombo, parentDataSource());
}

void VXPointsRepPimpl::refillComponentCombo()
{
  fillComponentCombo(m_ComponentCombo, parentDataSource());
}

void VXPointsRepPimpl::arrayNameComboTextChanged(QString text)
{
  setActiveArray(text);
}

void VXPointsRepPimpl::arrayNameComboIndexChanged(int index)
{
  if (m_ArrayCombo != nullptr && index >= 0)
    setActiveArray(m_ArrayCombo->itemText(index));
}

void VXPointsRepPimpl::arrayComponentComboChanged(int index)
{
  if (m_ComponentCombo == nullptr || index < 0)
    return;
  setActiveComponent(m_ComponentCombo->itemText(index) == "Magnitude" ? -1 : index);
  requestRender();
}

// ---------------------------------------------------------------------------
// State

void VXPointsRepPimpl::write(nlohmann::json& output) const
{
  VXOutlineRepPimpl::write(output);
  currentColoringSettings().write(output);
  output["point_size"] = m_PointSize;
  output["render_points_as_spheres"] = m_RenderPointsAsSpheres;
}

void VXPointsRepPimpl::read(const nlohmann::json& input)
{
  VXOutlineRepPimpl::read(input);
  m_Coloring = currentColoringSettings();
  m_Coloring.read(input);
  if (input.contains("point_size"))
    m_PointSize = KXVtkModule::utils::StateInt(input.at("point_size"));
  if (input.contains("render_points_as_spheres"))
    m_RenderPointsAsSpheres = input.at("render_points_as_spheres").get<bool>();
  applyNanColor();
  if (m_ScalarBarRepresentation != nullptr)
  {
    m_ScalarBarRepresentation->SetPosition(m_Coloring.legendPosition.data());
    m_ScalarBarRepresentation->SetPosition2(m_Coloring.legendPosition2.data());
  }
  if (m_Initialized)
  {
    m_Actor->GetProperty()->SetPointSize(static_cast<float>(m_PointSize));
    m_Actor->GetProperty()->SetRenderPointsAsSpheres(m_RenderPointsAsSpheres);
    // the stored preset and inversion, not whatever the table showed before
    if (!m_Coloring.valuesAsCategories)
      applyRgbPreset();
    else if (m_Coloring.colorMapInverted != m_LookupTable->isInverted())
      m_LookupTable->invert();
    const int component = m_Coloring.activeComponent;
    setActiveArray(m_Coloring.useSolidColor ? QString() : m_Coloring.activeArray);
    setActiveComponent(component);
    if (m_Coloring.valuesAsCategories)
      setInterpretValuesAsCategories(true);
    setupScalarBar();
  }
}

void VXPointsRepPimpl::copyFrom(VXRepresentationPimpl* other)
{
  VXOutlineRepPimpl::copyFrom(other);
  auto* source = dynamic_cast<VXPointsRepPimpl*>(other);
  if (source == nullptr)
    return;
  m_Coloring = source->m_Coloring;
  m_PointSize = source->m_PointSize;
  m_RenderPointsAsSpheres = source->m_RenderPointsAsSpheres;
  m_LookupTable->setNANColor(source->m_LookupTable->getNANColor());
}

void VXPointsRepPimpl::pasteSettingsFromClipboard()
{
  VXOutlineRepPimpl::pasteSettingsFromClipboard();
  if (!m_DetachColorSettings)
  {
    if (VXDataSource* source = parentDataSource())
    {
      setNanColor(source->getNanColor());
      if (source->isUsingDefaultPreset())
        restoreDefaultRgbPresetColors();
      else
        loadRGBPresetColors(source->getCurrentPreset());
      setColorMapInverted(source->getIsInverted());
    }
  }
}

// ---------------------------------------------------------------------------
// Defaults

void VXPointsRepPimpl::loadPointsDefaults(QtKXSettings& settings)
{
  m_Coloring = currentColoringSettings();
  m_Coloring.loadDefaults(settings);
  applyNanColor();
  if (settings.contains("point_size"))
    m_PointSize = settings.value("point_size", 1).toInt();
  if (settings.contains("render_points_as_spheres"))
    m_RenderPointsAsSpheres = settings.value("render_points_as_spheres", false).toBool();
}

void VXPointsRepPimpl::savePointsDefaults(QtKXSettings& settings) const
{
  currentColoringSettings().saveDefaults(settings);
  settings.setValue("point_size", m_PointSize);
  settings.setValue("render_points_as_spheres", m_RenderPointsAsSpheres);
}

void VXPointsRepPimpl::loadDefaultSettings()
{
  VXOutlineRepPimpl::loadDefaultSettings();
  if (m_Owner == nullptr)
    return;
  QtKXSettings settings;
  BeginSettingsGroup(settings, m_Owner->typeName());
  loadPointsDefaults(settings);
}

void VXPointsRepPimpl::saveDefaultSettings()
{
  if (m_Owner == nullptr || !askSaveDefaults())
    return;
  QtKXSettings settings;
  BeginSettingsGroup(settings, m_Owner->typeName());
  saveBaseDefaults(settings);
  saveOutlineDefaults(settings);
  savePointsDefaults(settings);
  settings.sync();
}

void VXPointsRepPimpl::openHelp()
{
  QDesktopServices::openUrl(QUrl::fromUserInput(m_HelpUrl + m_HelpAnchor));
}

// ---------------------------------------------------------------------------
// Page

void VXPointsRepPimpl::buildSettingsPage()
{
  VXOutlineRepPimpl::buildSettingsPage();
  QFormLayout* coloring = sectionForm("Coloring");
  m_ArrayCombo = new QComboBox(m_PageContent);
  m_ArrayCombo->setObjectName("m_ArrayCombo");
  m_ComponentCombo = new QComboBox(m_PageContent);
  m_ComponentCombo->setObjectName("m_ComponentCombo");
  coloring->addRow(m_ArrayCombo, m_ComponentCombo);
  updateArrayColoringChoices();
  refillComponentCombo();
  connect(m_ArrayCombo, &QComboBox::currentIndexChanged, this,
          &VXPointsRepPimpl::arrayNameComboIndexChanged);
  connect(m_ComponentCombo, &QComboBox::currentIndexChanged, this,
          &VXPointsRepPimpl::arrayComponentComboChanged);

  m_SolidColorCheckBox = new QCheckBox("Use Solid Color", m_PageContent);
  m_SolidColorCheckBox->setObjectName("m_SolidColorCheckBox");
  m_SolidColorCheckBox->setChecked(m_Coloring.useSolidColor);
  connect(m_SolidColorCheckBox, &QCheckBox::toggled, this, &VXPointsRepPimpl::setUseSolidColor);
  m_CategoriesCheckBox = new QCheckBox("Interpret Values As Categories", m_PageContent);
  m_CategoriesCheckBox->setObjectName("m_CategoriesCheckBox");
  m_CategoriesCheckBox->setChecked(m_Coloring.valuesAsCategories);
  connect(m_CategoriesCheckBox, &QCheckBox::toggled, this,
          &VXPointsRepPimpl::setInterpretValuesAsCategories);
  coloring->addRow(m_SolidColorCheckBox, m_CategoriesCheckBox);

  auto* buttons = new QWidget(m_PageContent);
  auto* buttonLayout = new QHBoxLayout(buttons);
  buttonLayout->setContentsMargins(0, 0, 0, 0);
  m_ColorPresetButton = addPageButton(buttonLayout, "preset", "Edit", "m_ColorPresetButton");
  connect(m_ColorPresetButton, &QPushButton::clicked, this,
          [this]() { m_ColorPresetsDialog->show(); });
  m_InvertColorBtn = addPageButton(buttonLayout, "invert", QString(), "m_InvertColorBtn");
  connect(m_InvertColorBtn, &QPushButton::clicked, this,
          [this]() { setColorMapInverted(!m_Coloring.colorMapInverted); });
  m_EditColorMapButton =
    addPageButton(buttonLayout, nullptr, "Edit Color Map", "m_EditColorMapButton");
  connect(m_EditColorMapButton, &QPushButton::clicked, this,
          &VXPointsRepPimpl::editColorsButtonClicked);
  m_ScaleToDataButton =
    addPageButton(buttonLayout, "ScaleToData", "Scale to Data", "scaleToDataBtn");
  connect(m_ScaleToDataButton, &QPushButton::clicked, this, &VXPointsRepPimpl::rescaleToDataRange);
  m_CustomRangeButton =
    addPageButton(buttonLayout, "CustomRange", "Custom Range", "customRangeBtn");
  connect(m_CustomRangeButton, &QPushButton::clicked, this,
          &VXPointsRepPimpl::openCustomRangeDialog);
  coloring->addRow(buttons);
  m_ColorPresetButton->setEnabled(m_DetachColorSettings);
  m_InvertColorBtn->setEnabled(m_DetachColorSettings);
  m_ComponentCombo->setEnabled(!m_Coloring.useSolidColor);
  m_EditColorMapButton->setEnabled(!m_Coloring.useSolidColor);

  m_ScalarMappingCombo = new QComboBox(m_PageContent);
  m_ScalarMappingCombo->setObjectName("m_ScalarMappingCombo");
  m_ScalarMappingCombo->addItems({ "Always ", "Non-Colors", "Never" });
  m_ScalarMappingCombo->setCurrentIndex(m_Coloring.scalarMapping);
  connect(m_ScalarMappingCombo, &QComboBox::currentIndexChanged, this,
          &VXPointsRepPimpl::updateColorMode);
  coloring->addRow("Map Scalars :", m_ScalarMappingCombo);

  QFormLayout* styling = sectionForm("Styling");
  m_PointSizeEdit = new QLineEdit(QString::number(m_PointSize), m_PageContent);
  m_PointSizeEdit->setObjectName("m_PointSizeEdit");
  m_PointSizeEdit->setValidator(new QIntValidator(1, 100, m_PointSizeEdit));
  connect(m_PointSizeEdit, &QLineEdit::textEdited, this, &VXPointsRepPimpl::pointSizeEdited);
  connect(m_PointSizeEdit, &QLineEdit::editingFinished, this, &VXPointsRepPimpl::pointSizeChanged);
  styling->addRow("Point Size", m_PointSizeEdit);
  m_SpheresCheckBox = new QCheckBox("Render Points As Spheres", m_PageContent);
  m_SpheresCheckBox->setObjectName("m_SpheresCheckBox");
  m_SpheresCheckBox->setChecked(m_RenderPointsAsSpheres);
  connect(m_SpheresCheckBox, &QCheckBox::toggled, this,
          &VXPointsRepPimpl::setRenderPointsAsSpheres);
  styling->addRow(m_SpheresCheckBox);

  QFormLayout* annotations = sectionForm("Annotations");
  m_LegendCheckBox = new QCheckBox("Show Legend", m_PageContent);
  m_LegendCheckBox->setObjectName("m_LegendCheckBox");
  m_LegendCheckBox->setChecked(m_Coloring.showLegend);
  connect(m_LegendCheckBox, &QCheckBox::toggled, this, &VXPointsRepPimpl::setScalarBarVisibility);
  annotations->addRow(m_LegendCheckBox);

  QFormLayout* histogram = sectionForm("Array Histogram");
  m_HistogramCheckBox = new QCheckBox("Generate Active Array Histogram", m_PageContent);
  m_HistogramCheckBox->setObjectName("m_HistogramCheckBox");
  m_HistogramCheckBox->setChecked(m_Coloring.generateHistogram);
  m_HistogramCheckBox->setEnabled(!m_Coloring.useSolidColor);
  connect(m_HistogramCheckBox, &QCheckBox::toggled, this, &VXPointsRepPimpl::setGenerateHistogram);
  histogram->addRow(m_HistogramCheckBox);
  m_HistogramWidget = new VXArrayHistogramWidget(m_PageContent);
  m_HistogramWidget->setEnabled(!m_Coloring.useSolidColor);
  m_HistogramWidget->setVisible(m_Coloring.generateHistogram);
  connect(this, &VXPointsRepPimpl::histogramDataChanged, m_HistogramWidget,
          &VXArrayHistogramWidget::setArray);
  histogram->addRow(m_HistogramWidget);
  updateHistogram();
  // the histogram section goes last, after the stretch the outline level added
  if (QWidget* box = histogram->parentWidget())
  {
    m_PageLayout->removeWidget(box);
    m_PageLayout->insertWidget(m_PageLayout->count() - 1, box);
  }
}

void VXPointsRepPimpl::syncControls()
{
  VXOutlineRepPimpl::syncControls();
  auto setChecked = [](QCheckBox* box, bool value)
  {
    if (box == nullptr)
      return;
    const QSignalBlocker blocker(box);
    box->setChecked(value);
  };
  setChecked(m_SolidColorCheckBox, m_Coloring.useSolidColor);
  setChecked(m_CategoriesCheckBox, m_Coloring.valuesAsCategories);
  setChecked(m_SpheresCheckBox, m_RenderPointsAsSpheres);
  setChecked(m_LegendCheckBox, m_Coloring.showLegend);
  setChecked(m_HistogramCheckBox, m_Coloring.generateHistogram);
  if (m_HistogramWidget != nullptr)
    m_HistogramWidget->setVisible(m_Coloring.generateHistogram);
  if (m_PointSizeEdit != nullptr)
    m_PointSizeEdit->setText(QString::number(m_PointSize));
  if (m_ScalarMappingCombo != nullptr)
  {
    const QSignalBlocker blocker(m_ScalarMappingCombo);
    m_ScalarMappingCombo->setCurrentIndex(m_Coloring.scalarMapping);
  }
  updateArrayColoringChoices();
  refillComponentCombo();
  if (m_ComponentCombo != nullptr)
    m_ComponentCombo->setEnabled(!m_Coloring.useSolidColor);
  if (m_EditColorMapButton != nullptr)
    m_EditColorMapButton->setEnabled(!m_Coloring.useSolidColor);
}

void VXPointsRepPimpl::updateToolTips()
{
  VXOutlineRepPimpl::updateToolTips();
  auto tip = [](QWidget* widget, const QString& text)
  {
    if (widget != nullptr)
      widget->setToolTip(HtmlToolTip(text));
  };
  tip(m_ArrayCombo, "Select which data array to use to generate colors");
  tip(m_ComponentCombo, "Select which component to use to generate colors");
  tip(m_SolidColorCheckBox, "Set the active array to solid color");
  tip(m_CategoriesCheckBox,
      "When checked, switches the color map to indexed lookup mode (categorical colors)");
  tip(m_ColorPresetButton, "Edit Color Map");
  tip(m_InvertColorBtn, "Invert the color map");
  tip(m_CustomRangeButton, "Rescale the color map to a custom range");
  tip(m_ScaleToDataButton, "Rescale the color map to the data's range");
  tip(m_ScalarMappingCombo, VXScalarColoring::k_MapScalarsToolTip);
  tip(m_LegendCheckBox, "When checked, show the color legend");
  tip(m_HistogramCheckBox, "Toggle the generation of the active array histogram on/off. WARNING: "
                           "This may slow down rendering!");
  tip(m_PointSizeEdit, "Use this to adjust the size of displayed points for the current geometry");
  tip(m_SpheresCheckBox, "When checked, render the points as spheres");
}
