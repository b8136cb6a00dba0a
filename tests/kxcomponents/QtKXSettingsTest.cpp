#include "SettingsFileGuard.hpp"

#include "QtPrinters.hpp"

#include <KXComponents/QtKXSettings.hpp>

#include <QtCore/QFileInfo>
#include <QtCore/QSettings>

#include <gtest/gtest.h>

TEST(QtKXSettings, UsesTheFileSetForTheProcessOrAnIniFileNamedForTheLibrary)
{
  kxtest::SettingsFileGuard guard;
  EXPECT_EQ(QtKXSettings::FilePath(), guard.path());
  {
    QtKXSettings settings;
    settings.setValue("answer", 42);
  }
  ASSERT_TRUE(QFileInfo::exists(guard.path()));
  QSettings raw(guard.path(), QSettings::IniFormat);
  EXPECT_EQ(raw.value("answer").toInt(), 42);

  // An empty path means "back to the default location".
  QtKXSettings::SetFilePath(QString());
  const QString defaultPath = QtKXSettings::FilePath();
  QtKXSettings::SetFilePath(guard.path());
  EXPECT_TRUE(defaultPath.endsWith("/KXVtkLib.ini")) << defaultPath.toStdString();
  EXPECT_NE(defaultPath, guard.path());
}

TEST(QtKXSettings, NestedGroupsRoundTripThroughTheFile)
{
  kxtest::SettingsFileGuard guard;
  {
    QtKXSettings settings;
    settings.beginGroup("VisualizationSettings");
    settings.beginGroup("RepresentationSettings");
    EXPECT_EQ(settings.group(), "VisualizationSettings/RepresentationSettings");
    settings.setValue("opacity_percent", 75);
    settings.setValue("name", QString("Surface View"));
    settings.setValue("flags", QStringList{ "a", "b", "c" });
    settings.endGroup();
    settings.endGroup();
    EXPECT_EQ(settings.group(), QString());
  }
  QtKXSettings reader;
  EXPECT_EQ(reader.value("VisualizationSettings/RepresentationSettings/opacity_percent").toInt(),
            75);
  reader.beginGroup("VisualizationSettings");
  EXPECT_EQ(reader.childGroups(), QStringList{ "RepresentationSettings" });
  reader.beginGroup("RepresentationSettings");
  EXPECT_EQ(reader.value("name").toString(), "Surface View");
  EXPECT_EQ(reader.value("flags").toStringList(), (QStringList{ "a", "b", "c" }));
  QStringList keys = reader.childKeys();
  keys.sort();
  EXPECT_EQ(keys, (QStringList{ "flags", "name", "opacity_percent" }));
}

TEST(QtKXSettings, ContainsOnlyKeysThatWereWrittenAndRemoveDropsOne)
{
  kxtest::SettingsFileGuard guard;
  QtKXSettings settings;
  settings.beginGroup("G");
  settings.setValue("present", false);
  EXPECT_TRUE(settings.contains("present"));
  EXPECT_FALSE(settings.contains("missing"));
  EXPECT_EQ(settings.value("missing", 7).toInt(), 7);
  EXPECT_FALSE(settings.value("missing").isValid());
  // A key of the same name in another group is not this group's key.
  settings.endGroup();
  EXPECT_FALSE(settings.contains("present"));
  EXPECT_TRUE(settings.contains("G/present"));

  settings.setValue("keep", 1);
  settings.setValue("drop", 2);
  settings.remove("drop");
  EXPECT_FALSE(settings.contains("drop"));
  EXPECT_TRUE(settings.contains("keep"));
  // An empty key is not a request to clear everything.
  settings.remove(QString());
  EXPECT_TRUE(settings.contains("keep"));
}

TEST(QtKXSettings, ClearGroupClearsOnlyItsGroup)
{
  kxtest::SettingsFileGuard guard;
  {
    QtKXSettings settings;
    settings.setValue("top", "t");
    settings.setValue("Other/key", "o");
    settings.setValue("Target/key", "x");
    settings.setValue("Target/Sub/deep", "y");
    settings.setValue("TargetSibling/key", "s");
    settings.beginGroup("Target");
    settings.clearGroup();
    EXPECT_TRUE(settings.childKeys().isEmpty());
    EXPECT_TRUE(settings.childGroups().isEmpty());
    settings.endGroup();
  }
  QtKXSettings reader;
  EXPECT_FALSE(reader.contains("Target/key"));
  EXPECT_FALSE(reader.contains("Target/Sub/deep"));
  EXPECT_EQ(reader.value("top").toString(), "t");
  EXPECT_EQ(reader.value("Other/key").toString(), "o");
  EXPECT_EQ(reader.value("TargetSibling/key").toString(), "s");
}
