#include "visualization/VXFilter.hpp"

#include "utils/KXVtkModuleUtils.hpp"
#include "visualization/QtWidgets/VXAbstractViewWidget.hpp"
#include "visualization/QtWidgets/VXVisualizationWidget.hpp"
#include "visualization/VXPipeline.hpp"
#include "visualization/VXUserPrompt.hpp"

#include <KXComponents/KXIconPushButton.hpp>
#include <KXComponents/KXStyle.hpp>
#include <KXComponents/QtKXSettings.hpp>

#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtWidgets/QComboBox>

#include <vtkAlgorithm.h>
#include <vtkAlgorithmOutput.h>
#include <vtkDataSet.h>
#include <vtkRenderWindowInteractor.h>

VXFilter::VXFilter(QObject* parent)
  : VXCoreObject(parent)
  , m_HelpUrl(k_HelpPage)
{
}

VXFilter::~VXFilter() = default;

void VXFilter::write(nlohmann::json& output,
                     const QMap<VXAbstractViewWidget*, int>& viewIndices) const
{
  VXCoreObject::write(output, viewIndices);
  output["core_object_name"] = m_BaseName.toStdString();
  output["core_object_name_suffix"] = m_NameSuffixCounter;
  output["filter_rep_type_to_add"] = static_cast<int>(m_RepTypeToAdd);
  output["filter_should_add_rep"] = m_ShouldAddRep;
}

void VXFilter::read(const nlohmann::json& input, const QMap<int, VXAbstractViewWidget*>& views)
{
  VXCoreObject::read(input, views);
  if (!input.is_object())
    return;
  if (auto it = input.find("core_object_name"); it != input.end() && it->is_string())
    m_BaseName = QString::fromStdString(it->get<std::string>());
  if (auto it = input.find("core_object_name_suffix"); it != input.end() && it->is_number_integer())
    setNameSuffixCounter(KXVtkModule::utils::StateInt(*it));
  if (auto it = input.find("filter_rep_type_to_add"); it != input.end() && it->is_number_integer())
  {
    const auto type = static_cast<VXRepresentation::Type>(KXVtkModule::utils::StateInt(*it));
    if (VXRepresentation::k_RepresentationTypeToString.contains(type))
      m_RepTypeToAdd = type;
  }
  if (auto it = input.find("filter_should_add_rep"); it != input.end() && it->is_boolean())
    m_ShouldAddRep = it->get<bool>();
}

void VXFilter::addViewWidgetCopy(VXAbstractViewWidget* sourceViewWidget,
                                 VXAbstractViewWidget* splitViewWidget)
{
  // a filter has no per-view objects: the split view simply knows it, as visible as the source
  if (splitViewWidget == nullptr || m_ViewWidgets.contains(splitViewWidget))
    return;
  addViewWidget(splitViewWidget);
  m_ViewWidgets[splitViewWidget] = m_ViewWidgets.value(sourceViewWidget, true);
}

void VXFilter::copyActiveSettings() const
{
  nlohmann::json values = nlohmann::json::object();
  writeValues(values);
  QGuiApplication::clipboard()->setText(QString::fromStdString(values.dump(2)));
}

void VXFilter::pasteToActiveSettings()
{
  const nlohmann::json values = clipboardSettings();
  if (values.is_null())
    return;
  readValues(values);
  Q_EMIT requestRenderAll();
}

QIcon VXFilter::getIcon()
{
  return KXStyle::generateThemeIconFromName("Filter");
}

void VXFilter::setInputPort(vtkAlgorithmOutput* port)
{
  m_InputPort = port;
}

vtkAlgorithmOutput* VXFilter::inputPort() const
{
  return m_InputPort;
}

vtkDataSet* VXFilter::inputDataSet() const
{
  if (m_InputPort == nullptr || m_InputPort->GetProducer() == nullptr)
    return nullptr;
  vtkAlgorithm* producer = m_InputPort->GetProducer();
  producer->Update(m_InputPort->GetIndex());
  return vtkDataSet::SafeDownCast(producer->GetOutputDataObject(m_InputPort->GetIndex()));
}

std::array<double, 6> VXFilter::inputBounds() const
{
  std::array<double, 6> bounds{ 0.0, 1.0, 0.0, 1.0, 0.0, 1.0 };
  if (vtkDataSet* data = inputDataSet(); data != nullptr && data->GetNumberOfPoints() > 0)
    data->GetBounds(bounds.data());
  return bounds;
}

vtkRenderWindowInteractor* VXFilter::activeInteractor() const
{
  VXAbstractViewWidget* view = m_Pipeline != nullptr ? m_Pipeline->activeViewWidget() : nullptr;
  VXVisualizationWidget* widget = view != nullptr ? view->getVisualizationWidget() : nullptr;
  return widget != nullptr ? widget->interactor() : nullptr;
}

void VXFilter::setShouldAddRep(bool shouldAdd)
{
  m_ShouldAddRep = shouldAdd;
  if (m_RepTypeCombo != nullptr)
    m_RepTypeCombo->setEnabled(shouldAdd);
}

void VXFilter::setRepTypeToAdd(QString repTypeString)
{
  if (VXRepresentation::k_RepresentationStringToType.contains(repTypeString))
  {
    m_RepTypeToAdd = VXRepresentation::k_RepresentationStringToType.value(repTypeString);
    if (m_Pipeline != nullptr && !m_ShouldAddRep)
      Q_EMIT m_Pipeline->sendPopupMessage(k_RepresentationAlreadyAddedTitle,
                                          k_RepresentationAlreadyAddedText);
    return;
  }
  if (m_Pipeline != nullptr)
    Q_EMIT m_Pipeline->sendOutputMessage(k_UnknownRepresentationText.arg(
      repTypeString, VXRepresentation::k_RepresentationTypeToString.value(m_RepTypeToAdd)));
}

