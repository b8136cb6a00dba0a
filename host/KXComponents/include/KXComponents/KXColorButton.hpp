#pragma once

#include "KXComponents/kxcomponents_export.h"

#include <QtGui/QColor>
#include <QtWidgets/QPushButton>

#include <functional>

/**
 * A push button showing a colour swatch. A click asks the user for a new
 * colour (a QColorDialog unless a chooser is installed) and emits
 * changedColor when the answer differs from the current colour. setColor()
 * only updates the swatch and emits nothing, so an owner can mirror its own
 * state into the button without hearing it back.
 */
class KXCOMPONENTS_EXPORT KXColorButton : public QPushButton
{
  Q_OBJECT

public:
  /**
   * Asks for a colour, given the current one; returns an invalid colour when
   * the user cancels. Tests install one to answer without a modal dialog.
   */
  using ColorChooser = std::function<QColor(const QColor& current, QWidget* parent)>;

  explicit KXColorButton(QWidget* parent = nullptr);
  explicit KXColorButton(const QColor& color, QWidget* parent = nullptr);
  ~KXColorButton() override;

  /** The colour shown. */
  QColor color() const;

  /** Replaces the way a click asks for a colour; an empty function restores the QColorDialog. */
  void setColorChooser(ColorChooser chooser);

  /** Whether the chooser offers an alpha channel (off by default). */
  void setAlphaEnabled(bool enabled);
  bool alphaEnabled() const;

public Q_SLOTS:
  /** Shows the colour; invalid colours are ignored. Emits nothing. */
  void setColor(const QColor& color);
  /** Asks for a colour as a click does; emits changedColor if the user picked a different one. */
  void chooseColor();

Q_SIGNALS:
  /** The user picked a colour different from the previous one. */
  void changedColor(QColor color);

protected:
  void resizeEvent(QResizeEvent* event) override;

private:
  void updateSwatch();

  QColor m_Color = Qt::white;
  ColorChooser m_Chooser;
  bool m_AlphaEnabled = false;
};
