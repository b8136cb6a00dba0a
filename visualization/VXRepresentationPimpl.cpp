#include "visualization/VXRepresentationPimpl.hpp"

#include "utils/KXVtkModuleUtils.hpp"
#include "visualization/QtWidgets/VXAbstractViewWidget.hpp"
#include "visualization/QtWidgets/VXFTransformFilterWidget.hpp"
#include "visualization/QtWidgets/VXVisualizationWidget.hpp"
#include "visualization/VXBox.hpp"
#include "visualization/VXDataSource.hpp"
#include "visualization/VXPipeline.hpp"
#include "visualization/VXRepresentation.hpp"
#include "visualization/VXRepresentationCallbacks.hpp"
#include "visualization/VXUpdateHistogramCallback.hpp"
#include "visualization/VXUserPrompt.hpp"

#include <KXComponents/KXIconPushButton.hpp>
#include <KXComponents/KXPreferences.hpp>
#include <KXComponents/KXStyle.hpp>
#include <KXComponents/QElidedLabel.hpp>
#include <KXComponents/QtKXSettings.hpp>

#include <QtCore/QCoreApplication>
#include <QtCore/QUrl>
#include <QtGui/QClipboard>
#include <QtGui/QDesktopServices>
#include <QtGui/QGuiApplication>
#include <QtWidgets/QFrame>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollArea>

#include <vtkAlgorithm.h>
#include <vtkAlgorithmOutput.h>
#include <vtkCallbackCommand.h>
#include <vtkCommand.h>
#include <vtkDataSet.h>
#include <vtkMatrix4x4.h>
#include <vtkNew.h>
#include <vtkGridAxesActor3D.h>
#include <vtkProp3D.h>
#include <vtkProperty.h>
#include <vtkRenderWindow.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRendererCollection.h>
#include <vtkRenderer.h>
#include <vtkTextProperty.h>
#include <vtkTransform.h>

#include <algorithm>
#include <cmath>

namespace
{
double clamp01(double value)
{
  return std::clamp(value, 0.0, 1.0);
}

// grid colour and opacity go to lines and texts alike; hidden labels become transparent text
void applyGridAppearance(vtkGridAxesActor3D* actor, const QColor& color, double opacity,
                         bool labels)
{
  actor->GetProperty()->SetColor(color.redF(), color.greenF(), color.blueF());
  actor->GetProperty()->SetOpacity(opacity);
  for (int axis = 0; axis < 3; axis++)
  {
    for (vtkTextProperty* text :
         { actor->GetLabelTextProperty(axis), actor->GetTitleTextProperty(axis) })
    {
      if (text == nullptr)
        continue;
      text->SetColor(color.redF(), color.greenF(), color.blueF());
      text->SetOpacity(labels ? opacity : 0.0);
    }
  }
  actor->SetGenerateTicks(labels);
}
} // namespace

VXAbstractViewWidget* VXRepresentationPimpl::view() const
{
  return m_View;
}

QFrame* VXRepresentationPimpl::settingsTitleFrame() const
{
  return m_SettingsTitleFrame;
}

VXRepresentationPimpl::VXRepresentationPimpl(VXAbstractViewWidget* view, VXRepresentation* owner)
  : QObject(nullptr)
  , m_View(view)
  , m_Owner(owner)
{
  m_SettingsScrollArea = new QScrollArea();
  m_SettingsScrollArea->setWidgetResizable(true);
  m_SettingsTitleFrame = new QFrame();
  m_HelpUrl = QCoreApplication::applicationDirPath() + "/Help" +
              "/html/Visualization/ApplyingRepresentations.html";
  if (view != nullptr)
    m_SplitId = view->getSplitId();
  if (view != nullptr && owner != nullptr)
  {
    // a closed view takes its implementation out of the item
    connect(view, &VXAbstractViewWidget::closingView, owner,
            [owner, view]() { owner->removeModuleInstance(view); });
  }

  m_PressCallback = vtkSmartPointer<vtkCallbackCommand>::New();
  m_PressCallback->SetClientData(this);
  m_PressCallback->SetCallback(&VXRepresentationPimpl::OnInteractionEvent);
  m_EndInteractionCallback = vtkSmartPointer<vtkCallbackCommand>::New();
  m_EndInteractionCallback->SetClientData(this);
  m_EndInteractionCallback->SetCallback(&VXRepresentationPimpl::OnInteractionEvent);
  if (VXVisualizationWidget* widget = visualizationWidget())
  {
    m_Interactor = widget->getRenderWindowInteractor();
    if (m_Interactor != nullptr)
    {
      // passive: heard even while a widget of the view holds the interactor's focus
      m_PressCallback->PassiveObserverOn();
      m_EndInteractionCallback->PassiveObserverOn();
      m_PressObserverTag =
        m_Interactor->AddObserver(vtkCommand::LeftButtonPressEvent, m_PressCallback);
      m_EndInteractionObserverTag =
        m_Interactor->AddObserver(vtkCommand::EndInteractionEvent, m_EndInteractionCallback);
    }
  }
  VXRepresentationPimpl::loadDefaultSettings();
}

