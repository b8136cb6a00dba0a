#include "visualization/VXScalarColoring.hpp"

#include "visualization/VXRepresentationUtils.hpp"

#include <KXComponents/KXPreferences.hpp>

#include <QtWidgets/QComboBox>

#include <vtkDataArray.h>
#include <vtkDataSet.h>
#include <vtkScalarBarActor.h>
#include <vtkScalarBarRepresentation.h>
#include <vtkScalarsToColors.h>
#include <vtkTextProperty.h>

#include <algorithm>
#include <cmath>

const QString VXScalarColoring::k_MapScalarsToolTip =
  "Controls how data values are mapped to colors.\n\nAlways: Always map scalar values through the "
  "color lookup table, "
  "even for color arrays (RGB/RGBA).\n\nNon-Colors: Map scalars through the color lookup table "
  "only when the data is "
  "not already a color array. Color arrays (RGB/RGBA) are rendered directly.\n\nNever: Never map "
  "scalars through the "
  "color lookup table. Always interpret scalar values as direct colors.";

VXScalarColoring::VXScalarColoring()
{
  m_LookupTable = QSharedPointer<VXLookupTable>(new VXLookupTable());
  m_ColorPresetsDialog =
    QSharedPointer<ColorPresetsDialog>(new ColorPresetsDialog(), &QObject::deleteLater);
  m_CustomRangeDialog =
    QSharedPointer<VXCustomRangeDialog>(new VXCustomRangeDialog(), &QObject::deleteLater);
  m_ScalarBarWidget = vtkSmartPointer<vtkScalarBarWidget>::New();
}

VXScalarColoring::~VXScalarColoring()
{
  m_ScalarBarWidget->SetEnabled(0);
  m_ScalarBarWidget->SetInteractor(nullptr);
}

vtkDataArray* VXScalarColoring::coloringArray() const
{
  return KXVtkModule::utils::GetActiveDataArray(coloringDataSet(), m_Coloring.activeArray);
}

std::set<double> VXScalarColoring::computeUniqueValues(const QString& arrayName, int component)
{
  auto& perArray = m_UniqueValues[arrayName];
  auto found = perArray.find(component);
  if (found != perArray.end())
    return found->second;
  std::set<double> values;
  vtkDataArray* array = KXVtkModule::utils::GetActiveDataArray(coloringDataSet(), arrayName);
  if (array != nullptr)
  {
    const int n = array->GetNumberOfComponents();
    const vtkIdType tuples = array->GetNumberOfTuples();
    for (vtkIdType t = 0; t < tuples; t++)
    {
      double value = 0.0;
      if (component >= 0 && component < n)
        value = array->GetComponent(t, component);
      else if (n == 1)
        value = array->GetComponent(t, 0);
      else
      {
        double sum = 0.0;
        for (int k = 0; k < n; k++)
          sum += array->GetComponent(t, k) * array->GetComponent(t, k);
        value = std::sqrt(sum);
      }
      values.insert(value);
      // past the categorical limit the set is useless: give up and remember that
      if (values.size() > static_cast<std::size_t>(VXLookupTable::k_MaxNumberIndexedColors))
      {
        values.clear();
        break;
      }
    }
  }
  perArray[component] = values;
  return values;
}

void VXScalarColoring::applyComponent(vtkScalarsToColors* table, vtkDataArray* array, int component)
{
  const int c = component < -1 ? -1 : component;
  const int n = array->GetNumberOfComponents();
  if (n == 1)
  {
    if (table != nullptr)
      table->SetVectorModeToComponent();
    m_LegendTitle = m_Coloring.activeArray;
  }
  else if (c == -1)
  {
    if (table != nullptr)
      table->SetVectorModeToMagnitude();
    m_LegendTitle = m_Coloring.activeArray + "\nMagnitude";
  }
  else if (c < n)
  {
    if (table != nullptr)
    {
      table->SetVectorModeToComponent();
      table->SetVectorComponent(c);
    }
    m_LegendTitle = m_Coloring.activeArray + "\n(Comp " + QString::number(c) + ")";
  }
  m_Coloring.activeComponent = c;
  setScalarBarTitle(m_LegendTitle);
}

void VXScalarColoring::applyRangeOfActiveComponent(vtkDataArray* array)
{
  if (m_Coloring.activeArray.isEmpty() || m_Coloring.useSolidColor)
    return;
  m_BlockHistogram = true;
  if (m_Coloring.usingCustomRange)
  {
    m_LookupTable->setRange(m_Coloring.customRange[0], m_Coloring.customRange[1]);
    double dataRange[2] = { 0.0, 1.0 };
    array->GetFiniteRange(dataRange, m_Coloring.activeComponent);
    m_CustomRangeDialog->setRangeAndValues({ dataRange[0], dataRange[1] }, m_Coloring.customRange);
  }
  else
    rescaleColoringToData();
  m_BlockHistogram = false;
}

