#include <gmock/gmock.h>
#include <sys/stat.h>

#include <nlohmann/json.hpp>

#include "settings/ConfigFile.h"
#include "settings/Fakes.h"

namespace tessaspaces {
namespace {

using namespace tessaspaces::testing;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Json = nlohmann::json;

struct Lines {
  std::vector<std::string> error, warning, info;
};

class ConfigFileTest : public ::testing::Test {
 protected:
  /// A store as a process has when it starts.
  std::unique_ptr<ConfigFile> open(const fs::path& directory) {
    return std::make_unique<ConfigFile>(directory, [this](const std::string& message, LogLevel level) {
      (level == LogLevel::error     ? lines.error
       : level == LogLevel::warning ? lines.warning
                                    : lines.info)
          .push_back(message);
    });
  }
  std::unique_ptr<ConfigFile> open() { return open(folder.path()); }
  Json onDisk() const { return Json::parse(readText(file), nullptr, false); }

  TemporaryFolder folder;
  const fs::path file = folder / "config.json";
  Lines lines;
};

TEST_F(ConfigFileTest, ReadsEachKindAsWhatItCanBe) {
  writeText(file, R"({"int": 3, "negative": -2, "double": 2.9, "below": -2.9, "huge": 1e300, "unsigned":
      18446744073709551615, "edge": 9.3e18, "zero": 0, "true": true, "text": "x", "null": null, "list": [1],
      "object": {"a": 1}})");
  const auto store = open();
  struct Case {
    const char* key;
    std::optional<long long> integer;
    std::optional<bool> boolean;
    std::optional<std::string> string;
  };
  const Case cases[] = {
      {"int", 3, true, {}},   {"negative", -2, true, {}}, {"double", 2, true, {}}, {"below", -2, true, {}},
      {"huge", {}, true, {}}, {"unsigned", {}, true, {}}, {"edge", {}, true, {}},  {"zero", 0, false, {}},
      {"true", {}, true, {}}, {"text", {}, {}, "x"},      {"null", {}, {}, {}},    {"list", {}, {}, {}},
      {"object", {}, {}, {}}, {"missing", {}, {}, {}},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(store->integer(each.key), each.integer) << each.key;
    EXPECT_EQ(store->boolean(each.key), each.boolean) << each.key;
    EXPECT_EQ(store->string(each.key), each.string) << each.key;
  }
}

TEST_F(ConfigFileTest, RewritingKeepsWhatItDoesNotKnow) {
  const auto before = Json::parse(R"({"other": {"deep": [1, null, {"x": false}]}, "null": null, "double": 0.1})");
  writeText(file, before.dump());
  open()->set("tessaspaces.grid.rows", ConfigValue(2LL));
  auto expected = before;
  expected["tessaspaces.grid.rows"] = 2;
  EXPECT_EQ(onDisk(), expected);
  EXPECT_TRUE(onDisk()["tessaspaces.grid.rows"].is_number_integer());
  // One member a line and sorted: the file is also a person's.
  const auto text = readText(file);
  EXPECT_LT(text.find("\n  \"double\""), text.find("\n  \"null\""));
  EXPECT_LT(text.find("\n  \"other\""), text.find("\n  \"tessaspaces.grid.rows\": 2\n}"));
}

TEST_F(ConfigFileTest, StoresTextThatIsNoUtf8) {
  EXPECT_TRUE(open()->set("k\xff", ConfigValue("a\xff"
                                               "b")));
  EXPECT_EQ(open()->string("k\uFFFD"),
            "a\uFFFD"
            "b");
}

TEST_F(ConfigFileTest, WritesOnlyWhatChanges) {
  const auto store = open();
  store->remove("missing");
  EXPECT_THAT(folder.names(), IsEmpty());
  writeText(file, R"({ "a":1 })");
  store->set("a", ConfigValue(1LL));
  EXPECT_EQ(readText(file), R"({ "a":1 })");
  store->set("a", ConfigValue(true));  // another kind is another value
  EXPECT_EQ(onDisk()["a"], true);
}

TEST_F(ConfigFileTest, KeepsModeAndFollowsLinks) {
  open()->set("a", ConfigValue(1LL));
  EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
  ::chmod(file.c_str(), 0640);
  open()->set("a", ConfigValue(2LL));
  EXPECT_EQ(fs::status(file).permissions(), fs::perms{0640});

  // Dotfiles managed elsewhere: the link stays, its target changes.
  TemporaryFolder linked;
  fs::create_symlink(fs::relative(file, fs::canonical(linked.path())), linked / "config.json");
  open(linked.path())->set("a", ConfigValue(3LL));
  EXPECT_TRUE(fs::is_symlink(linked / "config.json"));
  EXPECT_EQ(onDisk()["a"], 3);
  EXPECT_THAT(lines.error, IsEmpty());
}

TEST_F(ConfigFileTest, RenamesLegacyKeysAtOnce) {
  writeText(file, R"({"LumoPOC.grid.rows": 2, "LumoPOC.grid.columns": 7, "tessaspaces.grid.columns": 5, "other": 1})");
  const auto store = open();
  EXPECT_EQ(store->integer("tessaspaces.grid.rows"), 2);
  EXPECT_EQ(store->integer("tessaspaces.grid.columns"), 5);
  EXPECT_EQ(onDisk(), Json::parse(R"({"tessaspaces.grid.rows": 2, "tessaspaces.grid.columns": 5, "other": 1})"));
  EXPECT_THAT(lines.info,
              ElementsAre("CONFIG: renamed 2 settings keys from the old 'LumoPOC.' prefix to 'tessaspaces.'"));
}

TEST_F(ConfigFileTest, ImportsOnlyIntoAnEmptyConfiguration) {
  const std::map<std::string, ConfigValue, std::less<>> old{{"tessaspaces.a", ConfigValue(1LL)},
                                                            {"LumoPOC.a", ConfigValue(9LL)},
                                                            {"LumoPOC.b", ConfigValue(true)},
                                                            {"LumoPOC.c", ConfigValue("text")},
                                                            {"LumoPOC.d", ConfigValue(0.5)}};
  const auto lookUp = [&](std::string_view key) {
    const auto found = old.find(key);
    return found != old.end() ? std::optional(found->second) : std::nullopt;
  };
  const std::vector<std::string> keys{"tessaspaces.a", "tessaspaces.b", "tessaspaces.c", "tessaspaces.e"};
  open()->importLegacy(keys, lookUp);
  EXPECT_EQ(onDisk(), Json::parse(R"({"tessaspaces.a": 1, "tessaspaces.b": true, "tessaspaces.c": "text"})"));
  EXPECT_THAT(lines.info, ElementsAre("CONFIG: migrated 3 values from old UserDefaults to " + file.string()));

  writeText(file, R"({"x": 1})");
  open()->importLegacy(keys, lookUp);
  EXPECT_EQ(readText(file), R"({"x": 1})");
  EXPECT_EQ(lines.info.size(), 1u);
}

TEST_F(ConfigFileTest, KeepsAFileThatItCannotRead) {
  const std::string tooDeep = "{\"a\": " + std::string(200'000, '[') + std::string(200'000, ']') + "}";
  const std::string spoiled[] = {"", "{\"a\": 1", "[1, 2]", "\"text\"", "null", "{\"a\": \"\xff\"}", tooDeep};
  std::vector<std::string> names{"config.json"};
  for (const auto& text : spoiled) {
    writeText(file, text);
    const auto store = open();
    EXPECT_EQ(store->integer("a"), std::nullopt);
    EXPECT_EQ(readText(file), text) << "reading must not touch it";
    store->remove("a");
    EXPECT_EQ(readText(file), text) << "nothing changed";
    EXPECT_TRUE(store->complaint());

    lines = {};
    store->set("b", ConfigValue(1LL));
    store->set("c", ConfigValue(2LL));
    EXPECT_EQ(onDisk(), Json::parse(R"({"b": 1, "c": 2})"));
    EXPECT_EQ(store->complaint(), std::nullopt) << "what lies there now is fine";
    const auto number = names.size();
    names.push_back("config.json.unreadable" + (number == 1 ? "" : "." + std::to_string(number)));
    EXPECT_EQ(readText(folder.path() / names.back()), text);
    ASSERT_EQ(lines.warning.size(), 1u);
    EXPECT_THAT(lines.warning[0], HasSubstr(names.back()));
    EXPECT_THAT(lines.error, IsEmpty());
  }
  std::sort(names.begin(), names.end());
  EXPECT_EQ(folder.names(), names);
}

TEST_F(ConfigFileTest, KeepsWhateverElseLiesThere) {
  fs::create_directory(file);
  writeText(file / "precious", "x");
  open()->set("a", ConfigValue(1LL));
  EXPECT_EQ(onDisk()["a"], 1);
  EXPECT_EQ(readText(folder / "config.json.unreadable" / "precious"), "x");

  // A pipe must not hold the program up.
  fs::remove(file);
  ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
  EXPECT_EQ(open()->complaint(), "not a regular file");
  open()->set("a", ConfigValue(2LL));
  EXPECT_EQ(onDisk()["a"], 2);
}

TEST_F(ConfigFileTest, RefusesToWriteOverWhatItCannotKeep) {
  // Readable, no JSON, and nothing can be made beside it, by root neither.
  fs::create_symlink("/proc/self/status", file);
  const auto store = open();
  EXPECT_FALSE(store->set("a", ConfigValue(1LL)));
  EXPECT_TRUE(fs::is_symlink(file));
  EXPECT_EQ(store->integer("a"), 1);
  ASSERT_EQ(lines.error.size(), 1u);
  EXPECT_THAT(lines.error[0], HasSubstr("CONFIG: write to " + file.string() + " failed: "));
}

TEST_F(ConfigFileTest, GoesOnFromMemoryWhenItCannotWrite) {
  // A file where the folder should be stops root as well.
  const auto blocked = folder / "blocked";
  writeText(blocked, "");
  const auto store = open(blocked);
  EXPECT_FALSE(store->set("a", ConfigValue(1LL)));
  store->set("b", ConfigValue("x"));
  EXPECT_FALSE(store->set("b", ConfigValue("y")));
  EXPECT_EQ(store->reloadIfChanged(), std::vector<std::string>());
  EXPECT_EQ(store->integer("a"), 1);
  EXPECT_EQ(store->string("b"), "y");
  ASSERT_EQ(lines.error.size(), 3u);
  EXPECT_THAT(lines.error[0], HasSubstr("CONFIG: write to " + (blocked / "config.json").string() + " failed: "));

  // What another process writes later does not undo it, and the next change that works writes it all, even
  // one to the value that memory holds already.
  fs::remove(blocked);
  fs::create_directory(blocked);
  writeText(blocked / "config.json", R"({"a": 7, "c": 8})");
  EXPECT_THAT(store->reloadIfChanged(), ElementsAre("c"));
  EXPECT_EQ(store->integer("a"), 1);
  EXPECT_TRUE(store->set("b", ConfigValue("y")));
  EXPECT_EQ(Json::parse(readText(blocked / "config.json")), Json::parse(R"({"a": 1, "b": "y", "c": 8})"));
  EXPECT_EQ(lines.error.size(), 3u);
}

TEST_F(ConfigFileTest, MakesItsFolderAnewWhenThereIsSomethingToWrite) {
  const auto own = folder / "own";
  const auto store = open(own);
  store->set("a", ConfigValue(1LL));
  fs::remove_all(own);
  EXPECT_EQ(store->reloadIfChanged(), std::vector<std::string>());
  EXPECT_EQ(store->complaint(), std::nullopt);
  EXPECT_FALSE(fs::exists(own)) << "its place may be missing for a moment only";
  store->set("b", ConfigValue(2LL));
  EXPECT_EQ(Json::parse(readText(own / "config.json")), Json::parse(R"({"a": 1, "b": 2})"));
  EXPECT_THAT(lines.error, IsEmpty());
}

TEST_F(ConfigFileTest, NoticesWhatOthersChange) {
  const auto mine = open();
  const auto theirs = open();
  mine->set("a", ConfigValue(1LL));
  mine->set("b", ConfigValue(1LL));
  EXPECT_EQ(theirs->integer("a"), 1);
  EXPECT_THAT(mine->reloadIfChanged(), IsEmpty()) << "own changes are no news";

  theirs->set("a", ConfigValue(2LL));
  theirs->remove("b");
  theirs->set("c", ConfigValue("new"));
  EXPECT_EQ(mine->integer("a"), 1) << "nothing changes unasked";
  mine->set("d", ConfigValue(4LL));
  EXPECT_EQ(onDisk(), Json::parse(R"({"a": 2, "c": "new", "d": 4})")) << "neither loses the other's keys";
  EXPECT_THAT(mine->reloadIfChanged(), ElementsAre("a", "b", "c")) << "even if a change of ours read it first";
  EXPECT_THAT(mine->reloadIfChanged(), IsEmpty());
  EXPECT_THAT(theirs->reloadIfChanged(), ElementsAre("d"));

  // An editor that writes in place is half done at some moment: the values go on until the file is whole.
  writeText(file, R"({"a": 3, "c")");
  EXPECT_THAT(mine->reloadIfChanged(), IsEmpty());
  EXPECT_EQ(mine->integer("a"), 2);
  writeText(file, R"({"a": 3, "c": "new", "d": 4})");
  EXPECT_THAT(mine->reloadIfChanged(), ElementsAre("a"));
  // A file deleted is a configuration emptied.
  fs::remove(file);
  EXPECT_THAT(mine->reloadIfChanged(), ElementsAre("a", "c", "d"));
}

TEST_F(ConfigFileTest, DoesNotTrustAFreshTimeStamp) {
  // Two changes within one tick of the clock leave size and time the same.
  const auto later = fs::file_time_type::clock::now() + std::chrono::hours(1);
  writeText(file, R"({"a": 1})");
  fs::last_write_time(file, later);
  const auto store = open();
  EXPECT_EQ(store->integer("a"), 1);
  writeText(file, R"({"a": 2})");
  fs::last_write_time(file, later);
  EXPECT_THAT(store->reloadIfChanged(), ElementsAre("a"));
}

TEST_F(ConfigFileTest, KeepsAFileThatWasSpoiledMeanwhile) {
  const auto store = open();
  store->set("a", ConfigValue(1LL));
  writeText(file, "{ oops");
  store->set("b", ConfigValue(2LL));
  EXPECT_EQ(onDisk(), Json::parse(R"({"a": 1, "b": 2})"));
  EXPECT_EQ(readText(folder / "config.json.unreadable"), "{ oops");
  EXPECT_EQ(lines.warning.size(), 1u);

  writeText(file, "{ again");
  EXPECT_TRUE(store->set("b", ConfigValue(2LL))) << "memory has the value, but no longer the file";
  EXPECT_EQ(onDisk(), Json::parse(R"({"a": 1, "b": 2})"));
}

}  // namespace
}  // namespace tessaspaces