VXRepresentationPimpl::~VXRepresentationPimpl()
{
  releaseTransformWidget();
  if (m_SettingsWidget != nullptr)
  {
    m_SettingsWidget->hide();
    m_SettingsWidget->deleteLater();
  }
  else
  {
    // without a page the two parts are not parented yet
    if (m_SettingsScrollArea != nullptr)
      m_SettingsScrollArea->deleteLater();
    if (m_SettingsTitleFrame != nullptr)
      m_SettingsTitleFrame->deleteLater();
  }
  if (m_Interactor != nullptr)
  {
    m_Interactor->RemoveObserver(m_PressObserverTag);
    m_Interactor->RemoveObserver(m_EndInteractionObserverTag);
  }
}

void VXRepresentationPimpl::OnInteractionEvent(vtkObject* caller, unsigned long eventId,
                                               void* clientData, void*)
{
  auto* self = static_cast<VXRepresentationPimpl*>(clientData);
  if (eventId == vtkCommand::LeftButtonPressEvent)
  {
    auto* interactor = vtkRenderWindowInteractor::SafeDownCast(caller);
    const bool hasRenderer =
      interactor != nullptr && interactor->GetRenderWindow() != nullptr &&
      interactor->GetRenderWindow()->GetRenderers()->GetFirstRenderer() != nullptr;
    if (hasRenderer && self->m_UseDecimationOnInteraction && !KXPreferences::getDisableDecimation())
      self->useDecimatedGeometry();
  }
  else if (eventId == vtkCommand::EndInteractionEvent)
  {
    self->useFullGeometry();
  }
}

VXVisualizationWidget* VXRepresentationPimpl::visualizationWidget() const
{
  return m_View != nullptr ? m_View->getVisualizationWidget() : nullptr;
}

vtkRenderer* VXRepresentationPimpl::renderer() const
{
  VXVisualizationWidget* widget = visualizationWidget();
  return widget != nullptr ? widget->getRenderer() : nullptr;
}

void VXRepresentationPimpl::requestRender()
{
  if (VXVisualizationWidget* widget = visualizationWidget())
    widget->render();
}

QString VXRepresentationPimpl::displayName() const
{
  return m_Owner != nullptr ? m_Owner->humanTypeName() : QString();
}

double VXRepresentationPimpl::gridOpacity() const
{
  return clamp01(m_GridOpacity);
}

std::vector<double> VXRepresentationPimpl::gridCustomLabels(int axis) const
{
  return axis >= 0 && axis < 3 ? m_GridCustomLabels[axis] : std::vector<double>{};
}

void VXRepresentationPimpl::BeginSettingsGroup(QtKXSettings& settings, const QString& typeName)
{
  settings.beginGroup("VisualizationSettings");
  settings.beginGroup("RepresentationSettings");
  settings.beginGroup(typeName);
}

// ---------------------------------------------------------------------------
// State

void VXRepresentationPimpl::write(nlohmann::json& output) const
{
  output["detach_color_settings"] = m_DetachColorSettings;
  output["data_grid_visible"] = m_DataGridVisible;
  output["global_grid_axes_spacingx"] = m_GridSpacing[0];
  output["global_grid_axes_spacingy"] = m_GridSpacing[1];
  output["global_grid_axes_spacingz"] = m_GridSpacing[2];
  output["global_grid_axes_show_grid_lines"] = m_GridLines;
  output["global_grid_axes_color"] = { m_GridColor.redF(), m_GridColor.greenF(),
                                       m_GridColor.blueF() };
  output["global_grid_axes_opacity"] = gridOpacity();
  output["global_grid_axes_show_labels"] = m_GridLabels;
  output["global_grid_axes_title_x"] = m_GridTitles[0].toStdString();
  output["global_grid_axes_title_y"] = m_GridTitles[1].toStdString();
  output["global_grid_axes_title_z"] = m_GridTitles[2].toStdString();
  output["rep_split_id"] = m_SplitId;
  output["rep_linked"] = m_Linked;
  output["representation_visible"] = isVisible();
  output["link_physical_units"] = m_LinkPhysicalUnits;
  output["use_decimation_during_interactions"] = m_UseDecimationOnInteraction;
  output["show_box_tool"] = m_ShowBoxTool;
  const char* axes[3] = { "x", "y", "z" };
  for (int i = 0; i < 3; i++)
  {
    output[std::string("transform_box_translate_") + axes[i]] = m_Translation[i];
    output[std::string("transform_box_rotate_") + axes[i]] = m_Rotation[i];
    output[std::string("transform_box_scale_") + axes[i]] = m_Scale[i];
  }
}

