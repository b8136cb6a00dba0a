// Test driver for suites that need a QApplication (widgets, signals, event loop).
#include <utils/GuiProcess.hpp>

#include <gtest/gtest.h>

#include <QtWidgets/QApplication>

#include <cstdlib>

int main(int argc, char** argv)
{
  qputenv("QT_SCALE_FACTOR", "1");
  KXVtk::utils::PrepareGuiProcess();
  QApplication app(argc, argv);
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
