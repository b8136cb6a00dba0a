#pragma once

#include "TestSupport.hpp"

#include <KXComponents/QtKXSettings.hpp>

#include <QtCore/QString>

namespace kxtest
{
/**
 * Points QtKXSettings at an INI file in a fresh temporary folder for the
 * lifetime of the guard, so no test reads or writes the user's settings.
 */
class SettingsFileGuard
{
public:
  SettingsFileGuard()
    : m_Previous(QtKXSettings::FilePath())
    , m_Path(QString::fromStdString((m_Dir / "settings.ini").string()))
  {
    QtKXSettings::SetFilePath(m_Path);
  }
  ~SettingsFileGuard() { QtKXSettings::SetFilePath(m_Previous); }
  SettingsFileGuard(const SettingsFileGuard&) = delete;
  SettingsFileGuard& operator=(const SettingsFileGuard&) = delete;

  const QString& path() const { return m_Path; }

private:
  TempDir m_Dir;
  QString m_Previous;
  QString m_Path;
};
} // namespace kxtest
