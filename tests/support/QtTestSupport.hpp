#pragma once

// Helpers for tests that run with a QApplication: settings of their own, a
// host pipeline run, and ways to let the event loop work.
#include "TestSupport.hpp"

#include <KX/IPipelineController.hpp>
#include <KXComponents/KXPreferences.hpp>
#include <KXComponents/QtKXSettings.hpp>

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QEvent>
#include <QtCore/QString>

#include <filesystem>
#include <utility>

namespace kxtest
{
/** Settings and preferences of the test's own, so that defaults on the machine don't leak in. */
class ScopedSettings
{
public:
  ScopedSettings()
    : m_Previous(QtKXSettings::FilePath())
  {
    QtKXSettings::SetFilePath(QString::fromStdString((m_Dir / "settings.ini").string()));
    KXPreferences::resetToDefaults();
  }
  ~ScopedSettings()
  {
    QtKXSettings::SetFilePath(m_Previous);
    KXPreferences::resetToDefaults();
  }
  ScopedSettings(const ScopedSettings&) = delete;
  ScopedSettings& operator=(const ScopedSettings&) = delete;

  const TempDir& dir() const { return m_Dir; }

private:
  TempDir m_Dir;
  QString m_Previous;
};

/** A run of a host pipeline. */
class FakeController : public KX::IPipelineController
{
public:
  FakeController(QString name, QString uuid, QString file = "/tmp/pipeline.kxpipe")
    : m_Name(std::move(name))
    , m_Uuid(std::move(uuid))
    , m_File(std::move(file))
  {
  }
  QString getPipelineName() const override { return m_Name; }
  QString getPipelineFilePath() const override { return m_File; }
  QString getPipelineUuid() const override { return m_Uuid; }

private:
  QString m_Name;
  QString m_Uuid;
  QString m_File;
};

/** Lets queued calls, paint events and deferred deletions run; several rounds so chained posts
 * settle too. */
inline void pump()
{
  for (int i = 0; i < 5; ++i)
  {
    QCoreApplication::sendPostedEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
  }
}

/** Runs the event loop until the condition holds or the time is up. */
template<typename Condition>
bool waitFor(Condition condition, int milliseconds = 5000)
{
  QElapsedTimer timer;
  timer.start();
  while (!condition() && timer.elapsed() < milliseconds)
    QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
  return condition();
}

inline QString qpath(const std::filesystem::path& path)
{
  return QString::fromStdString(path.string());
}
} // namespace kxtest
