#include <gmock/gmock.h>

#include <regex>
#include <thread>

#include "settings/Fakes.h"
#include "settings/Notifications.h"
#include "settings/Settings.h"
#include "settings/SettingsTable.h"

namespace tessaspaces {
namespace {

using namespace tessaspaces::testing;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class SettingsFacadeTest : public SettingsTest {};

TEST_F(SettingsFacadeTest, GridSidesFallBackAndClamp) {
  struct Case {
    const char* json;
    int rows;
  };
  const Case cases[] = {{"{}", 3},
                        {R"({"tessaspaces.grid.rows": 5})", 5},
                        {R"({"tessaspaces.grid.rows": 5, "tessaspaces.grid.rows.D": 2})", 2},
                        {R"({"tessaspaces.grid.rows": 5, "tessaspaces.grid.rows.D": "2"})", 5},
                        {R"({"tessaspaces.grid.rows.D": 0})", 1},
                        {R"({"tessaspaces.grid.rows": 40})", 16},
                        {R"({"tessaspaces.grid.rows": -9223372036854775808})", 1},
                        {R"({"tessaspaces.grid.rows": true})", 3}};
  for (const auto& each : cases) {
    configure(each.json);
    EXPECT_EQ(Settings::gridRows("D"), each.rows) << each.json;
  }

  configure(R"({"tessaspaces.grid.columns": 6})");
  EXPECT_EQ(Settings::gridColumns(), 6) << "no main screen";
  Screen screen;
  screen.uuid = "MAIN";
  platform.fakeScreens.main = std::make_shared<Screen>(screen);
  Settings::setGridColumns(2);
  EXPECT_EQ(Settings::gridColumns(), 2);
  EXPECT_EQ(Settings::gridColumns("MAIN"), 2);
  EXPECT_EQ(Settings::gridColumns("OTHER"), 6);
}

TEST_F(SettingsFacadeTest, GridsOfUpToSixteenCanBeSet) {
  struct Case {
    int rows, columns;
    bool allowed;
  };
  const Case cases[] = {{4, 4, true},   {4, 5, false}, {5, 4, false},   {16, 1, true},        {1, 16, true},
                        {17, 1, false}, {0, 5, false}, {-4, -4, false}, {65536, 65536, false}};
  for (const auto& each : cases) {
    EXPECT_EQ(Settings::canSetGrid(each.rows, each.columns), each.allowed) << each.rows << "x" << each.columns;
  }
}

TEST_F(SettingsFacadeTest, UnknownChoicesReadAsTheDefault) {
  for (const char* raw : {"99", "-1", "\"fade\"", "true", "null", "1e300"}) {
    const auto json = std::regex_replace(
        std::string(R"({"tessaspaces.logLevel": X, "tessaspaces.transition.style": X, "tessaspaces.imageQuality": X,
                        "tessaspaces.transition.speed": X, "tessaspaces.transition.gridZoomSpeed": X,
                        "tessaspaces.hotCorner.3": X, "tessaspaces.circulation.join": X, "tessaspaces.language": X})"),
        std::regex("X"), raw);
    configure(json);
    EXPECT_EQ(Settings::logLevel(), LogLevel::error) << raw;
    EXPECT_EQ(Settings::transitionStyle(), TransitionStyle::slide) << raw;
    EXPECT_EQ(Settings::quality(), ImageQuality::medium) << raw;
    EXPECT_EQ(rawValue(Settings::transitionSpeed()), 1) << raw;
    EXPECT_EQ(rawValue(Settings::gridZoomSpeed()), 4) << raw;
    EXPECT_EQ(Settings::hotCornerAction(HotCorner::bottomRight), HotCornerAction::none) << raw;
    EXPECT_EQ(Settings::circulationJoin(), CirculationJoin::nextRow) << raw;
    EXPECT_EQ(Settings::language(), AppLanguage::system) << raw;
  }
  configure(R"({"tessaspaces.logLevel": 3, "tessaspaces.circulation.enabled": 0, "tessaspaces.hideMenuBarIcon": "x"})");
  EXPECT_EQ(Settings::logLevel(), LogLevel::debug);
  EXPECT_FALSE(Settings::circulationEnabled());
  EXPECT_FALSE(Settings::hideMenuBarIcon());
}

TEST_F(SettingsFacadeTest, HotKeysNeedWholeCombos) {
  const KeyCombo standard{49, KeyCombo::option | KeyCombo::shift};
  struct Case {
    const char* json;
    KeyCombo combo;
  };
  const Case cases[] = {
      {"{}", standard},
      {R"({"tessaspaces.hotkey.overview.keyCode": 5})", standard},
      {R"({"tessaspaces.hotkey.overview.modifiers": 256})", standard},
      {R"({"tessaspaces.hotkey.overview.keyCode": 5, "tessaspaces.hotkey.overview.modifiers": 256})", {5, 256}},
      {R"({"tessaspaces.hotkey.overview.keyCode": -5, "tessaspaces.hotkey.overview.modifiers": -1})", {0, 0}},
      {R"({"tessaspaces.hotkey.overview.keyCode": 4294967297, "tessaspaces.hotkey.overview.modifiers": 256})",
       {KeyCombo::noKeyCode, 256}},
  };
  for (const auto& each : cases) {
    configure(each.json);
    EXPECT_EQ(Settings::overviewGridCombo(), each.combo) << each.json;
  }
  EXPECT_EQ(Settings::gridViewToggleCombo(), (KeyCombo{5, 0xA00}));
  Settings::setGridViewToggleCombo(KeyCombo::none());
  EXPECT_TRUE(Settings::gridViewToggleCombo().isEmpty());

  EXPECT_EQ(Settings::modifiers(HotkeyGroup::changeSpace), 6144u);
  EXPECT_EQ(Settings::modifiers(HotkeyGroup::moveWindow), 0u);
  EXPECT_EQ(Settings::modifiers(HotkeyGroup::changeSpaceDirect), 6144u);
  Settings::setModifiers(0, HotkeyGroup::changeSpaceDirect);
  Settings::setModifiers(0xFFFFFFFF, HotkeyGroup::moveWindow);
  EXPECT_EQ(Settings::modifiers(HotkeyGroup::changeSpaceDirect), 0u);
  EXPECT_EQ(Settings::modifiers(HotkeyGroup::moveWindow), 0xFFFFFFFFu);
}

TEST_F(SettingsFacadeTest, ModifiersThatAreNoMaskStopTheProgram) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  for (const char* value : {"-1", "4294967296"}) {
    configure(std::string(R"({"tessaspaces.hotkey.1": )") + value + "}");
    EXPECT_DEATH((void)Settings::modifiers(HotkeyGroup::moveWindow),
                 std::string("tessaspaces\\.hotkey\\.1 holds ") + value);
  }
}

