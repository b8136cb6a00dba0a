#include "visualization/VXRepresentation.hpp"

#include "visualization/QtWidgets/VXAbstractViewWidget.hpp"
#include "visualization/QtWidgets/VXDatasetInfoWidget.hpp"
#include "visualization/QtWidgets/VXVisualizationWidget.hpp"
#include "visualization/VXDataSource.hpp"
#include "visualization/VXPipeline.hpp"
#include "visualization/VXRepresentationPimpl.hpp"
#include "utils/KXVtkModuleUtils.hpp"

#include <map>

namespace
{
std::map<VXRepresentation::Type, VXRepresentation::Factory>& registry()
{
  static std::map<VXRepresentation::Type, VXRepresentation::Factory> factories;
  return factories;
}
} // namespace

const QMap<QString, VXRepresentation::Type> VXRepresentation::k_RepresentationStringToType = {
  { "None", None },           { "Outline", Outline },          { "Points", Points },
  { "Wireframe", Wireframe }, { "Surface", Surface },          { "Volume", Volume },
  { "Glyph", Glyph },         { "2D Image/Slice", ImageSlice }
};

const QMap<VXRepresentation::Type, QString> VXRepresentation::k_RepresentationTypeToString = {
  { None, "None" },           { Outline, "Outline" },          { Points, "Points" },
  { Wireframe, "Wireframe" }, { Surface, "Surface" },          { Volume, "Volume" },
  { Glyph, "Glyph" },         { ImageSlice, "2D Image/Slice" }
};

void VXRepresentation::RegisterType(Type type, Factory factory)
{
  registry()[type] = std::move(factory);
}

VXRepresentation* VXRepresentation::Create(Type type, VXPipeline* pipeline)
{
  auto iter = registry().find(type);
  return iter == registry().end() ? nullptr : iter->second(pipeline);
}

bool VXRepresentation::IsRegistered(Type type)
{
  return registry().count(type) > 0;
}

VXRepresentation::VXRepresentation(VXPipeline* pipeline, const QString& defaultName,
                                   QObject* parent)
  : VXCoreObject(parent)
  , m_DefaultName(defaultName)
{
  m_BaseName = defaultName;
  m_Pipeline = pipeline;
}

VXRepresentation::~VXRepresentation()
{
  // implementations hold a raw pointer back to this item: they go first
  m_ViewImplementations.clear();
}

void VXRepresentation::setParentSource(VXCoreObject* parent)
{
  m_ParentSource = parent;
  setParent(parent);
  // the page titles show the path, which has just changed
  for (const auto& implementation : std::as_const(m_ViewImplementations))
  {
    if (implementation != nullptr)
      implementation->updateToolTips();
  }
  updatePath();
}

VXDataSource* VXRepresentation::parentDataSource() const
{
  QObject* item = parent();
  while (item != nullptr)
  {
    if (auto* source = qobject_cast<VXDataSource*>(item))
      return source;
    item = item->parent();
  }
  return nullptr;
}

std::vector<VXRepresentationPimpl*> VXRepresentation::getDataViewSplits() const
{
  std::vector<VXRepresentationPimpl*> splits;
  for (const auto& implementation : m_ViewImplementations)
    splits.push_back(implementation.get());
  return splits;
}

VXRepresentationPimpl* VXRepresentation::implementation(VXAbstractViewWidget* view) const
{
  auto iter = m_ViewImplementations.constFind(view);
  return iter == m_ViewImplementations.constEnd() ? nullptr : iter.value().get();
}

VXRepresentationPimpl* VXRepresentation::activeImplementation() const
{
  if (m_Pipeline == nullptr)
    return nullptr;
  return implementation(m_Pipeline->activeViewWidget());
}

void VXRepresentation::connectViewSignals(VXAbstractViewWidget* view)
{
  if (view == nullptr)
    return;
  connect(view, &VXAbstractViewWidget::viewWidgetCreated, this,
          &VXRepresentation::addViewWidgetCopy, Qt::UniqueConnection);
  if (!m_ViewWidgets.contains(view))
    m_ViewWidgets.insert(view, true);
  // a view deleted without closing first leaves nothing behind either; its renderer goes with
  // it, so there is nothing to take out of it
  connect(view, &QObject::destroyed, this,
          [this, view]()
          {
            m_ViewWidgets.remove(view);
            m_ViewImplementations.remove(view);
          });
}

void VXRepresentation::initializeViewWidgetSplits(vtkAlgorithmOutput* port, bool visible)
{
  const auto views = m_ViewWidgets.keys();
  for (VXAbstractViewWidget* view : views)
    addViewInstance(nullptr, view, port, visible);
}