QComboBox* VXFilter::addRepresentationTypeCombo(QWidget* parent)
{
  m_RepTypeCombo = new QComboBox(parent);
  m_RepTypeCombo->setObjectName("m_RepTypeCombo");
  for (VXRepresentation::Type type : { VXRepresentation::Outline, VXRepresentation::Points,
                                       VXRepresentation::Wireframe, VXRepresentation::Surface })
    m_RepTypeCombo->addItem(VXRepresentation::k_RepresentationTypeToString.value(type));
  m_RepTypeCombo->setCurrentText(
    VXRepresentation::k_RepresentationTypeToString.value(m_RepTypeToAdd));
  m_RepTypeCombo->setToolTip(KXVtkModule::utils::HtmlToolTip(
    "The representation type to add for viewing the filtered results IF there are none already."));
  m_RepTypeCombo->setEnabled(m_ShouldAddRep);
  connect(m_RepTypeCombo, &QComboBox::currentTextChanged, this, &VXFilter::setRepTypeToAdd);
  return m_RepTypeCombo;
}

bool VXFilter::shouldSaveAsDefaultSettings()
{
  VXUserPrompt::Question question;
  question.icon = QMessageBox::Question;
  question.title = QString("Save Default %1 Settings").arg(humanTypeName());
  question.text = QString("Do you want to save the current setting values as the default values "
                          "for all %1 types? (Data specific settings will not be saved)")
                    .arg(humanTypeName());
  question.buttons = QMessageBox::Yes | QMessageBox::No;
  question.defaultButton = QMessageBox::No;
  return VXUserPrompt::ask(nullptr, question) == QMessageBox::Yes;
}

void VXFilter::beginSettingsGroup(QtKXSettings& settings)
{
  settings.beginGroup("VisualizationSettings");
  settings.beginGroup("FilterSettings");
  settings.beginGroup(typeName());
}

std::optional<std::array<double, 3>> VXFilter::ReadTriple(const nlohmann::json& input,
                                                          const std::string& prefix)
{
  std::array<double, 3> values{};
  const char* axes[3] = { "_x", "_y", "_z" };
  for (int axis = 0; axis < 3; ++axis)
  {
    const auto it = input.find(prefix + axes[axis]);
    if (it == input.end() || !it->is_number())
      return std::nullopt;
    values[axis] = it->get<double>();
  }
  return values;
}

void VXFilter::WriteTriple(nlohmann::json& output, const std::string& prefix,
                           const std::array<double, 3>& values)
{
  const char* axes[3] = { "_x", "_y", "_z" };
  for (int axis = 0; axis < 3; ++axis)
    output[prefix + axes[axis]] = values[axis];
}

nlohmann::json VXFilter::savedDefaults(const QStringList& flags, const QStringList& integers,
                                       const QStringList& triples)
{
  QtKXSettings settings;
  beginSettingsGroup(settings);
  nlohmann::json values = nlohmann::json::object();
  for (const QString& key : flags)
    if (settings.contains(key))
      values[key.toStdString()] = settings.value(key).toBool();
  for (const QString& key : integers)
    if (settings.contains(key))
      values[key.toStdString()] = settings.value(key).toInt();
  for (const QString& prefix : triples)
  {
    for (const char* axis : { "_x", "_y", "_z" })
    {
      const QString key = prefix + axis;
      if (settings.contains(key))
        values[key.toStdString()] = settings.value(key).toDouble();
    }
  }
  return values;
}

void VXFilter::saveDefaults(const nlohmann::json& values)
{
  QtKXSettings settings;
  beginSettingsGroup(settings);
  for (auto it = values.begin(); it != values.end(); ++it)
  {
    const QString key = QString::fromStdString(it.key());
    if (it->is_boolean())
      settings.setValue(key, it->get<bool>());
    else if (it->is_number_integer())
      settings.setValue(key, KXVtkModule::utils::StateInt(*it));
    else if (it->is_number())
      settings.setValue(key, it->get<double>());
  }
  settings.sync();
}

void VXFilter::addFilterPageTitle()
{
  auto* saveButton = new KXIconPushButton();
  saveButton->setIcon(KXStyle::generateThemeIconFromName("Save"));
  saveButton->setToolTip(KXVtkModule::utils::HtmlToolTip(
    QString("Save the current settings as the default settings for all %1 types")
      .arg(humanTypeName())));
  connect(saveButton, &QPushButton::clicked, this, [this]() { writeSettings(); });
  auto* helpButton = new KXIconPushButton();
  helpButton->setIcon(KXStyle::generateThemeIconFromName("Help"));
  connect(helpButton, &QPushButton::clicked, this, [this]() { openHelpLink(); });
  addSettingsWidgetTitle(saveButton, helpButton);
}

void VXFilter::updateDownstreamGridAxesBounds()
{
  for (VXRepresentation* representation : findChildren<VXRepresentation*>())
    representation->updateGridAxesBounds();
}

void VXFilter::addRepresentationAfterApply()
{
  if (m_Pipeline == nullptr || !m_ShouldAddRep)
    return;
  // one data view is added for the first result; more come from the tree's menu
  if (m_Pipeline->addRepresentation(this, m_RepTypeToAdd))
    setShouldAddRep(false);
}