TEST_F(SettingsFacadeTest, NicknamesAreTrimmed) {
  struct Case {
    std::optional<std::string_view> given;
    std::optional<std::string> stored;
  };
  const Case cases[] = {{"Mail", "Mail"},
                        {"  Mail box \n", "Mail box"},
                        {"\u00A0\u3000Mail\u2028", "Mail"},
                        {"  ", std::nullopt},
                        {"Mail", "Mail"},
                        {std::nullopt, std::nullopt},
                        {"⊞", "⊞"},
                        {"", std::nullopt}};
  for (const auto& each : cases) {
    Settings::setDesktopNickname(each.given, "space-id-3");
    EXPECT_EQ(Settings::desktopNickname("space-id-3"), each.stored);
    EXPECT_EQ(ConfigStore::string("tessaspaces.desktopNickname.space-id-3"), each.stored);
  }
  Settings::setDesktopNickname("Mail", "");
  EXPECT_EQ(Settings::desktopNickname(""), std::nullopt);
  EXPECT_THAT(ConfigStore::keys(), IsEmpty());
}

TEST_F(SettingsFacadeTest, AssignmentsAreIdentifiersOrNumbers) {
  configure(R"({"tessaspaces.app.number": 2, "tessaspaces.app.empty": "", "tessaspaces.app.flag": true})");
  EXPECT_EQ(Settings::appAssignment("number"), AppAssignment(DesktopNumber{2}));
  EXPECT_EQ(Settings::appAssignment("empty"), std::nullopt);
  EXPECT_EQ(Settings::appAssignment("flag"), std::nullopt);
  Settings::setAppAssignment("2", "text");
  EXPECT_EQ(Settings::appAssignment("text"), AppAssignment(DesktopIdentifier{"2"}));
  Settings::setAppAssignment(std::nullopt, "text");
  EXPECT_EQ(Settings::appAssignment("text"), std::nullopt);
}

