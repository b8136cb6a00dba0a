#include "SettingsFileGuard.hpp"

#include "QtPrinters.hpp"

#include <KXComponents/KXColorPresets.hpp>
#include <KXComponents/KXPreferences.hpp>
#include <KXComponents/QtKXSettings.hpp>

#include <QtCore/QSettings>
#include <QtTest/QSignalSpy>

#include <gtest/gtest.h>

using kx::core::ColorTableUtilities::ColorPreset;

namespace
{
class KXPreferencesTest : public ::testing::Test
{
protected:
  void SetUp() override { KXPreferences::resetToDefaults(); }
  void TearDown() override { KXPreferences::resetToDefaults(); }

  kxtest::SettingsFileGuard m_Settings;
};
} // namespace

TEST_F(KXPreferencesTest, BuiltInDefaults)
{
  const ColorPreset preset = KXPreferences::getDefaultColorPreset();
  EXPECT_EQ(preset.name, "Cool to Warm");
  EXPECT_EQ(preset, *KXColorPresets::Find("Cool to Warm"));
  EXPECT_GT(preset.rgbPoints.size(), 8u);

  const ColorPreset indexed = KXPreferences::getDefaultIndexedColorPreset();
  EXPECT_EQ(indexed.name, KXPreferences::k_DefaultIndexedColorPresetName.toStdString());
  EXPECT_TRUE(kx::core::ColorTableUtilities::IsValidIndexedPreset(indexed));
  EXPECT_EQ(indexed.indexedColors.size(), 36u);

  EXPECT_EQ(KXPreferences::getDefaultRenderWindowBackground(), QColor(52, 57, 68));
  EXPECT_FALSE(KXPreferences::getCameraParallelProjDefault());
  EXPECT_EQ(KXPreferences::getOrientationMarkerText(),
            (QStringList{ "X", "-X", "Y", "-Y", "Z", "-Z" }));
  EXPECT_FALSE(KXPreferences::getDisableDecimation());
  EXPECT_TRUE(KXPreferences::getAllowTooManyIndexedValues());
  EXPECT_TRUE(KXPreferences::getAllowMoreValuesThanIndexedColors());
}

TEST_F(KXPreferencesTest, ValuesPersistAcrossWriteAndRead)
{
  ColorPreset viridis = *KXColorPresets::Find("Viridis");
  ColorPreset set1 = *KXColorPresets::Find("Brewer Qualitative Set1");
  KXPreferences::setDefaultColorPreset(viridis);
  KXPreferences::setDefaultIndexedColorPreset(set1);
  KXPreferences::setDefaultRenderWindowBackground(QColor(1, 2, 3));
  KXPreferences::setCameraParallelProjDefault(true);
  KXPreferences::setOrientationMarkerText({ "E", "W", "N", "S", "Up", "Down" });
  KXPreferences::setDisableDecimation(true);
  KXPreferences::setAllowTooManyIndexedValues(false);
  KXPreferences::setAllowMoreValuesThanIndexedColors(false);
  // an invalid colour is no background
  KXPreferences::setDefaultRenderWindowBackground(QColor());
  KXPreferences::writeSettings();
  QSettings raw(m_Settings.path(), QSettings::IniFormat);
  EXPECT_EQ(raw.childGroups(), QStringList{ "Preferences" });
  EXPECT_TRUE(raw.value("Preferences/disable_decimation").toBool());
  EXPECT_TRUE(raw.value("Preferences/camera_parallel_projection").toBool());

  KXPreferences::resetToDefaults();
  ASSERT_EQ(KXPreferences::getDefaultColorPreset().name, "Cool to Warm");

  KXPreferences::readSettings();
  EXPECT_EQ(KXPreferences::getDefaultColorPreset(), viridis);
  EXPECT_EQ(KXPreferences::getDefaultIndexedColorPreset(), set1);
  EXPECT_EQ(KXPreferences::getDefaultRenderWindowBackground(), QColor(1, 2, 3));
  EXPECT_TRUE(KXPreferences::getCameraParallelProjDefault());
  EXPECT_EQ(KXPreferences::getOrientationMarkerText(),
            (QStringList{ "E", "W", "N", "S", "Up", "Down" }));
  EXPECT_TRUE(KXPreferences::getDisableDecimation());
  EXPECT_FALSE(KXPreferences::getAllowTooManyIndexedValues());
  EXPECT_FALSE(KXPreferences::getAllowMoreValuesThanIndexedColors());
}

TEST_F(KXPreferencesTest, MissingOrBrokenKeysKeepCurrentValues)
{
  {
    QtKXSettings settings;
    settings.beginGroup("Preferences");
    settings.setValue(KXPreferences::k_DisableDecimationKey, true);
    settings.setValue(KXPreferences::k_ColorPresetKey, QString("{not json"));
    settings.setValue(KXPreferences::k_OrientationMarkerTextKey, QStringList{ "only", "two" });
  }
  KXPreferences::setCameraParallelProjDefault(true);
  KXPreferences::readSettings();
  EXPECT_TRUE(KXPreferences::getDisableDecimation());
  EXPECT_TRUE(KXPreferences::getCameraParallelProjDefault());
  EXPECT_EQ(KXPreferences::getDefaultColorPreset().name, "Cool to Warm");
  EXPECT_EQ(KXPreferences::getOrientationMarkerText(),
            KXPreferences::DefaultOrientationMarkerText());
  EXPECT_EQ(KXPreferences::getDefaultRenderWindowBackground(), KXPreferences::DefaultBackground());
}

TEST_F(KXPreferencesTest, OrientationMarkerTextSignalsOnlyRealChanges)
{
  QSignalSpy spy(KXPreferences::Instance(), &KXPreferences::orientationMarkerTextChanged);
  const QStringList texts{ "R", "L", "A", "P", "S", "I" };
  KXPreferences::setOrientationMarkerText(texts);
  ASSERT_EQ(spy.count(), 1);
  EXPECT_EQ(spy.at(0).at(0).toStringList(), texts);
  EXPECT_EQ(KXPreferences::getOrientationMarkerText(), texts);

  KXPreferences::setOrientationMarkerText(texts);
  EXPECT_EQ(spy.count(), 1);

  // Six texts are needed, one per axis direction.
  KXPreferences::setOrientationMarkerText({ "a", "b", "c" });
  EXPECT_EQ(spy.count(), 1);
  EXPECT_EQ(KXPreferences::getOrientationMarkerText(), texts);

  KXPreferences::resetToDefaults();
  ASSERT_EQ(spy.count(), 2);
  EXPECT_EQ(spy.at(1).at(0).toStringList(), KXPreferences::DefaultOrientationMarkerText());

  // reading changed texts signals too
  QtKXSettings().setValue("Preferences/orientation_marker_text",
                          QStringList{ "1", "2", "3", "4", "5", "6" });
  KXPreferences::readSettings();
  ASSERT_EQ(spy.count(), 3);
  EXPECT_EQ(spy.at(2).at(0).toStringList(), (QStringList{ "1", "2", "3", "4", "5", "6" }));
}
