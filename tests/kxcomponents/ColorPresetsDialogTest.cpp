#include "QtPrinters.hpp"

#include <KXComponents/ColorPresetsDialog.hpp>
#include <KXComponents/KXColorButton.hpp>
#include <KXComponents/KXColorPresets.hpp>

#include <QtGui/QImage>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QPushButton>

#include <gtest/gtest.h>

using kx::core::ColorTableUtilities::ColorPreset;

TEST(ColorPresetsDialog, ListsTheBuiltInPresets)
{
  ColorPresetsDialog dialog;
  const QStringList names = dialog.listedPresetNames();
  EXPECT_EQ(static_cast<size_t>(names.size()), KXColorPresets::LoadBuiltIn().size());
  EXPECT_EQ(names.front(), QString::fromStdString(KXColorPresets::LoadBuiltIn().front().name));
  EXPECT_TRUE(names.contains("Viridis"));
  EXPECT_TRUE(names.contains("Brewer Qualitative Paired"));
}

TEST(ColorPresetsDialog, FilterSeparatesContinuousAndIndexedMaps)
{
  ColorPresetsDialog dialog;
  dialog.setFilter(ColorPresetsDialog::Filter::Indexed);
  QStringList names = dialog.listedPresetNames();
  EXPECT_TRUE(names.contains("Brewer Qualitative Set1"));
  EXPECT_FALSE(names.contains("Viridis"));
  dialog.setFilter(ColorPresetsDialog::Filter::Continuous);
  names = dialog.listedPresetNames();
  EXPECT_TRUE(names.contains("Viridis"));
  EXPECT_FALSE(names.contains("Brewer Qualitative Set1"));
  EXPECT_FALSE(dialog.selectPreset("Brewer Qualitative Set1"));
}

TEST(ColorPresetsDialog, ApplyEmitsTheSelectedPreset)
{
  ColorPresetsDialog dialog;
  QSignalSpy selected(&dialog, &ColorPresetsDialog::presetSelected);
  QSignalSpy applied(&dialog, &ColorPresetsDialog::applyPreset);
  auto* apply = dialog.findChild<QPushButton*>("applyButton");
  ASSERT_NE(apply, nullptr);

  // Nothing selected: nothing to apply.
  apply->click();
  EXPECT_EQ(selected.count(), 0);

  ASSERT_TRUE(dialog.selectPreset("Inferno"));
  apply->click();
  ASSERT_EQ(selected.count(), 1);
  ASSERT_EQ(applied.count(), 1);
  const auto preset = selected.at(0).at(0).value<ColorPreset>();
  EXPECT_EQ(preset, *KXColorPresets::Find("Inferno"));
  const auto pixmap = applied.at(0).at(1).value<QPixmap>();
  EXPECT_FALSE(pixmap.isNull());
  EXPECT_EQ(applied.at(0).at(0).value<ColorPreset>().name, "Inferno");
}

TEST(ColorPresetsDialog, ApplyUsesTheGivenPresets)
{
  ColorPreset custom;
  custom.name = "Two Tone";
  custom.rgbPoints = { 0.0f, 1.0f, 0.0f, 0.0f, 1.0f, 0.0f, 0.0f, 1.0f };
  ColorPresetsDialog dialog;
  dialog.setPresets({ custom });
  EXPECT_EQ(dialog.listedPresetNames(), QStringList{ "Two Tone" });
  QSignalSpy selected(&dialog, &ColorPresetsDialog::presetSelected);
  ASSERT_TRUE(dialog.selectPreset("Two Tone"));
  dialog.applySelectedPreset();
  ASSERT_EQ(selected.count(), 1);
  EXPECT_EQ(selected.at(0).at(0).value<ColorPreset>(), custom);
}

TEST(ColorPresetsDialog, RestoreDefaultButtonSignals)
{
  ColorPresetsDialog dialog;
  QSignalSpy spy(&dialog, &ColorPresetsDialog::restoreDefaultPreset);
  auto* restore = dialog.findChild<QPushButton*>("restoreDefaultButton");
  ASSERT_NE(restore, nullptr);
  restore->click();
  EXPECT_EQ(spy.count(), 1);
}

TEST(ColorPresetsDialog, NanColourEditedByTheUserIsSignalled)
{
  ColorPresetsDialog dialog;
  QSignalSpy spy(&dialog, &ColorPresetsDialog::nanColorChanged);
  dialog.setNanColor(QColor(0, 128, 0));
  EXPECT_EQ(dialog.nanColor(), QColor(0, 128, 0));
  EXPECT_EQ(spy.count(), 0);

  dialog.nanColorButton()->setColorChooser([](const QColor&, QWidget*)
                                           { return QColor(12, 34, 56); });
  dialog.nanColorButton()->click();
  ASSERT_EQ(spy.count(), 1);
  EXPECT_EQ(spy.at(0).at(0).value<QColor>(), QColor(12, 34, 56));
  EXPECT_EQ(dialog.nanColor(), QColor(12, 34, 56));
}

TEST(ColorPresetsDialog, PreviewFollowsTheMap)
{
  const QImage gray =
    ColorPresetsDialog::PreviewPixmap(*KXColorPresets::Find("Grayscale"), QSize(100, 4)).toImage();
  EXPECT_LT(QColor(gray.pixel(0, 1)).value(), 10);
  EXPECT_GT(QColor(gray.pixel(99, 1)).value(), 245);
  const int middle = QColor(gray.pixel(50, 1)).value();
  EXPECT_GT(middle, 100);
  EXPECT_LT(middle, 155);

  const QImage set1 = ColorPresetsDialog::PreviewPixmap(
                        *KXColorPresets::Find("Brewer Qualitative Set1"), QSize(90, 4))
                        .toImage();
  EXPECT_EQ(QColor(set1.pixel(4, 1)), QColor(0xe4, 0x1a, 0x1c));
  EXPECT_EQ(QColor(set1.pixel(14, 1)), QColor(0x37, 0x7e, 0xb8));
  EXPECT_EQ(QColor(set1.pixel(85, 1)), QColor(0x99, 0x99, 0x99));
}
