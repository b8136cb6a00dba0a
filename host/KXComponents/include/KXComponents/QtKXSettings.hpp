#pragma once

#include "KXComponents/kxcomponents_export.h"

#include <QtCore/QSettings>
#include <QtCore/QString>
#include <QtCore/QVariant>

#include <memory>

/**
 * The host's settings store: nested groups of keys over an INI file. The file
 * location is process-wide and settable, so tests write to a temporary file and
 * never touch the user's settings.
 */
class KXCOMPONENTS_EXPORT QtKXSettings
{
public:
  QtKXSettings();
  ~QtKXSettings();
  QtKXSettings(const QtKXSettings&) = delete;
  QtKXSettings& operator=(const QtKXSettings&) = delete;

  /** The INI file every new QtKXSettings uses; by default one in the user's config folder. */
  static void SetFilePath(const QString& filePath);
  static QString FilePath();

  void beginGroup(const QString& prefix);
  void endGroup();
  QString group() const;

  bool contains(const QString& key) const;
  QVariant value(const QString& key, const QVariant& defaultValue = QVariant()) const;
  void setValue(const QString& key, const QVariant& value);
  void remove(const QString& key);
  /** Removes every key and subgroup of the current group. */
  void clearGroup();
  QStringList childKeys() const;
  QStringList childGroups() const;
  void sync();

private:
  std::unique_ptr<QSettings> m_Settings;
};
