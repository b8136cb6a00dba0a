#pragma once

#include "KXVtkLib_export.h"

#include <QtGui/QColor>
#include <QtWidgets/QDialog>

class QCheckBox;
class KXColorButton;

/**
 * Asked before a screenshot is written: whether the background should be
 * transparent, and otherwise which background colour the image gets (the
 * view's current one by default).
 */
class KXVTKLIB_EXPORT VXScreenshotOptionsDialog : public QDialog
{
  Q_OBJECT

public:
  /** @p defaultColor is the colour the background button starts with. */
  explicit VXScreenshotOptionsDialog(const QColor& defaultColor, QWidget* parent = nullptr);
  ~VXScreenshotOptionsDialog() override;

  /** Whether the image is captured with an alpha channel and no background. */
  bool transparentBackground() const;
  void setTransparentBackground(bool transparent);
  /** The background colour of an opaque image. */
  QColor backgroundColor() const;
  void setBackgroundColor(const QColor& color);
  /** The colour button, e.g. for a test to install a chooser. */
  KXColorButton* colorButton() const { return m_ColorButton; }

private:
  QCheckBox* m_TransparentCheck = nullptr;
  KXColorButton* m_ColorButton = nullptr;
};
