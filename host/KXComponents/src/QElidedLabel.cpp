#include "KXComponents/QElidedLabel.hpp"

#include <QtGui/QFontMetrics>
#include <QtGui/QHelpEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QToolTip>

QElidedLabel::QElidedLabel(QWidget* parent)
  : QElidedLabel(QString(), parent)
{
}

QElidedLabel::QElidedLabel(const QString& text, QWidget* parent)
  : QFrame(parent)
  , m_Text(text)
{
  // Expanding but willing to shrink to nothing: the point of the widget.
  setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

QElidedLabel::~QElidedLabel() = default;

QString QElidedLabel::text() const
{
  return m_Text;
}

void QElidedLabel::setText(const QString& text)
{
  if (text == m_Text)
  {
    return;
  }
  m_Text = text;
  updateGeometry();
  update();
}

void QElidedLabel::clear()
{
  setText(QString());
}

QString QElidedLabel::displayedText() const
{
  return fontMetrics().elidedText(m_Text, m_ElideMode, contentsRect().width());
}

bool QElidedLabel::isElided() const
{
  return displayedText() != m_Text;
}

Qt::TextElideMode QElidedLabel::elideMode() const
{
  return m_ElideMode;
}

void QElidedLabel::setElideMode(Qt::TextElideMode mode)
{
  m_ElideMode = mode;
  update();
}

Qt::Alignment QElidedLabel::alignment() const
{
  return m_Alignment;
}

void QElidedLabel::setAlignment(Qt::Alignment alignment)
{
  m_Alignment = alignment;
  update();
}

QSize QElidedLabel::sizeHint() const
{
  const QFontMetrics metrics = fontMetrics();
  const QMargins margins = contentsMargins();
  return QSize(metrics.horizontalAdvance(m_Text) + margins.left() + margins.right() +
                 2 * frameWidth(),
               metrics.height() + margins.top() + margins.bottom() + 2 * frameWidth());
}

QSize QElidedLabel::minimumSizeHint() const
{
  const QFontMetrics metrics = fontMetrics();
  return QSize(metrics.horizontalAdvance(QStringLiteral("…")), metrics.height());
}

void QElidedLabel::paintEvent(QPaintEvent* event)
{
  QFrame::paintEvent(event);
  QPainter painter(this);
  painter.setPen(
    palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::WindowText));
  painter.drawText(contentsRect(), static_cast<int>(m_Alignment), displayedText());
}

bool QElidedLabel::event(QEvent* event)
{
  // Decided at hover time rather than on resize: a hidden widget gets no
  // resize events, and the width may change many times between hovers.
  if (event->type() == QEvent::ToolTip && toolTip().isEmpty() && isElided())
  {
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), m_Text, this);
    return true;
  }
  return QFrame::event(event);
}