void VXScalarColoring::rescaleColoringToData()
{
  vtkDataSet* data = coloringDataSet();
  if (data == nullptr)
    return;
  double range[2] = { 0.0, 1.0 };
  if (vtkDataArray* array = coloringArray())
    array->GetFiniteRange(range, m_Coloring.activeComponent);
  else
    data->GetScalarRange(range);
  m_LookupTable->setRange(range[0], range[1]);
  m_CustomRangeDialog->setRange(range[0], range[1]);
  m_Coloring.usingCustomRange = false;
  coloringHistogramChanged();
  coloringRender();
}

void VXScalarColoring::rescaleColoringToCustom(double min, double max)
{
  m_Coloring.customRange = { min, max };
  m_LookupTable->setRange(min, max);
  m_CustomRangeDialog->setRangeAndValues(m_CustomRangeDialog->dataRange(), { min, max });
  m_Coloring.usingCustomRange = true;
  coloringHistogramChanged();
  coloringRender();
}

void VXScalarColoring::applyRgbPreset()
{
  // a preset is parsed in its own order: start upright so that the inverted flag stays true
  if (m_LookupTable->isInverted())
    m_LookupTable->invert();
  if (m_Coloring.usingDefaultPreset)
    m_LookupTable->createDefaultRgbColorTransferFunction();
  else
    m_LookupTable->parseRgbJson(m_Coloring.colorPreset);
  if (m_Coloring.colorMapInverted)
    m_LookupTable->invert();
}

void VXScalarColoring::applyIndexedPreset()
{
  const ColorPreset preset = m_Coloring.usingDefaultIndexedPreset
                               ? KXPreferences::getDefaultIndexedColorPreset()
                               : m_Coloring.indexedColorPreset;
  const std::set<double> values =
    computeUniqueValues(m_Coloring.activeArray, m_Coloring.activeComponent);
  const int presetColors = static_cast<int>(preset.indexedColors.size() / 3);
  VXLookupTable::checkIndexedValueCount(static_cast<int>(values.size()), presetColors,
                                        m_Coloring.activeArray);
  m_LookupTable->parseIndexedJson(preset, values);
}

void VXScalarColoring::chooseRgbPreset(const ColorPreset* preset)
{
  m_Coloring.usingDefaultPreset = preset == nullptr;
  m_Coloring.colorPreset = preset != nullptr ? *preset : KXPreferences::getDefaultColorPreset();
  applyRgbPreset();
}

void VXScalarColoring::chooseIndexedPreset(const ColorPreset* preset)
{
  m_Coloring.usingDefaultIndexedPreset = preset == nullptr;
  m_Coloring.indexedColorPreset =
    preset != nullptr ? *preset : KXPreferences::getDefaultIndexedColorPreset();
  applyIndexedPreset();
  if (m_Coloring.colorMapInverted)
    m_LookupTable->invert();
}

void VXScalarColoring::choosePreset(const ColorPreset* preset)
{
  if (m_Coloring.valuesAsCategories)
    chooseIndexedPreset(preset);
  else
    chooseRgbPreset(preset);
}

bool VXScalarColoring::invertColoring(bool inverted)
{
  if (inverted == m_Coloring.colorMapInverted)
    return false;
  m_Coloring.colorMapInverted = inverted;
  m_LookupTable->invert();
  return true;
}

void VXScalarColoring::applyCategories(bool categories)
{
  m_Coloring.valuesAsCategories = categories;
  if (categories)
  {
    applyIndexedPreset();
  }
  else
  {
    applyRgbPreset();
    if (m_Coloring.usingCustomRange)
      m_LookupTable->setRange(m_Coloring.customRange[0], m_Coloring.customRange[1]);
    else
      rescaleColoringToData();
  }
  updateLegendTextSide();
  coloringTableChanged();
}

void VXScalarColoring::setNanColorOfTable(const QColor& color)
{
  m_LookupTable->setNANColor(color);
  m_Coloring.nanColor = { color.redF(), color.greenF(), color.blueF() };
}

void VXScalarColoring::applyNanColor()
{
  const auto& nan = m_Coloring.nanColor;
  m_LookupTable->setNANColor(QColor::fromRgbF(
    static_cast<float>(nan[0]), static_cast<float>(nan[1]), static_cast<float>(nan[2])));
}