void VXRepresentation::addViewWidgetCopy(VXAbstractViewWidget* sourceViewWidget,
                                         VXAbstractViewWidget* splitViewWidget)
{
  const bool created = implementation(splitViewWidget) == nullptr;
  if (!addViewInstance(sourceViewWidget, splitViewWidget, nullptr, false) || !created)
    return;
  // made hidden; the visibility then follows the copied settings
  VXRepresentationPimpl* source = implementation(sourceViewWidget);
  VXRepresentationPimpl* copy = implementation(splitViewWidget);
  if (source != nullptr && copy != nullptr)
  {
    copy->setVisibility(source->isVisible());
    m_ViewWidgets[splitViewWidget] = source->isVisible();
  }
}

void VXRepresentation::removeModuleInstance(VXAbstractViewWidget* view)
{
  m_ViewWidgets.remove(view);
  auto iter = m_ViewImplementations.find(view);
  if (iter == m_ViewImplementations.end())
    return;
  std::shared_ptr<VXRepresentationPimpl> implementation = iter.value();
  m_ViewImplementations.erase(iter);
  // released here, while this item is there for the implementation's destructor
  if (implementation != nullptr)
    implementation->finalize();
}

void VXRepresentation::removeModule()
{
  if (m_Pipeline != nullptr)
    Q_EMIT m_Pipeline->removeModule(this);
}

void VXRepresentation::renderAll()
{
  for (const auto& implementation : std::as_const(m_ViewImplementations))
  {
    if (implementation != nullptr && implementation->visualizationWidget() != nullptr)
      implementation->visualizationWidget()->render();
  }
}

void VXRepresentation::updateGridAxesBounds()
{
  for (const auto& implementation : std::as_const(m_ViewImplementations))
  {
    if (implementation != nullptr)
      implementation->updateGridAxesBounds();
  }
}

bool VXRepresentation::finalize()
{
  bool result = VXCoreObject::finalize();
  for (const auto& implementation : std::as_const(m_ViewImplementations))
  {
    if (implementation == nullptr || !implementation->finalize())
      result = false;
  }
  return result;
}

QWidget* VXRepresentation::settingsWidget()
{
  m_SettingsWidget = nullptr;
  initializeSettingsWidget();
  return m_SettingsWidget;
}

void VXRepresentation::initializeSettingsWidget()
{
  if (VXRepresentationPimpl* active = activeImplementation())
    m_SettingsWidget = active->settingsWidget();
}

bool VXRepresentation::isVisible() const
{
  VXRepresentationPimpl* active = activeImplementation();
  return active != nullptr && active->isVisible();
}

void VXRepresentation::setVisibility(bool visible)
{
  if (m_Pipeline == nullptr || m_Pipeline->activeViewWidget() == nullptr)
    return;
  VXAbstractViewWidget* view = m_Pipeline->activeViewWidget();
  if (VXRepresentationPimpl* active = implementation(view))
  {
    active->setVisibility(visible);
    m_ViewWidgets[view] = visible;
    return;
  }
  if (addViewInstance(nullptr, view, nullptr, visible))
  {
    m_ViewWidgets[view] = visible;
    Q_EMIT m_Pipeline->representationViewInstanceAdded();
  }
}

void VXRepresentation::copyActiveSettings() const
{
  if (VXRepresentationPimpl* active = activeImplementation())
    active->copySettingsToClipboard();
}

void VXRepresentation::pasteToActiveSettings()
{
  VXRepresentationPimpl* active = activeImplementation();
  if (active == nullptr)
    return;
  if (clipboardSettings().is_null())
    return;
  // a value of the wrong type stops the read half way: the settings before it come back
  nlohmann::json before = nlohmann::json::object();
  active->write(before);
  const bool visible = active->isVisible();
  try
  {
    active->pasteSettingsFromClipboard();
  }
  catch (const nlohmann::json::exception& error)
  {
    active->read(before);
    reportPasteFailure(QString::fromUtf8(error.what()));
  }
  // settings only: the visibility stays as the user set it
  if (active->isVisible() != visible)
    active->setVisibility(visible);
}

void VXRepresentation::updatePath()
{
  VXCoreObject::updatePath();
}

void VXRepresentation::receivePipelineOutputReloaded()
{
  for (const auto& implementation : std::as_const(m_ViewImplementations))
  {
    if (implementation != nullptr)
      implementation->receivePipelineOutputReloaded();
  }
  updateDataSetInfo();
}

void VXRepresentation::activeViewChanged(VXAbstractViewWidget* previousActiveView,
                                         VXAbstractViewWidget* currentActiveView)
{
  if (previousActiveView == currentActiveView)
    return;
  Q_EMIT enabledDisabledStateChanged(this, implementation(currentActiveView) != nullptr);
}

void VXRepresentation::highlightInRenderWindows(bool highlighted)
{
  m_Highlighted = highlighted;
  for (const auto& implementation : std::as_const(m_ViewImplementations))
  {
    if (implementation != nullptr)
      implementation->setHighlighted(highlighted);
  }
}

QSharedPointer<VXDatasetInfoWidget> VXRepresentation::getDataSetInfoWidget()
{
  initializeDataSetInfoWidget();
  return m_DataSetInfoWidget;
}

