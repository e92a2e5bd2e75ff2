#include <gtest/gtest.h>

#include <QApplication>
#include <cstdlib>

#include "ui/x11/PanelTest.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (GTEST_FLAG_GET(list_tests)) return RUN_ALL_TESTS();
  // Qt keeps to the display that it started on, so that all cases of one run share a server.
  const tessaspaces::harness::XServer server({.width = 1280, .height = 800, .monitors = tessaspaces::twoMonitors});
  tessaspaces::PanelTest::server = &server;
  setenv("DISPLAY", server.display().c_str(), 1);
  setenv("QT_QPA_PLATFORM", "xcb", 1);
  setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
  setenv("QT_NO_GLIB", "1", 1);  // as the program does
  setenv("LANG", "C.UTF-8", 1);
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  return RUN_ALL_TESTS();
}
