#include <gmock/gmock.h>

#include <atomic>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <thread>

#include "settings/Enums.h"
#include "settings/Fakes.h"
#include "settings/L10n.h"
#include "settings/Notifications.h"
#include "settings/Settings.h"

namespace tessaspaces {
namespace {

using namespace tessaspaces::testing;
using ::testing::IsEmpty;

const fs::path sourceFolder = TESSASPACES_SOURCE_DIR;
const std::vector<std::string> codes{"en", "cs", "de", "es", "fr"};

using Table = std::map<std::string, std::string>;

Table shippedTable(const std::string& code) {
  return nlohmann::json::parse(readText(sourceFolder / "resources/Localization" / (code + ".json"))).get<Table>();
}

/// The arguments that a text asks for, each as its position and kind.
std::multiset<std::string> argumentsOf(const std::string& text) {
  static const std::regex conversion(R"(%(?:(\d+)\$)?([@d%]))");
  std::multiset<std::string> arguments;
  int next = 1;
  for (std::sregex_iterator at(text.begin(), text.end(), conversion), end; at != end; ++at) {
    if ((*at)[2] == "%") continue;
    arguments.insert(((*at)[1].matched ? (*at)[1].str() : std::to_string(next++)) + (*at)[2].str());
  }
  return arguments;
}

TEST(LocalizationTablesTest, SayTheSameInEveryLanguage) {
  const auto english = shippedTable("en");
  for (const auto& code : codes) {
    const auto table = shippedTable(code);
    for (const auto& [key, text] : english) {
      ASSERT_TRUE(table.contains(key)) << code << " lacks " << key;
      EXPECT_FALSE(table.at(key).empty()) << code << ": " << key;
      EXPECT_EQ(argumentsOf(table.at(key)), argumentsOf(text)) << code << ": " << key;
    }
    for (const auto& entry : table) EXPECT_TRUE(english.contains(entry.first)) << code << " alone has " << entry.first;

    // Sorted, one a line: several people add to these files.
    const auto lines = readText(sourceFolder / "resources/Localization" / (code + ".json"));
    EXPECT_EQ(nlohmann::json(table).dump(2) + "\n", lines) << code << ": scripts or people left it unsorted";
  }
}

TEST(LocalizationTablesTest, HoldEveryKeyThatTheProgramNames) {
  const auto english = shippedTable("en");
  const std::regex use(R"re(\b(?:L|t)\(\s*"([a-z][A-Za-z0-9]*(?:\.[A-Za-z0-9]+)+)")re");
  std::vector<std::string> missing;
  for (const auto& entry : fs::recursive_directory_iterator(sourceFolder / "src")) {
    if (entry.path().extension() != ".cpp" && entry.path().extension() != ".h") continue;
    const auto text = readText(entry.path());
    for (std::sregex_iterator at(text.begin(), text.end(), use), end; at != end; ++at) {
      if (!english.contains((*at)[1])) missing.push_back(entry.path().filename().string() + ": " + (*at)[1].str());
    }
  }
  EXPECT_THAT(missing, IsEmpty());

  const auto expectLabels = [&](auto cases) {
    for (const auto each : cases) EXPECT_TRUE(english.contains(std::string(labelKey(each)))) << labelKey(each);
  };
  expectLabels(allCases<CirculationJoin>());
  expectLabels(allCases<ImageQuality>());
  expectLabels(allCases<AppLanguage>());
  expectLabels(allCases<HotCorner>());
  expectLabels(allCases<HotCornerAction>());
  expectLabels(allCases<HotkeyGroup>());
  expectLabels(allCases<LogLevel>());
  expectLabels(allCases<TransitionStyle>());
  expectLabels(allCases<AnimationSpeed>());
  for (const auto style : allCases<TransitionStyle>()) EXPECT_TRUE(english.contains(std::string(detailKey(style))));
  for (const auto group : allCases<HotkeyGroup>()) EXPECT_TRUE(english.contains(std::string(suffixKey(group))));
}

class L10nTest : public SettingsTest {
 protected:
  L10nTest() {
    fs::create_directories(folder / "Localization");
    table("en", R"({"both": "English", "only": "English alone", "hello": "Hello %@"})");
    table("de", R"({"both": "Deutsch", "hello": "%@, hallo"})");
    L10n::setResourceFolder(folder.path());
  }
  void table(const std::string& code, std::string_view json) {
    writeText(folder / "Localization" / (code + ".json"), json);
  }
};

TEST_F(L10nTest, FallsBackToEnglishThenToTheKey) {
  struct Case {
    AppLanguage language;
    const char* german;  // the table's text
    const char* both;
    const char* only;
  };
  const char* whole = R"({"both": "Deutsch"})";
  const Case cases[] = {
      {AppLanguage::german, whole, "Deutsch", "English alone"},
      {AppLanguage::english, whole, "English", "English alone"},
      {AppLanguage::czech, whole, "English", "English alone"},  // no such table
      {AppLanguage::german, R"({"both": 1})", "English", "English alone"},
      {AppLanguage::german, R"(["both"])", "English", "English alone"},
      {AppLanguage::german, R"({"both": )", "English", "English alone"},
  };
  for (const auto& each : cases) {
    table("de", each.german);
    Settings::setLanguage(each.language);
    L10n::reload();
    EXPECT_EQ(L10n::t("both"), each.both) << each.german;
    EXPECT_EQ(L("only"), each.only) << each.german;
    EXPECT_EQ(L("menu.showGrid"), "menu.showGrid");
  }
  fs::remove_all(folder / "Localization");
  L10n::reload();
  EXPECT_EQ(L("both"), "both");
}

TEST_F(L10nTest, FollowsTheSystemUnlessALanguageIsSet) {
  struct Case {
    std::vector<std::string> preferred;
    const char* code;
  };
  const Case cases[] = {{{}, "en"},
                        {{"de-AT", "fr"}, "de"},
                        {{"ja", "FR-ca", "de"}, "fr"},
                        {{"cs_CZ.UTF-8"}, "cs"},
                        {{"es@euro"}, "es"},
                        {{"C", "POSIX", ""}, "en"},
                        {{"ja"}, "en"},
                        {{"den"}, "en"}};
  for (const auto& each : cases) {
    platform.fakePreferences.languages = each.preferred;
    EXPECT_EQ(L10n::preferredLanguageCode(), each.code) << ::testing::PrintToString(each.preferred);
  }
  platform.fakePreferences.languages = {"de"};
  Settings::setLanguage(AppLanguage::spanish);
  EXPECT_EQ(L10n::preferredLanguageCode(), "es");
}

TEST_F(L10nTest, ReloadTellsTheMainThread) {
  std::vector<std::string> seen;
  auto connection =
      Notifications::observe(Notifications::languageChanged, [&] { seen.push_back(L10n::t("hello", "X")); });
  EXPECT_EQ(L10n::t("hello", "X"), "Hello X");
  Settings::setLanguage(AppLanguage::german);
  L10n::reload();
  EXPECT_EQ(seen, std::vector<std::string>{"X, hallo"}) << "at once on the main thread";

  std::thread([] { L10n::reload(); }).join();
  EXPECT_EQ(seen.size(), 1u) << "observers run on the main thread only";
  EXPECT_EQ(platform.fakeDispatch.run(), 1u);
  EXPECT_EQ(seen.size(), 2u);

  Notifications::post(Notifications::qualityChanged);
  connection.reset();
  L10n::reload();
  EXPECT_EQ(seen.size(), 2u);
}

TEST_F(L10nTest, SpeedsReadInTheLanguagesNumbers) {
  L10n::setResourceFolder({});
  EXPECT_EQ(label(AnimationSpeed::veryFast), "0.15\u00A0s");
  Settings::setLanguage(AppLanguage::french);
  L10n::reload();
  EXPECT_EQ(label(AnimationSpeed::veryFast), "0,15\u00A0s");
  EXPECT_EQ(label(AnimationSpeed::slowest), "1\u00A0s");
}

TEST(L10nFormatTest, SurvivesEveryFormat) {
  struct Case {
    const char* format;
    std::vector<L10n::Argument> arguments;
    const char* expected;
  };
  const Case cases[] = {
      {"%@ and %d", {"a", 2}, "a and 2"},
      {"%2$@ then %1$@", {"a", "b"}, "b then a"},
      {"%1$@ %1$@ %@", {"a"}, "a a a"},
      {"%ld%lld%qd%i%u", {1, 2, 3, 4, 5}, "12345"},
      {"%@ %d", {7, "text"}, "7 text"},  // either shows either
      {"100%% %%@", {"a"}, "100% %@"},
      {"%@ %@", {"a"}, "a %@"},
      {"%3$@", {"a"}, "%3$@"},
      {"%@", {"a", "b"}, "a"},
      {"%@", {"%@ %s %n"}, "%@ %s %n"},  // what is put in is not read again
      {"%", {"a"}, "%"},
      {"%l", {"a"}, "%l"},
      {"%1$", {"a"}, "%1$"},
      {"%0$@ %1@ %-5d %n %s %*d", {"a"}, "%0$@ %1@ %-5d %n %s %*d"},
      {"%99999999999999999999$@", {"a"}, "%99999999999999999999$@"},
      {"%18446744073709551615$@", {"a"}, "%18446744073709551615$@"},
      {"", {"a"}, ""},
      {"%d", {-9223372036854775807LL - 1}, "-9223372036854775808"},
  };
  for (const auto& each : cases) EXPECT_EQ(L10n::format(each.format, each.arguments), each.expected) << each.format;
}

}  // namespace
}  // namespace tessaspaces
