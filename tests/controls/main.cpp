#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv) {
  // No test needs a display; who wants to see one says so.
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  testing::InitGoogleTest(&argc, argv);
  QApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
