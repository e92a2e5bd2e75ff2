#include <gtest/gtest.h>

#include "app/ScreenLock.h"

namespace tessaspaces {
namespace {

TEST(ScreenLock, FindsTheSessionsOwnObject) {
  const auto object = [](std::string_view id) { return ScreenLock::pathOfSession(id).toStdString(); };
  const std::string sessions = "/org/freedesktop/login1/session/";
  EXPECT_EQ(object("2"), sessions + "_32");
  EXPECT_EQ(object("42"), sessions + "_342");
  EXPECT_EQ(object("c1"), sessions + "c1");
  EXPECT_EQ(object("c_1/\xC3\x84"), sessions + "c_5f1_2f_c3_84");
  EXPECT_EQ(object(""), "") << "or it would be everybody's";
}

}  // namespace
}  // namespace tessaspaces
