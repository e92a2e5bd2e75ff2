#include <gmock/gmock.h>

#include <QAbstractButton>
#include <fstream>

#include "app/AppDelegate.h"
#include "app/EventWait.h"
#include "app/LaunchWindowController.h"
#include "app/Text.h"
#include "hotkeys/HotKeyCenter.h"
#include "settings/ConfigStore.h"
#include "settings/Notifications.h"
#include "settings/Settings.h"
#include "support/CoreTest.h"

namespace tessaspaces {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

constexpr auto controlOption = KeyCombo::control | KeyCombo::option;

/// Everything that the shell asks of the parts that it drives, in order.
using Calls = std::vector<std::string>;

class FakeGrid final : public OverviewGrid {
 public:
  explicit FakeGrid(Calls& calls) : calls_(calls) { calls_.emplace_back("made"); }
  [[nodiscard]] bool isVisible() const override { return visible_; }
  void show(const ScreenRef& focusedOn) override {
    visible_ = true;
    calls_.push_back("show " + focusedOn->name);
  }
  void closeAnimated() override {
    visible_ = false;
    calls_.emplace_back("close");
  }
  void toggleGridView() override { calls_.emplace_back("toggle"); }
  void reload() override { calls_.emplace_back("reload"); }

 private:
  Calls& calls_;
  bool visible_ = false;
};

class FakeSettings final : public SettingsWindow {
 public:
  void show() override { ++shown; }
  int shown = 0;
};

class FakeUpdates final : public UpdateController {
 public:
  explicit FakeUpdates(Calls& calls) : calls_(calls) {}
  void checkOnLaunchIfEnabled() override { calls_.emplace_back("check on launch"); }
  void checkForUpdates() override { calls_.emplace_back("check"); }

 private:
  Calls& calls_;
};

class AppDelegateTest : public CoreTest {
 protected:
  AppDelegateTest() {
    start("left 1000x800 | A* B C D ; right 1000x800 | E*");
    rest();
  }
  ~AppDelegateTest() override {
    delegate.reset();
    if (auto* window = LaunchWindowController::shared().window()) delete window;
  }

  void rest() { world().setPointer({500, 400}); }
  AppParts parts() {
    return {[this] { return std::make_unique<FakeGrid>(calls); }, &settings, &updates};
  }
  void launch(AppParts with = {}) {
    delegate = std::make_unique<AppDelegate>(std::move(with));
    delegate->applicationDidFinishLaunching();
    sim->time().runUntilIdle();
  }
  void change(std::string_view notification) {
    Notifications::post(notification);
    sim->time().runUntilIdle();
  }
  Calls titles() {
    Calls all;
    for (const QAction* action : delegate->statusItem()->menu().actions()) {
      all.push_back(action->isSeparator() ? "-" : action->text().toStdString());
    }
    return all;
  }
  void trigger(const char* titleKey) {
    for (QAction* action : delegate->statusItem()->menu().actions()) {
      if (action->text() == localized(titleKey)) return action->trigger();
    }
    ADD_FAILURE() << "no menu item " << titleKey;
  }
  LaunchWindow* launchWindow() { return LaunchWindowController::shared().window(); }
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