namespace
{
bool readTriple(const nlohmann::json& input, const std::string& prefix,
                std::array<double, 3>& target)
{
  const std::string keys[3] = { prefix + "x", prefix + "y", prefix + "z" };
  if (!input.contains(keys[0]) || !input.contains(keys[1]) || !input.contains(keys[2]))
    return false;
  std::array<double, 3> values;
  for (int i = 0; i < 3; i++)
    values[i] = input.at(keys[i]).get<double>();
  target = values;
  return true;
}
} // namespace

void VXRepresentationPimpl::read(const nlohmann::json& input)
{
  if (input.contains("detach_color_settings"))
    m_DetachColorSettings = input.at("detach_color_settings").get<bool>();
  if (input.contains("data_grid_visible"))
    m_DataGridVisible = input.at("data_grid_visible").get<bool>();
  readTriple(input, "global_grid_axes_spacing", m_GridSpacing);
  if (input.contains("global_grid_axes_show_grid_lines"))
    m_GridLines = input.at("global_grid_axes_show_grid_lines").get<bool>();
  if (input.contains("global_grid_axes_color") && input.at("global_grid_axes_color").is_array() &&
      input.at("global_grid_axes_color").size() == 3)
  {
    const auto& rgb = input.at("global_grid_axes_color");
    m_GridColor = QColor::fromRgbF(static_cast<float>(clamp01(rgb[0].get<double>())),
                                   static_cast<float>(clamp01(rgb[1].get<double>())),
                                   static_cast<float>(clamp01(rgb[2].get<double>())), 1.0f);
  }
  if (input.contains("global_grid_axes_opacity"))
    m_GridOpacity = clamp01(input.at("global_grid_axes_opacity").get<double>());
  if (input.contains("global_grid_axes_show_labels"))
    m_GridLabels = input.at("global_grid_axes_show_labels").get<bool>();
  const char* titleKeys[3] = { "global_grid_axes_title_x", "global_grid_axes_title_y",
                               "global_grid_axes_title_z" };
  for (int i = 0; i < 3; i++)
  {
    if (input.contains(titleKeys[i]))
      m_GridTitles[i] = QString::fromStdString(input.at(titleKeys[i]).get<std::string>());
  }
  // there is no grid options dialog open in this module, so the fields go straight to the actor
  if (m_GridAxes != nullptr)
    setCustomGridAxesOptions();

  if (input.contains("rep_split_id"))
    m_SplitId = KXVtkModule::utils::StateInt(input.at("rep_split_id"));
  if (input.contains("rep_linked"))
    m_Linked = input.at("rep_linked").get<bool>();
  if (input.contains("representation_visible"))
    setVisibility(input.at("representation_visible").get<bool>());
  if (input.contains("link_physical_units"))
    m_LinkPhysicalUnits = input.at("link_physical_units").get<bool>();
  if (input.contains("use_decimation_during_interactions"))
    m_UseDecimationOnInteraction = input.at("use_decimation_during_interactions").get<bool>();
  if (input.contains("show_box_tool"))
  {
    m_ShowBoxTool = input.at("show_box_tool").get<bool>();
    if (m_TransformWidget != nullptr)
      m_TransformWidget->setShowBoxTool(m_ShowBoxTool);
  }
  readTriple(input, "transform_box_translate_", m_Translation);
  readTriple(input, "transform_box_rotate_", m_Rotation);
  readTriple(input, "transform_box_scale_", m_Scale);
}

void VXRepresentationPimpl::copyFrom(VXRepresentationPimpl* other)
{
  if (other == nullptr || other == this)
    return;
  m_DetachColorSettings = other->m_DetachColorSettings;
  m_DataGridVisible = other->m_DataGridVisible;
  m_Visible = other->m_Visible;
  m_ShowBoxTool = other->m_ShowBoxTool;
  m_Translation = other->m_Translation;
  m_Rotation = other->m_Rotation;
  m_Scale = other->m_Scale;
  m_Linked = other->m_Linked;
  m_GridSpacing = other->m_GridSpacing;
  m_GridLines = other->m_GridLines;
  m_GridColor = other->m_GridColor;
  m_GridOpacity = other->m_GridOpacity;
  m_GridLabels = other->m_GridLabels;
  m_GridTitles = other->m_GridTitles;
  m_LinkPhysicalUnits = other->m_LinkPhysicalUnits;
  m_DecimationDivisions = other->m_DecimationDivisions;
  m_UseInputPoints = other->m_UseInputPoints;
  m_UseFeatureEdges = other->m_UseFeatureEdges;
  m_UseFeaturePoints = other->m_UseFeaturePoints;
  m_UseInternalTriangles = other->m_UseInternalTriangles;
  m_UseDecimationOnInteraction = other->m_UseDecimationOnInteraction;
}

