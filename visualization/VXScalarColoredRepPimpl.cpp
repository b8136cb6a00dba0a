#include "visualization/VXScalarColoredRepPimpl.hpp"

#include "utils/KXVtkModuleUtils.hpp"
#include "visualization/QtWidgets/VXArrayHistogramWidget.hpp"
#include "visualization/QtWidgets/VXFTransformFilterWidget.hpp"
#include "visualization/QtWidgets/VXVisualizationWidget.hpp"
#include "visualization/VXDataSource.hpp"
#include "visualization/VXLookupTable.hpp"
#include "visualization/VXRepresentation.hpp"
#include "visualization/VXUserPrompt.hpp"

#include <KXComponents/ColorPresetsDialog.hpp>
#include <KXComponents/KXColorButton.hpp>

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSlider>

#include <vtkActor.h>
#include <vtkDataArray.h>
#include <vtkDataSet.h>
#include <vtkPointData.h>
#include <vtkScalarBarActor.h>
#include <vtkScalarBarRepresentation.h>

#include <algorithm>

using KXVtkModule::utils::HtmlToolTip;

VXScalarColoredRepPimpl::VXScalarColoredRepPimpl(VXAbstractViewWidget* view,
                                                 VXRepresentation* owner)
  : VXRepresentationPimpl(view, owner)
{
  VXUserPrompt::routeColorButton(m_ColorPresetsDialog->nanColorButton(),
                                 QStringLiteral("Select NaN Color"));
  connectColoringDialogs(this);
}

VXScalarColoredRepPimpl::~VXScalarColoredRepPimpl() = default;

VXDataSource* VXScalarColoredRepPimpl::parentDataSource() const
{
  return m_Owner != nullptr ? m_Owner->parentDataSource() : nullptr;
}

vtkDataArray* VXScalarColoredRepPimpl::activeDataArray() const
{
  // only point arrays colour these views
  vtkDataSet* data = coloringDataSet();
  if (data == nullptr || m_Coloring.activeArray.isEmpty())
    return nullptr;
  return data->GetPointData()->GetArray(m_Coloring.activeArray.toStdString().c_str());
}

// ---------------------------------------------------------------------------
// Colouring

void VXScalarColoredRepPimpl::rescaleToDataRange()
{
  rescaleColoringToData();
}

void VXScalarColoredRepPimpl::rescaleToCustomRange(double min, double max)
{
  rescaleColoringToCustom(min, max);
}

void VXScalarColoredRepPimpl::openCustomRangeDialog()
{
  m_CustomRangeDialog->open();
  m_CustomRangeDialog->raise();
}

void VXScalarColoredRepPimpl::setSolidColor(QColor color)
{
  m_SolidColor = color;
  if (m_SolidColorButton != nullptr)
  {
    const QSignalBlocker blocker(m_SolidColorButton);
    m_SolidColorButton->setColor(color);
  }
  applyColoring();
  requestRender();
}

void VXScalarColoredRepPimpl::setNanColor(QColor color)
{
  setNanColorOfTable(color);
  requestRender();
}

void VXScalarColoredRepPimpl::setInterpretValuesAsCategories(bool categories)
{
  applyCategories(categories);
  if (m_CategoriesCheckBox != nullptr)
  {
    const QSignalBlocker blocker(m_CategoriesCheckBox);
    m_CategoriesCheckBox->setChecked(categories);
  }
  requestRender();
}

void VXScalarColoredRepPimpl::editColorsButtonClicked()
{
  openColorMapEditor(this);
}

void VXScalarColoredRepPimpl::onColorMapEdited()
{
  // a view that followed its parent's colours detaches, or the parent's next change undoes the edit
  if (!m_DetachColorSettings)
    onDetachColorSettings(true);
  recordEditedColorMap();
  requestRender();
}

void VXScalarColoredRepPimpl::coloringTableChanged()
{
  applyColoring();
}

void VXScalarColoredRepPimpl::coloringHistogramChanged()
{
  updateHistogram();
}

void VXScalarColoredRepPimpl::coloringRender()
{
  requestRender();
}

void VXScalarColoredRepPimpl::loadRGBPresetColors(kx::core::ColorTableUtilities::ColorPreset preset)
{
  chooseRgbPreset(&preset);
  requestRender();
}

void VXScalarColoredRepPimpl::restoreDefaultRgbPresetColors()
{
  chooseRgbPreset(nullptr);
  requestRender();
}

