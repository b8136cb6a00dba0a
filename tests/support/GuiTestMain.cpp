// Test driver for suites that need a QApplication (widgets, signals, event loop).
#include <utils/GuiProcess.hpp>

#include <gtest/gtest.h>

#include <QtWidgets/QApplication>

#include <csignal>
#include <cstdlib>
#include <execinfo.h>
#include <unistd.h>

namespace
{
// A crash in a GUI test prints its stack, since the sandbox has no debugger.
void printStackAndDie(int signal)
{
  void* frames[64];
  const int count = backtrace(frames, 64);
  backtrace_symbols_fd(frames, count, STDERR_FILENO);
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}
} // namespace

int main(int argc, char** argv)
{
  qputenv("QT_SCALE_FACTOR", "1");
  std::signal(SIGSEGV, printStackAndDie);
  std::signal(SIGABRT, printStackAndDie);
  KXVtk::utils::PrepareGuiProcess();
  QApplication app(argc, argv);
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