// ---------------------------------------------------------------------------
// Default settings

void VXRepresentationPimpl::loadDefaultSettings()
{
  if (m_Owner == nullptr)
    return;
  QtKXSettings settings;
  BeginSettingsGroup(settings, m_Owner->typeName());
  loadBaseDefaults(settings);
}

void VXRepresentationPimpl::loadBaseDefaults(QtKXSettings& settings)
{
  if (settings.contains("detach_color_settings"))
    m_DetachColorSettings = settings.value("detach_color_settings", false).toBool();
  if (settings.contains("data_grid_visible"))
    m_DataGridVisible = settings.value("data_grid_visible", false).toBool();
  if (settings.contains("global_grid_axes_spacingx") &&
      settings.contains("global_grid_axes_spacingy") &&
      settings.contains("global_grid_axes_spacingz"))
  {
    m_GridSpacing = { settings.value("global_grid_axes_spacingx", 0.0).toDouble(),
                      settings.value("global_grid_axes_spacingy", 0.0).toDouble(),
                      settings.value("global_grid_axes_spacingz", 0.0).toDouble() };
  }
  if (settings.contains("global_grid_axes_show_grid_lines"))
    m_GridLines = settings.value("global_grid_axes_show_grid_lines", false).toBool();
  if (settings.contains("global_grid_axes_color"))
  {
    const QColor color(settings.value("global_grid_axes_color").toString());
    if (color.isValid())
      m_GridColor = color;
  }
  if (settings.contains("global_grid_axes_opacity"))
    m_GridOpacity = clamp01(settings.value("global_grid_axes_opacity", 0.0).toDouble());
  if (settings.contains("global_grid_axes_show_labels"))
    m_GridLabels = settings.value("global_grid_axes_show_labels", true).toBool();
  const char* titleKeys[3] = { "global_grid_axes_title_x", "global_grid_axes_title_y",
                               "global_grid_axes_title_z" };
  for (int i = 0; i < 3; i++)
  {
    if (settings.contains(titleKeys[i]))
      m_GridTitles[i] = settings.value(titleKeys[i], QString()).toString();
  }
  if (settings.contains("link_physical_units"))
    m_LinkPhysicalUnits = settings.value("link_physical_units", false).toBool();
  if (settings.contains("use_decimation_during_interactions"))
    m_UseDecimationOnInteraction =
      settings.value("use_decimation_during_interactions", false).toBool();
  if (settings.contains("show_box_tool"))
    m_ShowBoxTool = settings.value("show_box_tool", true).toBool();
  const char* axes[3] = { "x", "y", "z" };
  const std::pair<QString, std::array<double, 3>*> triples[3] = {
    { "transform_box_translate_", &m_Translation },
    { "transform_box_rotate_", &m_Rotation },
    { "transform_box_scale_", &m_Scale }
  };
  for (const auto& [prefix, target] : triples)
  {
    if (settings.contains(prefix + axes[0]) && settings.contains(prefix + axes[1]) &&
        settings.contains(prefix + axes[2]))
    {
      for (int i = 0; i < 3; i++)
        (*target)[i] = settings.value(prefix + axes[i]).toDouble();
    }
  }
}

void VXRepresentationPimpl::saveBaseDefaults(QtKXSettings& settings) const
{
  settings.setValue("detach_color_settings", m_DetachColorSettings);
  settings.setValue("data_grid_visible", m_DataGridVisible);
  settings.setValue("global_grid_axes_spacingx", m_GridSpacing[0]);
  settings.setValue("global_grid_axes_spacingy", m_GridSpacing[1]);
  settings.setValue("global_grid_axes_spacingz", m_GridSpacing[2]);
  settings.setValue("global_grid_axes_show_grid_lines", m_GridLines);
  settings.setValue("global_grid_axes_color", m_GridColor.name());
  settings.setValue("global_grid_axes_opacity", gridOpacity());
  settings.setValue("global_grid_axes_show_labels", m_GridLabels);
  settings.setValue("global_grid_axes_title_x", m_GridTitles[0]);
  settings.setValue("global_grid_axes_title_y", m_GridTitles[1]);
  settings.setValue("global_grid_axes_title_z", m_GridTitles[2]);
  settings.setValue("link_physical_units", m_LinkPhysicalUnits);
  settings.setValue("use_decimation_during_interactions", m_UseDecimationOnInteraction);
  settings.setValue("show_box_tool", m_ShowBoxTool);
  const char* axes[3] = { "x", "y", "z" };
  for (int i = 0; i < 3; i++)
  {
    settings.setValue(QString("transform_box_translate_") + axes[i], m_Translation[i]);
    settings.setValue(QString("transform_box_rotate_") + axes[i], m_Rotation[i]);
    settings.setValue(QString("transform_box_scale_") + axes[i], m_Scale[i]);
  }
}

