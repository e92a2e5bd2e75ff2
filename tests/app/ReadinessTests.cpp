#include <gmock/gmock.h>

#include <QAbstractButton>
#include <QLabel>
#include <fstream>

#include "app/AppDelegateTest.h"
#include "app/EventWait.h"
#include "hotkeys/HotKeyCenter.h"
#include "settings/ConfigStore.h"
#include "settings/Settings.h"

namespace tessaspaces {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

constexpr auto controlOption = KeyCombo::control | KeyCombo::option;

class ReadinessTest : public AppDelegateTest {
 protected:
  /// What stands in the largest letters.
  QString heading() {
    const QLabel* largest = nullptr;
    for (const QLabel* label : launchWindow()->findChildren<QLabel*>()) {
      if (largest == nullptr || label->font().pointSizeF() > largest->font().pointSizeF()) largest = label;
    }
    return largest != nullptr ? largest->text() : QString();
  }
  void click(const QString& button) {
    auto* found = launchWindow()->findChild<QAbstractButton*>(button);
    ASSERT_NE(found, nullptr) << button.toStdString();
    found->click();
    sim->time().runUntilIdle();
    // The buttons that it replaced go.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
};

TEST_F(ReadinessTest, WaitsForAWindowManager) {
  sim->setFinding({SessionFact::windowManager, false, ""});
  launch();
  EXPECT_EQ(delegate->statusItem(), nullptr);
  ASSERT_NE(launchWindow(), nullptr) << "after the time that one may take";
  sim->setFinding({SessionFact::windowManager, true, "Sample"});
  world().setWindowManager("Sample");
  sim->time().runUntilIdle();
  EXPECT_NE(delegate->statusItem(), nullptr);
  EXPECT_TRUE(sim->pressKey({KeyCombo::arrowKeyCodes[1], controlOption}));
  EXPECT_TRUE(waitFor([&] { return launchWindow() == nullptr; })) << "it has nothing more to say";
}

TEST_F(ReadinessTest, AHiddenWaitCanBeSeenAgain) {
  sim->setFinding({SessionFact::windowManager, false, ""});
  sim->takeKey({KeyCombo::arrowKeyCodes[1], controlOption});
  launch();
  ASSERT_NE(launchWindow(), nullptr);
  launchWindow()->close();
  EXPECT_TRUE(waitFor([&] { return launchWindow() == nullptr; }));
  delegate->applicationShouldHandleReopen();
  EXPECT_NE(launchWindow(), nullptr) << "there is no icon yet";

  takeLog();
  sim->setFinding({SessionFact::windowManager, true, "Sample"});
  world().setWindowManager("Sample");
  sim->time().runUntilIdle();
  int errors = 0;
  for (const auto& line : takeLog()) errors += line.starts_with("[ERROR]") ? 1 : 0;
  EXPECT_EQ(errors, 1) << "the keys are registered once";
}

TEST_F(ReadinessTest, DoesNotPretendInAForeignSession) {
  sim->setFinding({SessionFact::nativeSession, false, "wayland-0"});
  launch();
  ASSERT_NE(launchWindow(), nullptr);
  EXPECT_EQ(delegate->statusItem(), nullptr);
  EXPECT_EQ(HotKeyCenter::shared().registeredCount(), 0);
  LaunchWindowController::shared().continueAnyway();
  LaunchWindowController::shared().continueAnyway();
  EXPECT_NE(delegate->statusItem(), nullptr);
  EXPECT_EQ(HotKeyCenter::shared().registeredCount(), 14);
}

TEST_F(ReadinessTest, ClosingTheWindowOfAForeignSessionQuits) {
  sim->setFinding({SessionFact::nativeSession, false, "wayland-0"});
  launch();
  ASSERT_NE(launchWindow(), nullptr);
  QTimer::singleShot(0, launchWindow(), [this] { launchWindow()->reject(); });
  QTimer::singleShot(10000, qApp, [] { QCoreApplication::exit(EXIT_FAILURE); });
  EXPECT_EQ(QCoreApplication::exec(), EXIT_SUCCESS) << "nothing would be left of the program to see";
}

TEST_F(ReadinessTest, TheHeadingSaysWhatIsSo) {
  const KeyCombo nine{KeyCombo::digitKeyCodes[8], controlOption};
  struct Case {
    const char* name;
    std::function<void()> arrange;
    std::string_view heading;
  };
  const Case cases[] = {
      {"gone on in a foreign session",
       [&] {
         sim->setFinding({SessionFact::nativeSession, false, "wayland-0"});
       },
       "launch.heading.foreign"},
      {"only the configuration", [&] { std::ofstream(folder / "config.json") << "{"; }, "launch.heading.partly"},
      {"no such key", [&] { sim->takeKey(nine, 2); }, "launch.heading.partly"},
      {"a taken key", [&] { sim->takeKey(nine); }, "launch.heading.taken"},
  };
  for (const Case& each : cases) {
    start("left 1000x800 | A* B C D");
    ConfigStore::useDirectory(folder);
    each.arrange();
    launch();
    LaunchWindowController::shared().continueAnyway();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    delegate->applicationShouldHandleReopen();
    if (launchWindow() == nullptr) LaunchWindowController::shared().refresh();
    EXPECT_EQ(heading(), localized(each.heading)) << each.name;
    delegate.reset();
    delete launchWindow();
    std::filesystem::remove(folder / "config.json");
  }
}

TEST_F(ReadinessTest, ClashesThatTheUserLeavesAreNoNewsAgain) {
  const auto nextRun = [this] {
    delegate.reset();
    delete launchWindow();
    launch();
    return launchWindow() != nullptr;
  };
  sim->takeKey({KeyCombo::arrowKeyCodes[0], controlOption});
  EXPECT_TRUE(nextRun());
  launchWindow()->reject();
  EXPECT_TRUE(nextRun()) << "closed, but not as done";
  launchWindow()->accept();
  EXPECT_FALSE(nextRun());
  delegate->applicationShouldHandleReopen();
  EXPECT_NE(launchWindow(), nullptr) << "whoever comes back is told";
  sim->takeKey({KeyCombo::arrowKeyCodes[1], controlOption});
  EXPECT_TRUE(nextRun()) << "another key is news";
}

TEST_F(ReadinessTest, TakenKeysCanBeExchangedOnTheSpot) {
  for (const auto key : {KeyCombo::arrowKeyCodes[0], KeyCombo::arrowKeyCodes[1]}) sim->takeKey({key, controlOption});
  sim->takeKey({KeyCombo::arrowKeyCodes[2], KeyCombo::command});  // what would be suggested first
  launch();
  ASSERT_NE(launchWindow(), nullptr);
  QString shown;
  for (const QLabel* label : launchWindow()->findChildren<QLabel*>()) shown += label->text() + "\n";
  EXPECT_THAT(shown.toStdString(), testing::HasSubstr("⌃⌥←  ⌃⌥→ are already used by another program"));

  click("suggest0");
  const auto suggested = Settings::modifiers(HotkeyGroup::changeSpace);
  EXPECT_EQ(suggested, KeyCombo::control | KeyCombo::command);
  EXPECT_THAT(HotKeyCenter::shared().failures(), IsEmpty());
  EXPECT_TRUE(sim->pressKey({KeyCombo::arrowKeyCodes[0], suggested}));

  // Back to keys that are still taken: said again, and free once the other program lets go.
  click(QStringLiteral("modifier0.%1").arg(KeyCombo::command));
  click(QStringLiteral("modifier0.%1").arg(KeyCombo::option));
  click("try0");
  EXPECT_THAT(HotKeyCenter::shared().failures(), SizeIs(2));
  for (const auto key : {KeyCombo::arrowKeyCodes[0], KeyCombo::arrowKeyCodes[1]}) sim->releaseKey({key, controlOption});
  click("try0");
  EXPECT_THAT(HotKeyCenter::shared().failures(), IsEmpty());
}

TEST_F(ReadinessTest, AnotherWindowManagerMayLeaveTheKeysFree) {
  const KeyCombo left{KeyCombo::arrowKeyCodes[0], controlOption};
  sim->takeKey(left);
  launch();
  EXPECT_FALSE(sim->pressKey(left));
  sim->releaseKey(left);
  world().setWindowManager(std::nullopt);
  world().setWindowManager("Another");
  sim->time().runUntilIdle();
  EXPECT_TRUE(sim->pressKey(left));
}

}  // namespace
}  // namespace tessaspaces