void VXScalarColoredRepPimpl::loadIndexedPresetColors(
  kx::core::ColorTableUtilities::ColorPreset preset)
{
  chooseIndexedPreset(&preset);
  requestRender();
}

void VXScalarColoredRepPimpl::restoreDefaultIndexedPresetColors()
{
  chooseIndexedPreset(nullptr);
  requestRender();
}

void VXScalarColoredRepPimpl::setColorMapInverted(bool inverted)
{
  if (invertColoring(inverted))
    requestRender();
}

void VXScalarColoredRepPimpl::setOpacity(int percent)
{
  m_Opacity = std::clamp(percent, 0, 100) / 100.0;
  applyOpacity();
  requestRender();
}

void VXScalarColoredRepPimpl::connectParentColorSignals(bool trigger)
{
  VXDataSource* source = parentDataSource();
  if (source == nullptr)
    return;
  disconnectParentColorSignals();
  m_ParentColorConnections.append(connect(source, &VXDataSource::solidColorChanged, this,
                                          &VXScalarColoredRepPimpl::setSolidColor));
  connectParentColoring(this, source, m_ParentColorConnections);
  if (trigger)
    source->triggerColorSettingsChange();
}

void VXScalarColoredRepPimpl::disconnectParentColorSignals()
{
  for (const QMetaObject::Connection& connection : m_ParentColorConnections)
    disconnect(connection);
  m_ParentColorConnections.clear();
}

void VXScalarColoredRepPimpl::onDetachColorSettings(bool checked)
{
  m_DetachColorSettings = checked;
  if (checked)
    disconnectParentColorSignals();
  else
    connectParentColorSignals(true);
  for (QWidget* control : { static_cast<QWidget*>(m_SolidColorButton.data()),
                            static_cast<QWidget*>(m_ColorPresetButton.data()),
                            static_cast<QWidget*>(m_InvertColorBtn.data()) })
  {
    if (control != nullptr)
      control->setEnabled(checked);
  }
  if (m_DetachColorCheckBox != nullptr)
  {
    const QSignalBlocker blocker(m_DetachColorCheckBox);
    m_DetachColorCheckBox->setChecked(checked);
  }
}

void VXScalarColoredRepPimpl::onSyncColorMapToParentGeometry()
{
  if (!m_DetachColorSettings)
    return;
  onDetachColorSettings(false);
}

// ---------------------------------------------------------------------------
// Legend, histogram

void VXScalarColoredRepPimpl::setupScalarBar()
{
  setupScalarBarRepresentation();
  vtkScalarBarActor* bar = m_ScalarBarWidget->GetScalarBarActor();
  bar->SetLookupTable(m_LookupTable->getColorTransferFunction());
  if (VXVisualizationWidget* widget = visualizationWidget();
      widget != nullptr && m_ScalarBarWidget->GetInteractor() == nullptr &&
      widget->getRenderWindowInteractor() != nullptr)
  {
    m_ScalarBarWidget->SetInteractor(widget->getRenderWindowInteractor());
    m_ScalarBarWidget->SetCurrentRenderer(widget->getRenderer());
  }
  if (m_ScalarBarWidget->GetInteractor() != nullptr)
    m_ScalarBarWidget->SetEnabled(
      m_Coloring.showLegend && m_Visible && m_Initialized && !m_Coloring.useSolidColor ? 1 : 0);
}

void VXScalarColoredRepPimpl::setScalarBarVisibility(bool visible)
{
  m_Coloring.showLegend = visible;
  setupScalarBar();
  if (m_LegendCheckBox != nullptr)
  {
    const QSignalBlocker blocker(m_LegendCheckBox);
    m_LegendCheckBox->setChecked(visible);
  }
  requestRender();
}

VXArrayHistogramWidget* VXScalarColoredRepPimpl::histogramWidget() const
{
  return m_HistogramWidget.data();
}

// ---------------------------------------------------------------------------
// State, clipboard

void VXScalarColoredRepPimpl::write(nlohmann::json& output) const
{
  VXRepresentationPimpl::write(output);
  currentColoringSettings().write(output);
  output["opacity_percent"] = m_Opacity * 100.0;
  output["solid_color_r"] = m_SolidColor.red();
  output["solid_color_g"] = m_SolidColor.green();
  output["solid_color_b"] = m_SolidColor.blue();
}

