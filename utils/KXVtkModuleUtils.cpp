#include "utils/KXVtkModuleUtils.hpp"

#include <QtCore/QString>
#include <QtWidgets/QFrame>
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