bool VXRepresentationPimpl::askSaveDefaults() const
{
  VXUserPrompt::Question question;
  question.icon = QMessageBox::Question;
  question.title = QString("Save Default %1 Settings").arg(displayName());
  question.text =
    QString(
      "Do you want to save the current setting values as the default values for all %1 types? "
      "(Data specific settings will not be saved)")
      .arg(displayName());
  question.buttons = QMessageBox::Yes | QMessageBox::No;
  question.defaultButton = QMessageBox::Yes;
  return VXUserPrompt::ask(m_SettingsWidget, question) == QMessageBox::Yes;
}

void VXRepresentationPimpl::saveDefaultSettings()
{
  if (m_Owner == nullptr || !askSaveDefaults())
    return;
  QtKXSettings settings;
  BeginSettingsGroup(settings, m_Owner->typeName());
  saveBaseDefaults(settings);
  settings.sync();
}

// ---------------------------------------------------------------------------
// Page, help, clipboard

QWidget* VXRepresentationPimpl::settingsWidget()
{
  if (m_SettingsWidget == nullptr)
  {
    m_SettingsWidget =
      KXVtkModule::utils::CreateSettingsWidget(m_SettingsTitleFrame, m_SettingsScrollArea);
    initializeSettingsTitle();
    buildSettingsPage();
    updateToolTips();
  }
  return m_SettingsWidget;
}

void VXRepresentationPimpl::initializeSettingsTitle()
{
  m_SettingsTitleFrame->setObjectName("settingsWidgetTitleFrame");
  auto* layout = new QHBoxLayout(m_SettingsTitleFrame);
  layout->setSpacing(2);
  layout->setContentsMargins(2, 2, 2, 2);
  m_TitleLabel = new QElidedLabel(m_SettingsTitleFrame);
  m_TitleLabel->setObjectName("visSettingsTitleNameLabel");
  const QString path = m_Owner != nullptr ? m_Owner->pathName() : QString();
  m_TitleLabel->setText(path + " : Render View Settings");
  if (m_Owner != nullptr)
  {
    connect(m_Owner, &VXCoreObject::pathChanged, m_TitleLabel.data(),
            [label = m_TitleLabel](const QString& pathName)
            {
              if (label != nullptr)
                label->setText(pathName + " : Render View Settings");
            });
  }
  m_GridAxesButton = new KXIconPushButton("GridAxes", true, m_SettingsTitleFrame);
  m_GridAxesButton->setObjectName("m_GridAxesButton");
  m_GridAxesButton->setChecked(m_DataGridVisible);
  connect(m_GridAxesButton, &QPushButton::toggled, this,
          &VXRepresentationPimpl::setDataGridVisibility);
  m_GridAxesEditButton = new KXIconPushButton("Edit", false, m_SettingsTitleFrame);
  m_GridAxesEditButton->setObjectName("m_GridAxesEditButton");
  connect(m_GridAxesEditButton, &QPushButton::clicked, this,
          &VXRepresentationPimpl::showEditGridAxesDialog);
  m_SaveDefaultsButton = new KXIconPushButton("Save", false, m_SettingsTitleFrame);
  m_SaveDefaultsButton->setObjectName("m_SaveDefaultsButton");
  m_SaveDefaultsButton->setToolTip(
    QString("Save the current settings as the default settings for %1 types").arg(displayName()));
  connect(m_SaveDefaultsButton, &QPushButton::clicked, this, [this]() { saveDefaultSettings(); });
  m_HelpButton = new KXIconPushButton("Help", false, m_SettingsTitleFrame);
  m_HelpButton->setObjectName("m_HelpButton");
  m_HelpButton->setToolTip(
    QString("Open the user manual help documentation for %1 types").arg(displayName()));
  connect(m_HelpButton, &QPushButton::clicked, this, [this]() { openHelp(); });
  m_VisibilityButton = new KXIconPushButton("Eye", true, m_SettingsTitleFrame);
  m_VisibilityButton->setObjectName("m_VisibilityButton");
  m_VisibilityButton->setChecked(isVisible());
  connect(m_VisibilityButton, &QPushButton::toggled, this,
          [this](bool checked) { setVisibility(checked); });
  layout->addWidget(m_TitleLabel, 1);
  layout->addWidget(m_GridAxesButton);
  layout->addWidget(m_GridAxesEditButton);
  layout->addWidget(m_SaveDefaultsButton);
  layout->addWidget(m_HelpButton);
  layout->addWidget(m_VisibilityButton);
}

