#pragma once

#include "KXComponents/kxcomponents_export.h"

#include <QtCore/QString>
#include <QtWidgets/QFrame>

/**
 * A one-line label that shortens its text with an ellipsis ("…") to fit its
 * width, instead of forcing its layout wider. While the text is cut, hovering
 * shows the full text (unless a tool tip of its own was set). Used for item names in settings title
 * rows.
 */
class KXCOMPONENTS_EXPORT QElidedLabel : public QFrame
{
  Q_OBJECT

public:
  explicit QElidedLabel(QWidget* parent = nullptr);
  explicit QElidedLabel(const QString& text, QWidget* parent = nullptr);
  ~QElidedLabel() override;

  /** The full text, never shortened. */
  QString text() const;
  /** The text as painted at the current width. */
  QString displayedText() const;
  /** Whether the current width cuts the text. */
  bool isElided() const;
  /** Where the ellipsis goes (Qt::ElideRight by default). */
  Qt::TextElideMode elideMode() const;
  void setElideMode(Qt::TextElideMode mode);
  Qt::Alignment alignment() const;
  void setAlignment(Qt::Alignment alignment);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

public Q_SLOTS:
  void setText(const QString& text);
  void clear();

protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

private:
  QString m_Text;
  Qt::TextElideMode m_ElideMode = Qt::ElideRight;
  Qt::Alignment m_Alignment = Qt::AlignLeft | Qt::AlignVCenter;
};
