#pragma once

#include "KXComponents/kxcomponents_export.h"

#include <QtCore/QString>
#include <QtWidgets/QPushButton>

/**
 * A flat push button that shows one KXStyle theme icon and no text, as used on
 * settings title rows and view tool bars. Optionally checkable (the eye button
 * of a data view is).
 */
class KXCOMPONENTS_EXPORT KXIconPushButton : public QPushButton
{
  Q_OBJECT

public:
  explicit KXIconPushButton(QWidget* parent = nullptr);
  /** A button with the theme icon of that name. */
  explicit KXIconPushButton(const QString& iconName, bool checkable = false,
                            QWidget* parent = nullptr);
  ~KXIconPushButton() override;

  /** The theme icon name shown; empty when none. */
  QString iconName() const;
  /** Shows the theme icon of that name (KXStyle's fallback for unknown names). */
  void setIconName(const QString& iconName);

  QSize sizeHint() const override;

private:
  QString m_IconName;
};