TEST_F(SettingsFacadeTest, DiagnosticsKeepTheirState) {
  const auto id = Settings::diagnosticsInstallID();
  EXPECT_TRUE(std::regex_match(id, std::regex("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}")))
      << id;
  EXPECT_EQ(Settings::diagnosticsInstallID(), id);
  ConfigStore::set("tessaspaces.diagnosticsInstallID", "");
  EXPECT_NE(Settings::diagnosticsInstallID(), id);

  EXPECT_EQ(Settings::nextDiagnosticsSendDate(), std::nullopt);
  const std::chrono::sys_time<std::chrono::milliseconds> date{std::chrono::milliseconds(1'800'000'000'900)};
  Settings::setNextDiagnosticsSendDate(date);
  EXPECT_EQ(ConfigStore::integer("tessaspaces.nextDiagnosticsSend"), 1'800'000'000);
  EXPECT_EQ(Settings::nextDiagnosticsSendDate(), std::chrono::floor<std::chrono::seconds>(date));
  Settings::setNextDiagnosticsSendDate(std::nullopt);
  EXPECT_EQ(Settings::nextDiagnosticsSendDate(), std::nullopt);
}

TEST_F(SettingsFacadeTest, LaunchAtLoginIsTheSystems) {
  Settings::setLaunchAtLogin(true);
  EXPECT_TRUE(Settings::launchAtLogin());
  platform.fakeLoginItem.error = "not allowed";
  Settings::setLaunchAtLogin(false);
  EXPECT_TRUE(Settings::launchAtLogin());
  EXPECT_THAT(log(), HasSubstr("[ERROR] LAUNCH AT LOGIN: change failed: not allowed\n"));
}

TEST_F(SettingsFacadeTest, StoreTakesEachTypeForWhatItIs) {
  ConfigStore::set("literal", "true");
  ConfigStore::set("flag", false);
  ConfigStore::set("mask", std::uint32_t{0xFFFFFFFF});
  ConfigStore::set("view", std::string_view("v"));
  EXPECT_EQ(ConfigStore::value("literal"), ConfigValue("true"));
  EXPECT_EQ(ConfigStore::value("flag"), ConfigValue(false));
  EXPECT_EQ(ConfigStore::value("mask"), ConfigValue(4294967295LL));
  EXPECT_EQ(ConfigStore::value("view"), ConfigValue("v"));
}

TEST_F(SettingsFacadeTest, ImportTakesTheListedKeys) {
  const auto keys = Settings::allKeys();
  ASSERT_EQ(keys.size(), 26u);
  EXPECT_EQ(keys.front(), "tessaspaces.imageQuality");
  EXPECT_EQ(keys[18], "tessaspaces.circulation.join");
  EXPECT_EQ(keys[19], "tessaspaces.hotkey.0");
  EXPECT_EQ(keys.back(), "tessaspaces.hotCorner.3");

  platform.fakePreferences.legacy = {{"LumoPOC.grid.rows", 2LL}, {"tessaspaces.hotkey.1", 256LL}, {"unlisted", 1LL}};
  ConfigStore::migrateFromUserDefaults(keys);
  EXPECT_THAT(ConfigStore::keys(), ElementsAre("tessaspaces.grid.rows", "tessaspaces.hotkey.1"));
}

TEST_F(SettingsFacadeTest, OutsideChangesAreAnnouncedOnce) {
  std::vector<std::string_view> seen;
  std::vector<ScopedConnection> connections;
  for (const auto name : {Notifications::hotkeysChanged, Notifications::qualityChanged, Notifications::languageChanged,
                          Notifications::menuBarVisibilityChanged, Notifications::wallpaperStoreChanged}) {
    connections.push_back(Notifications::observe(name, [&seen, name] { seen.push_back(name); }));
  }
  const std::vector<std::string> changed{"tessaspaces.hotkey.0", "tessaspaces.hotkey.overview.keyCode",
                                         "tessaspaces.language", "tessaspaces.grid.rows.X", "unknown"};
  Settings::announceChanges(changed);
  EXPECT_THAT(seen, ::testing::UnorderedElementsAre(Notifications::hotkeysChanged, Notifications::languageChanged,
                                                    Notifications::qualityChanged));
}

TEST_F(SettingsFacadeTest, FacadeIsSafeFromEveryThread) {
  configure(R"({"LumoPOC.logLevel": 2})");
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([thread] {
      for (int round = 0; round < 20; ++round) {
        Settings::setGridRows(round % 16 + 1, std::to_string(thread));
        Log::info("round {} of {}", round, thread);
        (void)Settings::overviewGridCombo();
        (void)L("menu.showGrid");
        (void)ConfigStore::reloadIfChanged();
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(ConfigStore::keys().size(), 5u);
  const auto text = log();
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 81) << "with the one about the renamed key";
}

TEST(SettingsTableTest, FindsPlainKeysBeforeItems) {
  using SettingsTable::find;
  using SettingsTable::Setting;
  struct Case {
    const char* key;
    std::optional<Setting> setting;
  };
  const Case cases[] = {{"tessaspaces.grid.rows", Setting::gridRows},
                        {"tessaspaces.grid.rows.ABC", Setting::displayGridRows},
                        {"tessaspaces.grid.rows.", std::nullopt},
                        {"tessaspaces.app.org.example.editor", Setting::appAssignment},
                        {"tessaspaces.hotkey.2", Setting::hotkeyChangeSpaceDirect},
                        {"tessaspaces.hotkey.3", std::nullopt},
                        {"tessaspaces.hotkey.explode.keyCode", Setting::explodeKeyCode},
                        {"tessaspaces.", std::nullopt},
                        {"", std::nullopt}};
  for (const auto& each : cases) {
    const auto* found = find(each.key);
    EXPECT_EQ(found ? std::optional(found->setting) : std::nullopt, each.setting) << each.key;
  }
}

TEST(SettingsTableTest, ReadsWhatPeopleTypeAndWritesItBack) {
  struct Case {
    const char* key;
    const char* text;
    std::optional<ConfigValue> value;
    const char* written;
  };
  const Case cases[] = {
      {"tessaspaces.circulation.enabled", "Off", ConfigValue(false), "false"},
      {"tessaspaces.circulation.enabled", "1", ConfigValue(true), "true"},
      {"tessaspaces.circulation.enabled", "2", {}, ""},
      {"tessaspaces.grid.rows", "16", ConfigValue(16LL), "16"},
      {"tessaspaces.grid.rows", "17", {}, ""},
      {"tessaspaces.grid.rows.D", "0", {}, ""},
      {"tessaspaces.grid.rows", "4 ", {}, ""},
      {"tessaspaces.logLevel", "DEBUG", ConfigValue(3LL), "debug"},
      {"tessaspaces.logLevel", "1", ConfigValue(1LL), "warning"},
      {"tessaspaces.logLevel", "7", {}, ""},
      {"tessaspaces.logLevel", "", {}, ""},
      {"tessaspaces.hotkey.0", "Ctrl+alt", ConfigValue(6144LL), "control+option"},
      {"tessaspaces.hotkey.0", "none", ConfigValue(0LL), "none"},
      {"tessaspaces.hotkey.0", "0x1000", ConfigValue(4096LL), "control"},
      {"tessaspaces.hotkey.0", "1", {}, ""},
      {"tessaspaces.hotkey.0", "control+", {}, ""},
      {"tessaspaces.hotkey.0", "-1", {}, ""},
      {"tessaspaces.hotkey.0", "4294967296", {}, ""},
      {"tessaspaces.app.x", "3", ConfigValue(3LL), "3"},
      {"tessaspaces.app.x", "0", {}, ""},
      {"tessaspaces.app.x", "3F2A", ConfigValue("3F2A"), "3F2A"},
      {"tessaspaces.desktopNickname.x", "true", ConfigValue("true"), "true"},
      {"tessaspaces.desktopNickname.x", " Mail\t", ConfigValue("Mail"), "Mail"},
      {"tessaspaces.desktopNickname.x", " \u00a0 ", {}, ""},
      {"tessaspaces.diagnosticsSentOffset", "99999999999999999999", {}, ""},
  };
  for (const auto& each : cases) {
    const auto* entry = SettingsTable::find(each.key);
    ASSERT_NE(entry, nullptr) << each.key;
    const auto parsed = SettingsTable::parse(*entry, each.text);
    EXPECT_EQ(parsed.value, each.value) << each.key << " " << each.text;
    EXPECT_EQ(parsed.error.empty(), each.value.has_value()) << each.key << " " << each.text;
    if (each.value) {
      EXPECT_EQ(SettingsTable::format(*entry, *each.value), each.written) << each.key;
    }
  }
  for (const auto& entry : SettingsTable::entries()) {
    if (std::holds_alternative<std::monostate>(entry.defaultValue)) continue;
    EXPECT_TRUE(SettingsTable::parse(entry, SettingsTable::formatDefault(entry)).value) << entry.key;
  }
}

TEST(SettingsTableTest, TheDocumentationListsIt) {
  const fs::path page = fs::path(TESSASPACES_SOURCE_DIR) / "docs/SETTINGS.md";
  if (std::getenv("TESSASPACES_UPDATE_DOCS") != nullptr) writeText(page, SettingsTable::markdown());
  EXPECT_EQ(readText(page), SettingsTable::markdown()) << "run this test with TESSASPACES_UPDATE_DOCS=1 set";
}

}  // namespace
}  // namespace tessaspaces