void VXRepresentationPimpl::openHelp()
{
  QDesktopServices::openUrl(QUrl::fromUserInput(m_HelpUrl));
}

QString VXRepresentationPimpl::splitViewName() const
{
  const QString path = m_Owner != nullptr ? m_Owner->pathName() : QString();
  const QString delimiter = m_Owner != nullptr ? m_Owner->getPathDelimeter() : QString(" > ");
  return path + delimiter + "Split View " + QString::number(m_SplitId);
}

void VXRepresentationPimpl::writeToClipboard() const
{
  nlohmann::json output;
  write(output);
  if (QClipboard* clipboard = QGuiApplication::clipboard())
    clipboard->setText(QString::fromStdString(output.dump()));
}

nlohmann::json VXRepresentationPimpl::readClipboard()
{
  QClipboard* clipboard = QGuiApplication::clipboard();
  if (clipboard == nullptr)
    return nullptr;
  nlohmann::json parsed = nlohmann::json::parse(clipboard->text().toStdString(), nullptr, false);
  if (parsed.is_discarded() || !parsed.is_object())
    return nullptr;
  return parsed;
}

// ---------------------------------------------------------------------------
// Grid axes

void VXRepresentationPimpl::setupGridAxes()
{
  vtkRenderer* ren = renderer();
  if (m_GridAxes == nullptr)
  {
    m_GridAxes = vtkSmartPointer<vtkGridAxesActor3D>::New();
    m_GridAxes->SetGenerateEdges(true);
    m_GridAxes->SetGenerateTicks(true);
    m_GridAxes->SetLabelDisplayOffset(0, -10);
  }
  double b[6];
  bounds(b);
  m_GridAxes->SetGridBounds(b);
  setCustomGridAxesOptions();
  if (ren == nullptr)
    return;
  if (m_DataGridVisible && isVisible())
  {
    m_GridAxes->SetVisibility(true);
    if (!ren->HasViewProp(m_GridAxes))
      ren->AddViewProp(m_GridAxes);
  }
  else
  {
    m_GridAxes->SetVisibility(false);
    ren->RemoveViewProp(m_GridAxes);
  }
}

void VXRepresentationPimpl::setDataGridVisibility(bool visible)
{
  m_DataGridVisible = visible;
  setupGridAxes();
  updateGridAxesBounds();
  requestRender();
}

void VXRepresentationPimpl::updateGridAxesBounds()
{
  if (m_GridAxes == nullptr)
    return;
  vtkRenderer* ren = renderer();
  if (ren != nullptr)
    ren->RemoveViewProp(m_GridAxes);
  double b[6];
  bounds(b);
  m_GridAxes->SetGridBounds(b);
  setCustomGridAxesOptions();
  if (ren != nullptr && m_DataGridVisible && isVisible())
    ren->AddViewProp(m_GridAxes);
}

void VXRepresentationPimpl::setGridAxesOptions(const std::array<double, 3>& spacing, bool gridLines,
                                               const QColor& color, double opacity, bool labels,
                                               const std::array<QString, 3>& titles)
{
  m_GridSpacing = spacing;
  m_GridLines = gridLines;
  m_GridColor = color;
  m_GridOpacity = clamp01(opacity);
  m_GridLabels = labels;
  m_GridTitles = titles;
  setCustomGridAxesOptions();
}

