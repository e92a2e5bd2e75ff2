#include "contract/ContractTest.h"

namespace tessaspaces::contract {

namespace {

ClientWindow of(std::int32_t pid, int desktop) {
  ClientWindow window;
  window.title = "of " + std::to_string(pid);
  window.pid = pid;
  window.desktop = desktop;
  return window;
}

}  // namespace

TEST_P(Contract, TheFrontmostApplicationFollowsTheFocus) {
  start();
  const auto first = driver->open(of(5001, 0));
  const auto second = driver->open(of(5002, 0));
  for (const auto& [window, pid] : {std::pair{first, 5001}, std::pair{second, 5002}, std::pair{first, 5001}}) {
    driver->focus(window);
    EXPECT_TRUE(driver->until([&, wanted = pid] {
      const auto frontmost = platform().applications().frontmost();
      return frontmost && frontmost->pid == wanted;
    })) << pid;
  }
  driver->close(first);
  EXPECT_TRUE(driver->until([&] {
    const auto frontmost = platform().applications().frontmost();
    return !frontmost || frontmost->pid != 5001;
  }));
}

TEST_P(Contract, ApplicationsAreKnownByPidAndIdentifier) {
  start();
  driver->open(of(5001, 0));
  driver->open(of(5002, 2));
  auto& applications = platform().applications();
  for (const auto pid : {5001, 5002}) {
    const auto running = applications.running(pid);
    ASSERT_TRUE(running.has_value()) << pid;
    EXPECT_EQ(running->pid, pid);
    EXPECT_EQ(running->bundleIdentifier, "sample");
    EXPECT_FALSE(running->localizedName.empty());
  }
  std::set<std::int32_t> pids;
  for (const auto& application : applications.runningWithBundleIdentifier("sample")) pids.insert(application.pid);
  EXPECT_THAT(pids, testing::ElementsAre(5001, 5002));
  EXPECT_FALSE(applications.running(5999).has_value());
  EXPECT_TRUE(applications.runningWithBundleIdentifier("no.such.thing").empty());
  EXPECT_FALSE(applications.activate(5999));
  EXPECT_EQ(applications.icon(5999), nullptr);
}

TEST_P(Contract, ActivatingGoesToTheDesktopOfTheApplicationsWindow) {
  start();
  const auto here = driver->open(of(5001, 0));
  driver->open(of(5002, 2));
  driver->focus(here);
  const auto all = spaces();
  Listener announced(server().spacesChanged);
  for (const auto& [pid, space] : {std::pair{5002, all[2]}, std::pair{5001, all[0]}}) {
    announced.heard();
    EXPECT_TRUE(platform().applications().activate(pid));
    EXPECT_TRUE(driver->until([&, wanted = pid, target = space] {
      const auto frontmost = platform().applications().frontmost();
      return current() == target && announced.hears() && frontmost && frontmost->pid == wanted;
    })) << pid
        << ": on space " << current() << ", frontmost "
        << platform().applications().frontmost().value_or(ApplicationInfo{}).pid << ", announced " << announced.hears();
  }
}

}  // namespace tessaspaces::contract