void VXRepresentation::initializeDataSetInfoWidget()
{
  if (m_DataSetInfoWidget == nullptr)
  {
    m_DataSetInfoWidget =
      QSharedPointer<VXDatasetInfoWidget>(new VXDatasetInfoWidget(), &QObject::deleteLater);
    updateDataSetInfo();
  }
}

void VXRepresentation::showDataSetInfoWidget()
{
  initializeDataSetInfoWidget();
  m_DataSetInfoWidget->show();
}

void VXRepresentation::write(nlohmann::json& output,
                             const QMap<VXAbstractViewWidget*, int>& viewIndices) const
{
  output["core_object_name"] = m_BaseName.toStdString();
  output["core_object_name_suffix"] = m_NameSuffixCounter;
  nlohmann::json implementations = nlohmann::json::array();
  for (auto iter = m_ViewImplementations.constBegin(); iter != m_ViewImplementations.constEnd();
       ++iter)
  {
    if (!viewIndices.contains(iter.key()) || iter.value() == nullptr)
      continue;
    nlohmann::json entry;
    iter.value()->write(entry);
    entry["render_window_index"] = viewIndices.value(iter.key());
    implementations.push_back(entry);
  }
  output["rep_view_implementations"] = implementations;
}

void VXRepresentation::read(const nlohmann::json& input,
                            const QMap<int, VXAbstractViewWidget*>& views)
{
  if (!input.is_object())
    return;
  if (input.contains("core_object_name"))
    setBaseName(QString::fromStdString(input.at("core_object_name").get<std::string>()));
  if (input.contains("core_object_name_suffix"))
    setNameSuffixCounter(KXVtkModule::utils::StateInt(input.at("core_object_name_suffix")));
  if (!input.contains("rep_view_implementations"))
    return;
  for (const auto& entry : input.at("rep_view_implementations"))
  {
    if (!entry.contains("render_window_index"))
      continue;
    VXAbstractViewWidget* view =
      views.value(KXVtkModule::utils::StateInt(entry.at("render_window_index")), nullptr);
    if (view == nullptr)
      continue;
    if (implementation(view) == nullptr)
      addViewInstance(nullptr, view, nullptr, false);
    if (VXRepresentationPimpl* target = implementation(view))
    {
      target->read(entry);
      m_ViewWidgets[view] = target->isVisible();
    }
  }
}

std::shared_ptr<VXRepresentationPimpl> VXRepresentation::createImplementation(VXAbstractViewWidget*)
{
  return nullptr;
}

bool VXRepresentation::isOwnImplementation(VXRepresentationPimpl*) const
{
  return false;
}

void VXRepresentation::initializePendingImplementations(vtkAlgorithmOutput* inputPort)
{
  for (const auto& implementation : std::as_const(m_ViewImplementations))
  {
    if (implementation != nullptr && !implementation->isInitialized())
    {
      implementation->initialize(inputPort != nullptr
                                   ? inputPort
                                   : (parentSource() ? parentSource()->outputPort() : nullptr));
      implementation->setVisibility(implementation->isVisible());
    }
  }
}

bool VXRepresentation::addImplementationInView(VXAbstractViewWidget* sourceView,
                                               VXAbstractViewWidget* view,
                                               vtkAlgorithmOutput* inputPort, bool visible)
{
  if (view == nullptr)
    return false;
  std::shared_ptr<VXRepresentationPimpl> instance;
  if (VXRepresentationPimpl* existing = implementation(view))
  {
    if (!isOwnImplementation(existing))
      return false;
    instance = m_ViewImplementations.value(view);
    visible = existing->isVisible();
  }
  else
  {
    instance = createImplementation(view);
    if (instance == nullptr)
      return false;
    if (!m_ViewImplementations.isEmpty())
    {
      // a port is only accepted for the first instance; the others share its data
      if (inputPort != nullptr)
        return false;
      VXRepresentationPimpl* settingsSource = m_ViewImplementations.first().get();
      if (sourceView != nullptr && implementation(sourceView) != nullptr)
        settingsSource = implementation(sourceView);
      instance->copyFrom(settingsSource);
    }
    m_ViewImplementations.insert(view, instance);
    connectViewSignals(view);
  }
  vtkAlgorithmOutput* port = nullptr;
  VXRepresentationPimpl* first = m_ViewImplementations.first().get();
  if (first != nullptr && first != instance.get() && first->inputPort() != nullptr)
    port = first->inputPort();
  if (port == nullptr)
    port = inputPort;
  if (port == nullptr)
  {
    VXCoreObject* parentItem = qobject_cast<VXCoreObject*>(parent());
    if (parentItem == nullptr)
      return false;
    port = parentItem->outputPort();
  }
  if (!instance->isInitialized())
    instance->initialize(port);
  instance->setVisibility(visible);
  m_ViewWidgets[view] = visible;
  return true;
}