  Calls calls;
  FakeSettings settings;
  FakeUpdates updates{calls};
  std::unique_ptr<AppDelegate> delegate;
};

TEST_F(AppDelegateTest, StartsInOrder) {
  launch(parts());
  EXPECT_THAT(calls, ElementsAre("check on launch", "made"));
  const auto log = takeLog();
  ASSERT_THAT(log, SizeIs(testing::Ge(2)));
  EXPECT_EQ(log[0], "[INFO] === tessa⊞spaces start === (config: " + (folder / "config.json").string() + ")");
  EXPECT_EQ(log[1],
            "[DEBUG] HOTKEY: registered — change=⌃⌥+arrows move=off direct=⌃⌥+digits overview=⌥⇧Space toggleView=⌥⇧G");
  EXPECT_EQ(launchWindow(), nullptr) << "nothing to tell, no window";
}

TEST_F(AppDelegateTest, HotKeysFollowTheSettings) {
  put("tessaspaces.hotkey.0", 0);
  put("tessaspaces.hotkey.2", 0);
  launch(parts());
  EXPECT_THAT(takeLog(), Contains("[DEBUG] HOTKEY: registered — change=off move=off direct=off overview=⌥⇧Space "
                                  "toggleView=⌥⇧G"));
  EXPECT_EQ(HotKeyCenter::shared().registeredCount(), 2);
  const KeyCombo overview = Settings::overviewGridCombo();
  calls.clear();
  world().setPointer({1500, 400});
  for (const KeyCombo combo : {overview, Settings::gridViewToggleCombo(), overview}) {
    EXPECT_TRUE(sim->pressKey(combo));
    sim->time().runUntilIdle();
  }
  EXPECT_THAT(calls, ElementsAre("show right", "toggle", "close")) << "on the screen under the pointer";

  Settings::setModifiers(KeyCombo::command, HotkeyGroup::changeSpace);
  Settings::setModifiers(KeyCombo::command | KeyCombo::shift, HotkeyGroup::moveWindow);
  change(Notifications::hotkeysChanged);
  EXPECT_EQ(HotKeyCenter::shared().registeredCount(), 10);
  rest();
  EXPECT_TRUE(sim->pressKey({KeyCombo::arrowKeyCodes[1], KeyCombo::command}));
  sim->time().runUntilIdle();
  EXPECT_EQ(world().currentSpace("left"), world().spaceNamed("B"));

  delegate.reset();
  EXPECT_FALSE(sim->pressKey(overview)) << "no hot key outlives the delegate";
}

TEST_F(AppDelegateTest, WithoutAGridItsKeysAndItsItemAreAbsent) {
  launch();
  EXPECT_THAT(takeLog(), Contains(EndsWith("overview=— toggleView=—")));
  EXPECT_FALSE(sim->pressKey(Settings::overviewGridCombo()));
  EXPECT_THAT(titles(), ElementsAre("tessa⊞spaces", "-", "About tessa⊞spaces", "Licenses", "-", "About Permissions",
                                    "Request Permissions Again", "-", "Quit tessa⊞spaces"));
}

TEST_F(AppDelegateTest, TheMenuFollowsTheLanguageAndKeepsItsItem) {
  launch(parts());
  EXPECT_THAT(titles(), ElementsAre("tessa⊞spaces", "-", "Show Grid", "Settings…", "Check for Updates…", "-",
                                    "About tessa⊞spaces", "Licenses", "-", "About Permissions",
                                    "Request Permissions Again", "-", "Quit tessa⊞spaces"));
  for (const QAction* action : delegate->statusItem()->menu().actions().mid(2)) {
    EXPECT_TRUE(action->isSeparator() || !action->icon().pixmap(16).isNull()) << action->text().toStdString();
  }
  const StatusItem* item = delegate->statusItem();
  const auto english = titles();
  Settings::setLanguage(AppLanguage::czech);
  L10n::reload();
  EXPECT_EQ(delegate->statusItem(), item);
  EXPECT_THAT(titles(), SizeIs(english.size()));
  EXPECT_EQ(titles()[2], L10n::t("menu.showGrid"));
  EXPECT_NE(titles()[2], english[2]);

  calls.clear();
  for (const char* key : {"menu.showGrid", "menu.checkForUpdates", "menu.settings"}) trigger(key);
  EXPECT_THAT(calls, ElementsAre("show left", "check"));
  EXPECT_EQ(settings.shown, 1);
}

TEST_F(AppDelegateTest, RelaunchingBringsAHiddenIconBack) {
  Settings::setHideMenuBarIcon(true);
  launch(parts());
  EXPECT_FALSE(delegate->statusItem()->isVisible());
  takeLog();
  EXPECT_TRUE(delegate->applicationShouldHandleReopen());
  EXPECT_TRUE(delegate->statusItem()->isVisible());
  EXPECT_FALSE(Settings::hideMenuBarIcon());
  const std::string restored = "[INFO] MENU BAR: icon restored by relaunching the app";
  EXPECT_THAT(takeLog(), Contains(restored));
  EXPECT_TRUE(delegate->applicationShouldHandleReopen());
  EXPECT_THAT(takeLog(), Not(Contains(restored)));
  EXPECT_EQ(settings.shown, 2);

  Settings::setHideMenuBarIcon(true);
  change(Notifications::menuBarVisibilityChanged);
  EXPECT_FALSE(delegate->statusItem()->isVisible());
}

TEST_F(AppDelegateTest, HotCornersActOnThePrimaryDisplayAlone) {
  launch(parts());
  calls.clear();
  world().clearCalls();
  const auto moveTo = [this](Point pointer) {
    world().setPointer(pointer);
    sim->time().advance(120ms);
  };
  moveTo({2, 798});
  EXPECT_FALSE(world().asked(Operation::screens)) << "nobody looks while no corner does anything";

  Settings::setHotCornerAction(HotCornerAction::showGrid, HotCorner::topLeft);
  Settings::setHotCornerAction(HotCornerAction::toggleGridView, HotCorner::topRight);
  moveTo({2, 798});
  EXPECT_THAT(calls, IsEmpty()) << "it was there before";
  for (const Point pointer : {Point{500, 400}, Point{2, 798}, Point{3, 797}, Point{998, 798}, Point{2, 798}}) {
    moveTo(pointer);
  }
  EXPECT_THAT(calls, ElementsAre("show left", "toggle", "close"));
  moveTo({1998, 798});
  moveTo({2, 2});
  EXPECT_THAT(calls, SizeIs(3)) << "neither another display nor a corner without an action";
}

TEST_F(AppDelegateTest, SettingsReloadTheGrid) {
  launch(parts());
  calls.clear();
  change(Notifications::qualityChanged);
  change(Notifications::wallpaperStoreChanged);
  EXPECT_THAT(calls, ElementsAre("reload", "reload"));
}

TEST_F(AppDelegateTest, WaitsForAWindowManager) {
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

TEST_F(AppDelegateTest, AHiddenWaitCanBeSeenAgain) {
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

TEST_F(AppDelegateTest, DoesNotPretendInAForeignSession) {
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

TEST_F(AppDelegateTest, ClosingTheWindowOfAForeignSessionQuits) {
  sim->setFinding({SessionFact::nativeSession, false, "wayland-0"});
  launch();
  ASSERT_NE(launchWindow(), nullptr);
  QTimer::singleShot(0, launchWindow(), [this] { launchWindow()->reject(); });
  QTimer::singleShot(10000, qApp, [] { QCoreApplication::exit(EXIT_FAILURE); });
  EXPECT_EQ(QCoreApplication::exec(), EXIT_SUCCESS) << "nothing would be left of the program to see";
}

TEST_F(AppDelegateTest, TheHeadingSaysWhatIsSo) {
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

TEST_F(AppDelegateTest, ClashesThatTheUserLeavesAreNoNewsAgain) {
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

TEST_F(AppDelegateTest, TakenKeysCanBeExchangedOnTheSpot) {
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

TEST_F(AppDelegateTest, AnotherWindowManagerMayLeaveTheKeysFree) {
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

TEST_F(AppDelegateTest, ChangesOfTheFileTakeEffectAtOnce) {
  launch();
  int announced = 0;
  const auto connection = Notifications::observe(Notifications::hotkeysChanged, [&] { ++announced; });
  Settings::setModifiers(KeyCombo::command, HotkeyGroup::changeSpace);  // our own: nobody has to be told

  const auto file = ConfigStore::fileURL();
  std::ofstream(folder / "new.json") << R"({"tessaspaces.hotkey.0": 4352, "tessaspaces.language": 3})";
  std::filesystem::rename(folder / "new.json", file);
  EXPECT_TRUE(waitFor([&] { return announced > 0; }));
  sim->time().runUntilIdle();
  EXPECT_TRUE(sim->pressKey({KeyCombo::arrowKeyCodes[0], KeyCombo::control | KeyCombo::command}));
  EXPECT_EQ(titles().back(), "tessa⊞spaces beenden");
  EXPECT_EQ(announced, 1);

  EXPECT_EQ(launchWindow(), nullptr);
  sim->takeKey({KeyCombo::arrowKeyCodes[0], KeyCombo::option | KeyCombo::command});
  Settings::setModifiers(KeyCombo::option | KeyCombo::command, HotkeyGroup::changeSpace);
  change(Notifications::hotkeysChanged);
  EXPECT_NE(launchWindow(), nullptr) << "a change that runs into another program's keys is told";
}

TEST_F(AppDelegateTest, ChangesAreFoundWhereverTheFileGoes) {
  namespace fs = std::filesystem;
  const fs::path own = folder / "own";
  const fs::path file = own / "config.json";
  const auto write = [](const fs::path& path, int modifiers) {
    fs::create_directories(path.parent_path());
    std::ofstream(path) << R"({"tessaspaces.hotkey.0": )" << modifiers << "}";
  };
  const auto follows = [&](std::uint32_t modifiers) {
    return waitFor([&] {
      sim->time().runUntilIdle();
      return sim->pressKey({KeyCombo::arrowKeyCodes[0], modifiers});
    });
  };
  ConfigStore::useDirectory(own);
  write(file, 4096);
  delegate = std::make_unique<AppDelegate>();
  delegate->applicationDidFinishLaunching();
  write(file, 2048);
  EXPECT_TRUE(follows(2048)) << "changed between the start and the watch";

  // Into somebody's collection of settings, with a link in its place.
  fs::create_directory(folder / "dotfiles");
  fs::rename(file, folder / "dotfiles/kept.json");
  fs::create_symlink(folder / "dotfiles/kept.json", file);
  write(folder / "dotfiles/new.json", 256);
  fs::rename(folder / "dotfiles/new.json", folder / "dotfiles/kept.json");
  EXPECT_TRUE(follows(256));
  write(folder / "dotfiles/new.json", 768);
  fs::rename(folder / "dotfiles/new.json", folder / "dotfiles/kept.json");
  EXPECT_TRUE(follows(768));

  fs::rename(own, folder / "elsewhere");
  QCoreApplication::processEvents();
  write(folder / "parked/config.json", 2304);
  fs::rename(folder / "parked", own);
  EXPECT_TRUE(follows(2304));
}

}  // namespace
}  // namespace tessaspaces
