#include "QtPrinters.hpp"

#include <KXComponents/KXColorButton.hpp>
#include <KXComponents/KXIconPushButton.hpp>
#include <KXComponents/KXStyle.hpp>
#include <KXComponents/QElidedLabel.hpp>

#include <QtGui/QImage>
#include <QtTest/QSignalSpy>

#include <gtest/gtest.h>

namespace
{
QColor SwatchCentre(const KXColorButton& button)
{
  const QImage image = button.icon().pixmap(button.iconSize()).toImage();
  return QColor(image.pixel(image.width() / 2, image.height() / 2));
}
} // namespace

TEST(KXColorButton, ShowsTheColourItIsGiven)
{
  KXColorButton button(QColor(10, 200, 30));
  EXPECT_EQ(button.color(), QColor(10, 200, 30));
  EXPECT_EQ(SwatchCentre(button), QColor(10, 200, 30));
  QSignalSpy spy(&button, &KXColorButton::changedColor);
  button.setColor(QColor(0, 0, 255));
  EXPECT_EQ(button.color(), QColor(0, 0, 255));
  EXPECT_EQ(SwatchCentre(button), QColor(0, 0, 255));
  button.setColor(QColor());
  EXPECT_EQ(button.color(), QColor(0, 0, 255));
  EXPECT_EQ(spy.count(), 0) << "programmatic changes are not the user's";
}

TEST(KXColorButton, ClickEmitsTheChosenColourOnceAndCancelKeepsIt)
{
  KXColorButton button(QColor(Qt::white));
  QColor offered;
  int asked = 0;
  button.setColorChooser(
    [&](const QColor& current, QWidget* parent)
    {
      ++asked;
      offered = current;
      EXPECT_EQ(parent, &button);
      return QColor(200, 0, 0);
    });
  QSignalSpy spy(&button, &KXColorButton::changedColor);
  button.click();
  EXPECT_EQ(asked, 1);
  EXPECT_EQ(offered, QColor(Qt::white));
  ASSERT_EQ(spy.count(), 1);
  EXPECT_EQ(spy.at(0).at(0).value<QColor>(), QColor(200, 0, 0));
  EXPECT_EQ(button.color(), QColor(200, 0, 0));

  // Choosing the same colour again changes nothing.
  button.click();
  EXPECT_EQ(asked, 2);
  EXPECT_EQ(spy.count(), 1);

  // A cancelled choice keeps the colour.
  button.setColorChooser([](const QColor&, QWidget*) { return QColor(); });
  button.chooseColor();
  EXPECT_EQ(spy.count(), 1);
  EXPECT_EQ(button.color(), QColor(200, 0, 0));
}

TEST(KXIconPushButton, FlatButtonWithAThemeIcon)
{
  KXIconPushButton button("Eye", true);
  EXPECT_TRUE(button.isFlat());
  EXPECT_TRUE(button.isCheckable());
  EXPECT_EQ(button.iconName(), "Eye");
  EXPECT_TRUE(button.text().isEmpty());
  EXPECT_EQ(button.iconSize(), KXStyle::getIconSize());
  EXPECT_EQ(button.icon().pixmap(QSize(16, 16)).toImage(),
            KXStyle::generateThemeIconFromName("Eye").pixmap(QSize(16, 16)).toImage());

  KXIconPushButton plain;
  EXPECT_FALSE(plain.isCheckable());
  EXPECT_TRUE(plain.icon().isNull());
  plain.setIconName("Close");
  EXPECT_EQ(plain.icon().pixmap(QSize(16, 16)).toImage(),
            KXStyle::generateThemeIconFromName("Close").pixmap(QSize(16, 16)).toImage());
}

TEST(QElidedLabel, ShortensLongTextToItsWidthOnTheChosenSide)
{
  const QString longText =
    "Pipeline / Imported Geometry / Cell Data / Feature Identifiers : Render View Settings";
  QElidedLabel label(longText);
  label.resize(80, 20);
  EXPECT_EQ(label.text(), longText);
  const QString shown = label.displayedText();
  EXPECT_TRUE(shown.endsWith(QChar(0x2026))) << shown.toStdString();
  EXPECT_LT(shown.size(), longText.size());
  EXPECT_TRUE(longText.startsWith(shown.chopped(1)));
  EXPECT_LE(label.fontMetrics().horizontalAdvance(shown), 80);
  EXPECT_TRUE(label.isElided());

  // the elide mode chooses where the ellipsis goes
  label.setText("abcdefghijklmnopqrstuvwxyz0123456789abcdefghijklmnopqrstuvwxyz");
  label.resize(60, 20);
  label.setElideMode(Qt::ElideLeft);
  EXPECT_TRUE(label.displayedText().startsWith(QChar(0x2026)));
  EXPECT_TRUE(label.displayedText().endsWith("wxyz"));

  // short text is shown whole
  QElidedLabel whole;
  whole.setText("Cells");
  whole.resize(whole.sizeHint().width() + 40, 20);
  EXPECT_EQ(whole.displayedText(), "Cells");
  EXPECT_FALSE(whole.isElided());
  EXPECT_GE(whole.sizeHint().width(), whole.fontMetrics().horizontalAdvance("Cells"));
}