void VXScalarColoredRepPimpl::applyLegendPosition()
{
  if (m_ScalarBarRepresentation != nullptr)
  {
    m_ScalarBarRepresentation->SetPosition(m_Coloring.legendPosition.data());
    m_ScalarBarRepresentation->SetPosition2(m_Coloring.legendPosition2.data());
  }
}

void VXScalarColoredRepPimpl::applyReadColoring()
{
  const int component = m_Coloring.activeComponent;
  if (!m_Coloring.valuesAsCategories)
    applyRgbPreset();
  setActiveArray(m_Coloring.useSolidColor ? QString() : m_Coloring.activeArray);
  setActiveComponent(component);
  if (m_Coloring.valuesAsCategories)
    setInterpretValuesAsCategories(true);
  applyColoring();
}

void VXScalarColoredRepPimpl::copySettingsToClipboard()
{
  writeToClipboard();
}

void VXScalarColoredRepPimpl::pasteSettingsFromClipboard()
{
  const nlohmann::json settings = readClipboard();
  if (settings.is_object())
    read(settings);
  requestRender();
}

void VXScalarColoredRepPimpl::bounds(double bounds[6])
{
  const double* b = coloredProp()->GetBounds();
  std::copy(b, b + 6, bounds);
}

void VXScalarColoredRepPimpl::setVisibility(bool visible)
{
  setPropVisibility(coloredProp(), m_HighlightActor, visible, m_Initialized);
  setupScalarBar();
}

void VXScalarColoredRepPimpl::setHighlighted(bool highlighted)
{
  m_Highlighted = highlighted;
  setPropHighlighted(m_HighlightActor, highlighted);
}

void VXScalarColoredRepPimpl::applyTransform()
{
  applyTransformTo({ coloredProp(), m_HighlightActor });
}

// ---------------------------------------------------------------------------
// Settings page

void VXScalarColoredRepPimpl::updateArrayColoringChoices()
{
  fillArrayCombo(m_ArrayCombo, parentDataSource());
}

void VXScalarColoredRepPimpl::refillComponentCombo()
{
  fillComponentCombo(m_ComponentCombo, parentDataSource());
}

void VXScalarColoredRepPimpl::arrayNameComboIndexChanged(int index)
{
  if (m_ArrayCombo != nullptr && index >= 0)
    setActiveArray(m_ArrayCombo->itemText(index));
}

void VXScalarColoredRepPimpl::arrayComponentComboChanged(int index)
{
  if (m_ComponentCombo == nullptr || index < 0)
    return;
  setActiveComponent(m_ComponentCombo->itemText(index) == "Magnitude" ? -1 : index);
  applyColoring();
  requestRender();
}