void VXRepresentationPimpl::setCustomGridAxesOptions()
{
  if (m_GridAxes == nullptr)
    return;
  const double* b = m_GridAxes->GetGridBounds();
  for (int axis = 0; axis < 3; axis++)
  {
    const double spacing = m_GridSpacing[axis];
    m_GridCustomLabels[axis].clear();
    m_GridAxes->SetUseCustomLabels(axis, spacing != 0.0);
    if (spacing == 0.0)
      continue;
    const double minimum = b[2 * axis];
    const double maximum = b[2 * axis + 1];
    const double span = (maximum - minimum) / spacing;
    const vtkIdType count = span >= 0.0 ? static_cast<vtkIdType>(std::floor(span)) + 1 : 0;
    m_GridAxes->SetNumberOfLabels(axis, count);
    // the labels accumulate the spacing step by step, as a user counting along the axis would
    double value = minimum;
    for (vtkIdType i = 0; i < count; i++)
    {
      m_GridAxes->SetLabel(axis, i, value);
      m_GridCustomLabels[axis].push_back(value);
      value += spacing;
    }
  }
  m_GridAxes->SetGenerateGrid(m_GridLines);
  applyGridAppearance(m_GridAxes, m_GridColor, gridOpacity(), m_GridLabels);
  for (int axis = 0; axis < 3; axis++)
    m_GridAxes->SetTitle(axis, m_GridTitles[axis].toStdString());
  requestRender();
}

void VXRepresentationPimpl::showEditGridAxesDialog() {}

void VXRepresentationPimpl::show()
{
  setVisibility(true);
}

void VXRepresentationPimpl::hide()
{
  setVisibility(false);
}

// ---------------------------------------------------------------------------
// Transform and decimation values

void VXRepresentationPimpl::setTransform(const std::array<double, 3>& translation,
                                         const std::array<double, 3>& rotation,
                                         const std::array<double, 3>& scale)
{
  m_Translation = translation;
  m_Rotation = rotation;
  m_Scale = scale;
  applyTransform();
}

void VXRepresentationPimpl::setTranslation(const std::array<double, 3>& translation)
{
  setTransform(translation, m_Rotation, m_Scale);
}

void VXRepresentationPimpl::setRotation(const std::array<double, 3>& rotation)
{
  setTransform(m_Translation, rotation, m_Scale);
}

void VXRepresentationPimpl::setScale(const std::array<double, 3>& scale)
{
  setTransform(m_Translation, m_Rotation, scale);
}

void VXRepresentationPimpl::setNumberOfDimensions(std::array<int, 3> dimensions)
{
  m_DecimationDivisions = dimensions;
  m_DecimationOutOfDate = true;
}

void VXRepresentationPimpl::setUseInputPoints(bool use)
{
  m_UseInputPoints = use;
  m_DecimationOutOfDate = true;
}

void VXRepresentationPimpl::setUseFeatureEdges(bool use)
{
  m_UseFeatureEdges = use;
  m_DecimationOutOfDate = true;
}

void VXRepresentationPimpl::setUseFeaturePoints(bool use)
{
  m_UseFeaturePoints = use;
  m_DecimationOutOfDate = true;
}

void VXRepresentationPimpl::setUseInternalTriangles(bool use)
{
  m_UseInternalTriangles = use;
  m_DecimationOutOfDate = true;
}

void VXRepresentationPimpl::setUseDecimationOnInteraction(bool use)
{
  m_UseDecimationOnInteraction = use;
  if (use)
    decimateGeometry();
}

void VXRepresentationPimpl::setPropVisibility(vtkProp* prop, vtkProp* highlight, bool visible,
                                              bool initialized)
{
  m_Visible = visible;
  if (VXVisualizationWidget* widget = visualizationWidget(); widget != nullptr && initialized)
  {
    vtkRenderer* ren = widget->getRenderer();
    if (visible && !ren->HasViewProp(prop))
      widget->addActor(prop);
    else if (!visible && ren->HasViewProp(prop))
      widget->removeActor(prop);
    if (!visible && highlight != nullptr)
      ren->RemoveViewProp(highlight);
  }
  if (m_GridAxes != nullptr)
    setupGridAxes();
  if (m_VisibilityButton != nullptr)
  {
    const QSignalBlocker blocker(m_VisibilityButton);
    m_VisibilityButton->setChecked(visible);
  }
  requestRender();
}

void VXRepresentationPimpl::setPropHighlighted(vtkProp* highlight, bool highlighted)
{
  vtkRenderer* ren = renderer();
  if (!m_Visible || ren == nullptr || highlight == nullptr)
    return;
  ren->RemoveViewProp(highlight);
  if (highlighted)
    ren->AddViewProp(highlight);
  requestRender();
}

void VXRepresentationPimpl::applyTransformTo(std::initializer_list<vtkProp3D*> props)
{
  const vtkSmartPointer<vtkTransform> transform = localTransform();
  for (vtkProp3D* prop : props)
  {
    if (prop == nullptr)
      continue;
    auto own = vtkSmartPointer<vtkTransform>::New();
    own->DeepCopy(transform);
    prop->SetUserTransform(own);
  }
  updateGridAxesBounds();
  requestRender();
}

