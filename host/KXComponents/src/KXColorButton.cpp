#include "KXComponents/KXColorButton.hpp"

#include "KXComponents/KXStyle.hpp"

#include <QtGui/QPainter>
#include <QtGui/QPixmap>
#include <QtWidgets/QColorDialog>

#include <algorithm>

KXColorButton::KXColorButton(QWidget* parent)
  : KXColorButton(QColor(Qt::white), parent)
{
}

KXColorButton::KXColorButton(const QColor& color, QWidget* parent)
  : QPushButton(parent)
{
  if (color.isValid())
  {
    m_Color = color;
  }
  connect(this, &QPushButton::clicked, this, &KXColorButton::chooseColor);
  updateSwatch();
}

KXColorButton::~KXColorButton() = default;

QColor KXColorButton::color() const
{
  return m_Color;
}

void KXColorButton::setColorChooser(ColorChooser chooser)
{
  m_Chooser = std::move(chooser);
}

void KXColorButton::setAlphaEnabled(bool enabled)
{
  m_AlphaEnabled = enabled;
}

bool KXColorButton::alphaEnabled() const
{
  return m_AlphaEnabled;
}

void KXColorButton::setColor(const QColor& color)
{
  if (!color.isValid() || color == m_Color)
  {
    return;
  }
  m_Color = color;
  updateSwatch();
}

void KXColorButton::chooseColor()
{
  QColor chosen;
  if (m_Chooser)
  {
    chosen = m_Chooser(m_Color, this);
  }
  else
  {
    const QColorDialog::ColorDialogOptions options =
      m_AlphaEnabled ? QColorDialog::ShowAlphaChannel : QColorDialog::ColorDialogOptions();
    chosen = QColorDialog::getColor(m_Color, this, tr("Select Color"), options);
  }
  if (!chosen.isValid() || chosen == m_Color)
  {
    return;
  }
  m_Color = chosen;
  updateSwatch();
  Q_EMIT changedColor(m_Color);
}

void KXColorButton::resizeEvent(QResizeEvent* event)
{
  QPushButton::resizeEvent(event);
  updateSwatch();
}

void KXColorButton::updateSwatch()
{
  // The swatch fills most of the button's height but keeps a margin for the
  // frame; never smaller than a standard icon.
  const QSize iconSize = KXStyle::getIconSize();
  const int height = std::max(iconSize.height(), this->height() - 10);
  const QSize swatchSize(std::max(iconSize.width() * 2, height * 2), height);
  QPixmap swatch(swatchSize);
  swatch.fill(Qt::transparent);
  QPainter painter(&swatch);
  painter.setPen(QPen(palette().color(QPalette::Dark), 1));
  painter.setBrush(m_Color);
  painter.drawRect(swatch.rect().adjusted(0, 0, -1, -1));
  painter.end();
  setIcon(QIcon(swatch));
  setIconSize(swatchSize);
}
