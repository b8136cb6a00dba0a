#include "visualization/VXCoreObject.hpp"

#include "utils/KXVtkModuleUtils.hpp"
#include "visualization/QtWidgets/VXAbstractViewWidget.hpp"
#include "visualization/QtWidgets/VXVisualizationWidget.hpp"
#include "visualization/VXBridgeObject.hpp"
#include "visualization/VXPipeline.hpp"

#include <KXComponents/KXIconPushButton.hpp>
#include <KXComponents/QElidedLabel.hpp>

#include <QtWidgets/QFrame>
#include <QtWidgets/QScrollArea>

namespace
{
/** A view that closes, or goes without closing, leaves the item's map: a later view may get its
 * address. */
void forgetWhenGone(QObject* item, QMap<VXAbstractViewWidget*, bool>& views,
                    VXAbstractViewWidget* view)
{
  auto forget = [&views, view]() { views.remove(view); };
  QObject::connect(view, &VXAbstractViewWidget::closingView, item, forget);
  QObject::connect(view, &QObject::destroyed, item, forget);
}
} // namespace

VXCoreObject::VXCoreObject(QObject* parent)
  : QObject(parent)
  , m_SettingsTitleFrame(new QFrame())
  , m_SettingsScrollArea(new QScrollArea())
{
}

VXCoreObject::~VXCoreObject()
{
  // the page owns the title frame and scroll area once it exists
  if (m_SettingsWidget)
  {
    delete m_SettingsWidget;
  }
  else
  {
    delete m_SettingsTitleFrame;
    delete m_SettingsScrollArea;
  }
}

QString VXCoreObject::name() const
{
  if (m_NameSuffixCounter <= 0)
    return m_BaseName;
  return QString("%1 %2").arg(m_BaseName).arg(m_NameSuffixCounter);
}

QString VXCoreObject::pathName() const
{
  QString path = name();
  for (QObject* ancestor = parent(); ancestor != nullptr; ancestor = ancestor->parent())
  {
    if (auto* core = qobject_cast<VXCoreObject*>(ancestor))
      path = core->name() + m_PathDelimeter + path;
    else if (auto* bridge = qobject_cast<VXBridgeObject*>(ancestor))
      path = bridge->name() + m_PathDelimeter + path;
  }
  return path;
}

void VXCoreObject::setNameSuffixCounter(int counter)
{
  m_NameSuffixCounter = counter;
  updatePath();
}

void VXCoreObject::setBaseName(const QString& name)
{
  m_BaseName = name;
  updatePath();
}

void VXCoreObject::updatePath()
{
  Q_EMIT pathChanged(pathName());
}

void VXCoreObject::setFlagAutoReload(bool flagged)
{
  m_AutoReloadFlagged = flagged;
  Q_EMIT autoReloadFlagChanged(flagged);
}

VXLookupTable* VXCoreObject::lookupTable()
{
  return nullptr;
}

void VXCoreObject::setPipeline(VXPipeline* pipeline)
{
  if (m_ActiveViewConnection)
    disconnect(m_ActiveViewConnection);
  m_Pipeline = pipeline;
  if (pipeline != nullptr)
    m_ActiveViewConnection =
      connect(pipeline, &VXPipeline::activeViewChanged, this, &VXCoreObject::activeViewChanged);
}

void VXCoreObject::addViewWidget(VXAbstractViewWidget* view)
{
  const bool known = m_ViewWidgets.contains(view);
  m_ViewWidgets[view] = true;
  if (view == nullptr)
    return;
  if (!known)
    forgetWhenGone(this, m_ViewWidgets, view);
  connect(view, &VXAbstractViewWidget::viewWidgetCreated, this, &VXCoreObject::addViewWidgetCopy,
          Qt::UniqueConnection);
  if (VXVisualizationWidget* renderWidget = view->getVisualizationWidget())
    connect(this, &VXCoreObject::requestRender, renderWidget, &VXVisualizationWidget::render,
            Qt::UniqueConnection);
}