void VXScalarColoring::recordEditedColorMap()
{
  const ColorPreset edited = m_LookupTable->toColorPreset(k_EditedPresetName);
  if (m_Coloring.valuesAsCategories)
  {
    m_Coloring.indexedColorPreset = edited;
    m_Coloring.usingDefaultIndexedPreset = false;
    return;
  }
  m_Coloring.colorPreset = edited;
  m_Coloring.usingDefaultPreset = false;
  const std::array<double, 2> range = m_LookupTable->getRange();
  const std::array<double, 2> dataRange = m_CustomRangeDialog->dataRange();
  if (m_Coloring.usingCustomRange || range != dataRange)
  {
    m_Coloring.usingCustomRange = true;
    m_Coloring.customRange = range;
    m_CustomRangeDialog->setRangeAndValues(dataRange, range);
  }
}

void VXScalarColoring::setupScalarBarRepresentation()
{
  if (m_ScalarBarRepresentation == nullptr)
  {
    m_ScalarBarRepresentation = vtkSmartPointer<vtkScalarBarRepresentation>::New();
    m_ScalarBarRepresentation->SetPosition(m_Coloring.legendPosition.data());
    m_ScalarBarRepresentation->SetPosition2(m_Coloring.legendPosition2.data());
    m_ScalarBarWidget->SetRepresentation(m_ScalarBarRepresentation);
    vtkScalarBarActor* bar = m_ScalarBarWidget->GetScalarBarActor();
    bar->SetNumberOfLabels(5);
    // title, labels and annotations are sized to fit the box instead of running out of the view
    bar->SetUnconstrainedFontSize(false);
    bar->SetAnnotationTextScaling(true);
    bar->SetBarRatio(0.3);
    bar->SetTitleRatio(0.5);
    bar->SetTextPad(2);
    bar->GetTitleTextProperty()->SetJustificationToCentered();
    bar->GetTitleTextProperty()->SetColor(0.5, 0.5, 0.0);
  }
  updateLegendTextSide();
  m_ScalarBarWidget->GetScalarBarActor()->SetTitle(m_LegendTitle.toStdString().c_str());
}

void VXScalarColoring::updateLegendTextSide()
{
  if (m_ScalarBarRepresentation == nullptr)
    return;
  // the box ends at the right edge of the view: the text goes on its left side, which is where
  // the tick labels precede the bar and where the category annotations go when labels succeed it
  vtkScalarBarActor* bar = m_ScalarBarWidget->GetScalarBarActor();
  if (m_Coloring.valuesAsCategories)
    bar->SetTextPositionToSucceedScalarBar();
  else
    bar->SetTextPositionToPrecedeScalarBar();
}

void VXScalarColoring::setScalarBarTitle(const QString& title)
{
  m_LegendTitle = title;
  if (m_ScalarBarRepresentation != nullptr)
    m_ScalarBarWidget->GetScalarBarActor()->SetTitle(title.toStdString().c_str());
}

VXColoringSettings VXScalarColoring::currentColoringSettings() const
{
  VXColoringSettings settings = m_Coloring;
  const QColor nan = m_LookupTable->getNANColor();
  settings.nanColor = { nan.redF(), nan.greenF(), nan.blueF() };
  // the lookup table and the legend hold what the user changed since: they are the truth
  settings.legendPlaced = m_ScalarBarRepresentation != nullptr;
  if (settings.legendPlaced)
  {
    const double* position = m_ScalarBarRepresentation->GetPosition();
    const double* position2 = m_ScalarBarRepresentation->GetPosition2();
    settings.legendPosition = { position[0], position[1] };
    settings.legendPosition2 = { position2[0], position2[1] };
  }
  return settings;
}

void VXScalarColoring::fillArrayCombo(QComboBox* combo, VXDataSource* source) const
{
  if (combo == nullptr)
    return;
  const QSignalBlocker blocker(combo);
  combo->clear();
  if (source != nullptr)
  {
    const QMap<QString, QIcon> names = source->getImportedArrayNames();
    for (auto iter = names.constBegin(); iter != names.constEnd(); ++iter)
      combo->addItem(iter.value(), iter.key());
  }
  combo->setCurrentIndex(combo->findText(m_Coloring.activeArray));
}

void VXScalarColoring::fillComponentCombo(QComboBox* combo, VXDataSource* source) const
{
  if (combo == nullptr)
    return;
  const QSignalBlocker blocker(combo);
  combo->clear();
  if (source != nullptr)
    combo->addItems(source->getComponentNames(m_Coloring.activeArray));
  const int magnitude = combo->findText("Magnitude");
  combo->setCurrentIndex(m_Coloring.activeComponent < 0 ? std::max(magnitude, 0)
                                                        : m_Coloring.activeComponent);
}