void VXScalarColoredRepPimpl::addColoringSections(
  const std::function<QFormLayout*(const QString&)>& section)
{
  auto combo = [this](const QString& name, const QStringList& items)
  {
    auto* box = new QComboBox(m_PageContent);
    box->setObjectName(name);
    box->addItems(items);
    return box;
  };
  QFormLayout* coloring = section("Coloring");
  m_DetachColorCheckBox = new QCheckBox("Enable Separate Color Map", m_PageContent);
  m_DetachColorCheckBox->setObjectName("m_DetachColorCheckBox");
  m_DetachColorCheckBox->setChecked(m_DetachColorSettings);
  m_SolidColorButton = new KXColorButton(m_SolidColor, m_PageContent);
  VXUserPrompt::routeColorButton(m_SolidColorButton, QStringLiteral("Select Solid Color"));
  m_SolidColorButton->setObjectName("m_SolidColorButton");
  m_SolidColorButton->setEnabled(m_DetachColorSettings);
  coloring->addRow(m_DetachColorCheckBox, m_SolidColorButton);
  m_ArrayCombo = combo("m_ArrayCombo", {});
  m_ComponentCombo = combo("m_ComponentCombo", {});
  coloring->addRow(m_ArrayCombo, m_ComponentCombo);
  m_SolidColorCheckBox = new QCheckBox("Use Solid Color", m_PageContent);
  m_SolidColorCheckBox->setObjectName("m_SolidColorCheckBox");
  m_CategoriesCheckBox = new QCheckBox("Interpret Values As Categories", m_PageContent);
  m_CategoriesCheckBox->setObjectName("m_CategoriesCheckBox");
  coloring->addRow(m_SolidColorCheckBox, m_CategoriesCheckBox);
  auto* buttons = new QWidget(m_PageContent);
  auto* buttonLayout = new QHBoxLayout(buttons);
  buttonLayout->setContentsMargins(0, 0, 0, 0);
  m_ColorPresetButton = addPageButton(buttonLayout, "preset", "Edit", "m_ColorPresetButton");
  m_InvertColorBtn = addPageButton(buttonLayout, "invert", QString(), "m_InvertColorBtn");
  m_EditColorMapButton =
    addPageButton(buttonLayout, nullptr, "Edit Color Map", "m_EditColorMapButton");
  m_ScaleToDataButton =
    addPageButton(buttonLayout, "ScaleToData", "Scale to Data", "scaleToDataBtn");
  m_CustomRangeButton =
    addPageButton(buttonLayout, "CustomRange", "Custom Range", "customRangeBtn");
  coloring->addRow(buttons);
  m_ColorPresetButton->setEnabled(m_DetachColorSettings);
  m_InvertColorBtn->setEnabled(m_DetachColorSettings);
  m_ScalarMappingCombo = combo("m_ScalarMappingCombo", { "Always ", "Non-Colors", "Never" });
  coloring->addRow("Map Scalars :", m_ScalarMappingCombo);

  QFormLayout* styling = section("Styling");
  m_OpacitySlider = new QSlider(Qt::Horizontal, m_PageContent);
  m_OpacitySlider->setObjectName("m_OpacitySlider");
  m_OpacitySlider->setRange(0, 100);
  m_OpacitySlider->setValue(static_cast<int>(m_Opacity * 100.0 + 0.5));
  styling->addRow("Opacity", m_OpacitySlider);

  QFormLayout* annotations = section("Annotations");
  m_LegendCheckBox = new QCheckBox("Show Legend", m_PageContent);
  m_LegendCheckBox->setObjectName("m_LegendCheckBox");
  annotations->addRow(m_LegendCheckBox);
  section("Transform")->addRow(ensureTransformWidget());
}

void VXScalarColoredRepPimpl::connectColoringControls()
{
  using Self = VXScalarColoredRepPimpl;
  connect(m_DetachColorCheckBox, &QCheckBox::toggled, this, &Self::onDetachColorSettings);
  connect(m_SolidColorButton, &KXColorButton::changedColor, this, &Self::setSolidColor);
  connect(m_ArrayCombo, &QComboBox::currentIndexChanged, this, &Self::arrayNameComboIndexChanged);
  connect(m_ComponentCombo, &QComboBox::currentIndexChanged, this,
          &Self::arrayComponentComboChanged);
  connect(m_SolidColorCheckBox, &QCheckBox::toggled, this, &Self::setUseSolidColor);
  connect(m_CategoriesCheckBox, &QCheckBox::toggled, this, &Self::setInterpretValuesAsCategories);
  connect(m_ColorPresetButton, &QPushButton::clicked, this,
          [this]() { m_ColorPresetsDialog->show(); });
  connect(m_InvertColorBtn, &QPushButton::clicked, this,
          [this]() { setColorMapInverted(!m_Coloring.colorMapInverted); });
  connect(m_ScaleToDataButton, &QPushButton::clicked, this, &Self::rescaleToDataRange);
  connect(m_EditColorMapButton, &QPushButton::clicked, this, &Self::editColorsButtonClicked);
  connect(m_ScalarMappingCombo, &QComboBox::currentIndexChanged, this, &Self::updateColorMode);
  connect(m_CustomRangeButton, &QPushButton::clicked, this, &Self::openCustomRangeDialog);
  connect(m_OpacitySlider, &QSlider::valueChanged, this, &Self::setOpacity);
  connect(m_LegendCheckBox, &QCheckBox::toggled, this, &Self::setScalarBarVisibility);
}

void VXScalarColoredRepPimpl::updateColoringToolTips()
{
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
  tip(m_DetachColorCheckBox,
      "Use separate color settings (solid color, presets, & invert) from the parent geometry");
  tip(m_ColorPresetButton, "Edit Color Map");
  tip(m_InvertColorBtn, "Invert the color map");
  tip(m_EditColorMapButton, "Edit the colors and the range of the color map");
  tip(m_ScalarMappingCombo, VXScalarColoring::k_MapScalarsToolTip);
  tip(m_CustomRangeButton, "Rescale the color map to a custom range");
  tip(m_ScaleToDataButton, "Rescale the color map to the data's range");
  tip(m_LegendCheckBox, "When checked, show the color legend");
}
