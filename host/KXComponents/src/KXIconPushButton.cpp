#include "KXComponents/KXIconPushButton.hpp"

#include "KXComponents/KXStyle.hpp"

#include <algorithm>

KXIconPushButton::KXIconPushButton(QWidget* parent)
  : QPushButton(parent)
{
  setFlat(true);
  setIconSize(KXStyle::getIconSize());
  setFocusPolicy(Qt::TabFocus);
}

KXIconPushButton::KXIconPushButton(const QString& iconName, bool checkable, QWidget* parent)
  : KXIconPushButton(parent)
{
  setCheckable(checkable);
  setIconName(iconName);
}

KXIconPushButton::~KXIconPushButton() = default;

QString KXIconPushButton::iconName() const
{
  return m_IconName;
}

void KXIconPushButton::setIconName(const QString& iconName)
{
  m_IconName = iconName;
  setIcon(iconName.isEmpty() ? QIcon() : KXStyle::generateThemeIconFromName(iconName));
}

QSize KXIconPushButton::sizeHint() const
{
  // Square and tight around the icon: these buttons sit in dense title rows.
  const QSize icon = iconSize();
  const int side = std::max(icon.width(), icon.height()) + 8;
  return QSize(side, side);
}