std::array<double, 6> VXRepresentationPimpl::inputBounds()
{
  std::array<double, 6> bounds{ 0.0, 0.0, 0.0, 0.0, 0.0, 0.0 };
  vtkAlgorithmOutput* port = inputPort();
  vtkAlgorithm* producer = port != nullptr ? port->GetProducer() : nullptr;
  auto* data = producer != nullptr
                 ? vtkDataSet::SafeDownCast(producer->GetOutputDataObject(port->GetIndex()))
                 : nullptr;
  if (data != nullptr && data->GetNumberOfPoints() > 0)
    data->GetBounds(bounds.data());
  return bounds;
}

vtkSmartPointer<vtkTransform> VXRepresentationPimpl::localTransform()
{
  const std::array<double, 6> bounds = inputBounds();
  auto transform = vtkSmartPointer<vtkTransform>::New();
  if (m_TransformWidget != nullptr)
  {
    m_TransformWidget->followRepresentation(bounds);
    if (VXBox* box = m_TransformWidget->box())
    {
      transform->DeepCopy(box->getTransform());
      return transform;
    }
  }
  const std::array<double, 3> centre{ 0.5 * (bounds[0] + bounds[1]), 0.5 * (bounds[2] + bounds[3]),
                                      0.5 * (bounds[4] + bounds[5]) };
  VXBox::ComposeTransform(transform, centre, m_Translation, m_Rotation, m_Scale);
  return transform;
}

VXFTransformFilterWidget* VXRepresentationPimpl::transformWidget() const
{
  return m_TransformWidget;
}

VXFTransformFilterWidget* VXRepresentationPimpl::ensureTransformWidget()
{
  if (m_TransformWidget == nullptr)
  {
    m_TransformWidget = new VXFTransformFilterWidget(this);
    if (m_ShowBoxTool)
      m_TransformWidget->setShowBoxTool(true);
  }
  return m_TransformWidget;
}

void VXRepresentationPimpl::releaseTransformWidget()
{
  if (m_TransformWidget == nullptr)
    return;
  // the box tool goes with the widget; a widget inside a page goes with the page otherwise
  m_TransformWidget->setShowBoxTool(false);
  m_TransformWidget->hide();
  m_TransformWidget->deleteLater();
  m_TransformWidget = nullptr;
}

void VXRepresentationPimpl::setShowBoxTool(bool show)
{
  m_ShowBoxTool = show;
  if (m_TransformWidget != nullptr)
    m_TransformWidget->setShowBoxTool(show);
  Q_EMIT showTransformBoxChanged(show);
}

void VXRepresentationPimpl::createApplyTransformationGeometryFilter()
{
  VXPipeline* pipeline = m_Owner != nullptr ? m_Owner->pipeline() : nullptr;
  if (pipeline == nullptr)
    return;
  const QString name = m_Owner->pathName();
  VXDataSource* source = m_Owner->parentDataSource();
  const kx::core::DataPath geometryPath =
    source != nullptr ? source->importedDataPath() : kx::core::DataPath();
  if (geometryPath.empty())
  {
    VXUserPrompt::Question question;
    question.icon = QMessageBox::Warning;
    question.title = k_NoTransformGeometryTitle;
    question.text = k_NoTransformGeometryText.arg(name);
    VXUserPrompt::ask(nullptr, question);
    return;
  }
  const vtkSmartPointer<vtkTransform> transform = localTransform();
  if (transform->GetMatrix()->IsIdentity())
  {
    Q_EMIT pipeline->sendOutputMessage(k_IdentityTransformText.arg(name));
    return;
  }
  Q_EMIT pipeline->createApplyTransformationGeometryFilter(
    geometryPath, VXFTransformFilterWidget::MatrixRows(transform->GetMatrix()));
}

QPushButton* VXRepresentationPimpl::addPageButton(QBoxLayout* row, const char* icon,
                                                  const QString& text, const QString& objectName)
{
  auto* button = new QPushButton(row->parentWidget());
  if (icon != nullptr)
    button->setIcon(KXStyle::generateThemeIconFromName(icon));
  button->setText(text);
  button->setObjectName(objectName);
  row->addWidget(button);
  return button;
}

void VXRepresentationPimpl::observeDataUpdates(vtkAlgorithm* algorithm)
{
  vtkNew<VXMemberCallback<VXRepresentationPimpl>> decimateCallback;
  decimateCallback->setTarget(this, &VXRepresentationPimpl::decimateGeometry);
  algorithm->AddObserver(vtkCommand::EndEvent, decimateCallback);
  vtkNew<VXUpdateHistogramCallback> histogramCallback;
  histogramCallback->setRepresentationPimpl(this);
  algorithm->AddObserver(vtkCommand::EndEvent, histogramCallback);
}
