#include <gtest/gtest.h>

#include <QApplication>
#include <cstdlib>

int main(int argc, char** argv) {
  // Windows are made but shown to nobody, and no session of the machine's user is touched.
  setenv("QT_QPA_PLATFORM", "offscreen", 1);
  setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
  setenv("QT_NO_GLIB", "1", 1);  // as the program does
  testing::InitGoogleTest(&argc, argv);
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  return RUN_ALL_TESTS();
}