void VXCoreObject::setVisibility(bool visible)
{
  VXAbstractViewWidget* view = m_Pipeline != nullptr ? m_Pipeline->activeViewWidget() : nullptr;
  if (view == nullptr)
    return;
  if (!m_ViewWidgets.contains(view))
    addViewWidget(view);
  m_ViewWidgets[view] = visible;
}

bool VXCoreObject::isVisible() const
{
  VXAbstractViewWidget* view = m_Pipeline != nullptr ? m_Pipeline->activeViewWidget() : nullptr;
  if (view == nullptr)
    return false;
  return m_ViewWidgets.value(view, false);
}

void VXCoreObject::activeViewChanged(VXAbstractViewWidget* previousActiveView,
                                     VXAbstractViewWidget* currentActiveView)
{
  if (previousActiveView == currentActiveView)
    return;
  Q_EMIT enabledDisabledStateChanged(this, currentActiveView != nullptr &&
                                             m_ViewWidgets.contains(currentActiveView));
}

bool VXCoreObject::finalize()
{
  for (auto iter = m_ViewWidgets.cbegin(); iter != m_ViewWidgets.cend(); ++iter)
  {
    if (iter.key() == nullptr)
      return false;
  }
  return true;
}

QWidget* VXCoreObject::settingsWidget()
{
  if (!m_SettingsWidget && m_Pipeline != nullptr && m_Pipeline->activeViewWidget() != nullptr)
    initializeSettingsWidget();
  return m_SettingsWidget;
}

void VXCoreObject::addSettingsWidgetTitle(KXIconPushButton* primaryButton,
                                          KXIconPushButton* secondaryButton)
{
  if (!m_SettingsWidget)
    m_SettingsWidget =
      KXVtkModule::utils::CreateSettingsWidget(m_SettingsTitleFrame, m_SettingsScrollArea);
  QElidedLabel* label =
    KXVtkModule::utils::AddSettingsTitle(m_SettingsTitleFrame, primaryButton, secondaryButton);
  label->setText(name() + " : Render View Settings");
  label->setToolTip(pathName());
  connect(this, &VXCoreObject::pathChanged, label,
          [this, label](const QString& path)
          {
            label->setText(name() + " : Render View Settings");
            label->setToolTip(path);
          });
}

void VXCoreObject::write(nlohmann::json& output,
                         const QMap<VXAbstractViewWidget*, int>& viewIndices) const
{
  nlohmann::json views = nlohmann::json::array();
  for (auto iter = m_ViewWidgets.cbegin(); iter != m_ViewWidgets.cend(); ++iter)
  {
    if (!viewIndices.contains(iter.key()))
      continue;
    // the outer key names the array and the inner one the index: that pairing is the format
    views.push_back({ { "render_window_index", viewIndices.value(iter.key()) },
                      { "core_object_visibility", iter.value() } });
  }
  output["render_window_index"] = views;
}

void VXCoreObject::read(const nlohmann::json& input, const QMap<int, VXAbstractViewWidget*>& views)
{
  if (!input.is_object() || !input.contains("render_window_index"))
    return;
  for (const auto& entry : input["render_window_index"])
  {
    const int index = KXVtkModule::utils::StateInt(entry.at("render_window_index"));
    const bool visible = entry.at("core_object_visibility").get<bool>();
    VXAbstractViewWidget* view = views.value(index, nullptr);
    if (view == nullptr)
      continue;
    if (!m_ViewWidgets.contains(view))
      forgetWhenGone(this, m_ViewWidgets, view);
    m_ViewWidgets[view] = visible;
  }
}

nlohmann::json VXCoreObject::clipboardSettings() const
{
  nlohmann::json pasted = KXVtkModule::utils::ClipboardSettings();
  if (pasted.is_null())
    reportPasteFailure("the clipboard does not hold the settings of a visualization item.");
  return pasted;
}

void VXCoreObject::reportPasteFailure(const QString& reason) const
{
  const QString text = QString("Cannot paste settings to %1: %2").arg(name(), reason);
  if (m_Pipeline != nullptr)
    Q_EMIT m_Pipeline->sendOutputMessage(text);
  else
    qWarning().noquote() << text;
}
