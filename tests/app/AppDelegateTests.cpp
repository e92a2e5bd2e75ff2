#include <gmock/gmock.h>

#include <fstream>

#include "app/AppDelegateTest.h"
#include "app/EventWait.h"
#include "hotkeys/HotKeyCenter.h"
#include "settings/ConfigStore.h"
#include "settings/Settings.h"

namespace tessaspaces {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

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
