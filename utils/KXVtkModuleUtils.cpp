#include "utils/KXVtkModuleUtils.hpp"

#include <KXComponents/KXStyle.hpp>
#include <KXComponents/QElidedLabel.hpp>

#include <QtCore/QString>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtWidgets/QFrame>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QVBoxLayout>

namespace KXVtkModule::utils
{
QWidget* CreateSettingsWidget(QFrame* titleFrame, QScrollArea* scrollArea)
{
  auto* page = new QWidget();
  auto* layout = new QVBoxLayout(page);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  if (titleFrame != nullptr)
    layout->addWidget(titleFrame);
  if (scrollArea != nullptr)
  {
    scrollArea->setWidgetResizable(true);
    layout->addWidget(scrollArea, 1);
  }
  return page;
}

QElidedLabel* AddSettingsTitle(QFrame* titleFrame, QWidget* primaryButton, QWidget* secondaryButton)
{
  titleFrame->setObjectName("settingsWidgetTitleFrame");
  auto* layout = new QHBoxLayout(titleFrame);
  layout->setSpacing(2);
  layout->setContentsMargins(2, 2, 2, 2);
  auto* label = new QElidedLabel(titleFrame);
  label->setObjectName("visSettingsTitleNameLabel");
  label->setMinimumHeight(KXStyle::getIconSize().height());
  layout->addWidget(label, 1);
  if (secondaryButton != nullptr)
    layout->addWidget(secondaryButton);
  if (primaryButton != nullptr)
    layout->addWidget(primaryButton);
  return label;
}

nlohmann::json ClipboardSettings()
{
  const QClipboard* clipboard = QGuiApplication::clipboard();
  nlohmann::json pasted = nlohmann::json::parse(
    clipboard != nullptr ? clipboard->text().toStdString() : std::string(), nullptr, false);
  if (pasted.is_discarded() || !pasted.is_object())
    return nullptr;
  return pasted;
}

QString HtmlToolTip(const QString& text)
{
  return QString("<html><head/><body><p>%1</p></body></html>").arg(text);
}

VXAbstractViewWidget* GetViewWidget(const QMap<VXAbstractViewWidget*, int>& viewIndices, int index)
{
  for (auto iter = viewIndices.cbegin(); iter != viewIndices.cend(); ++iter)
  {
    if (iter.value() == index)
      return iter.key();
  }
  return nullptr;
}
} // namespace KXVtkModule::utils
