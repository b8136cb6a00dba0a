#include "KXComponents/QtKXSettings.hpp"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QMutex>
#include <QtCore/QMutexLocker>
#include <QtCore/QStandardPaths>
#include <QtCore/QStringList>

namespace
{
QMutex s_PathMutex;
QString s_FilePath; // empty: the default location below

QString DefaultFilePath()
{
  QString folder = QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation);
  if (folder.isEmpty())
  {
    folder = QDir::homePath() + QStringLiteral("/.config/KXVtkLib");
  }
  return folder + QStringLiteral("/KXVtkLib.ini");
}
} // namespace

QtKXSettings::QtKXSettings()
  : m_Settings(std::make_unique<QSettings>(FilePath(), QSettings::IniFormat))
{
}

QtKXSettings::~QtKXSettings()
{
  // Write pending changes now rather than at some later event-loop turn, so a
  // reader created right after this one sees them.
  m_Settings->sync();
}

void QtKXSettings::SetFilePath(const QString& filePath)
{
  QMutexLocker lock(&s_PathMutex);
  s_FilePath = filePath;
}

QString QtKXSettings::FilePath()
{
  QMutexLocker lock(&s_PathMutex);
  return s_FilePath.isEmpty() ? DefaultFilePath() : s_FilePath;
}

void QtKXSettings::beginGroup(const QString& prefix)
{
  m_Settings->beginGroup(prefix);
}

void QtKXSettings::endGroup()
{
  m_Settings->endGroup();
}

QString QtKXSettings::group() const
{
  return m_Settings->group();
}

bool QtKXSettings::contains(const QString& key) const
{
  return m_Settings->contains(key);
}

QVariant QtKXSettings::value(const QString& key, const QVariant& defaultValue) const
{
  return m_Settings->value(key, defaultValue);
}

void QtKXSettings::setValue(const QString& key, const QVariant& value)
{
  m_Settings->setValue(key, value);
}

void QtKXSettings::remove(const QString& key)
{
  // QSettings::remove("") would wipe the whole current group; an empty key
  // is far more likely a caller's mistake than a request for clearGroup().
  if (key.isEmpty())
  {
    return;
  }
  m_Settings->remove(key);
}

void QtKXSettings::clearGroup()
{
  // An empty key removes every key and subgroup below the current group, and
  // only those.
  m_Settings->remove(QString());
}

QStringList QtKXSettings::childKeys() const
{
  return m_Settings->childKeys();
}

QStringList QtKXSettings::childGroups() const
{
  return m_Settings->childGroups();
}

void QtKXSettings::sync()
{
  m_Settings->sync();
}
