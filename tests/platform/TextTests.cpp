#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "platform/x11/DesktopFiles.h"
#include "platform/x11/Properties.h"
#include "platform/x11/WindowOwner.h"
#include "platform/x11/X11Applications.h"
#include "platform/x11/X11LoginItem.h"
#include "platform/x11/X11Preferences.h"

namespace tessaspaces {
namespace {

namespace fs = std::filesystem;

TEST(Properties, WhateverClientsWriteComesOutAsUtf8) {
  EXPECT_EQ(toUtf8("Schrödinger 猫", TextType::utf8), "Schrödinger 猫");
  EXPECT_EQ(toUtf8("Schr\xc3", TextType::utf8), "Schr") << "cut inside a character";
  EXPECT_EQ(toUtf8("caf\xe9", TextType::string), "café");
  EXPECT_EQ(toUtf8("na\xefve text", TextType::utf8), "naïve text") << "Latin-1 in the wrong property";
  EXPECT_EQ(toUtf8("\xed\xa0\x80", TextType::utf8), "í\xc2\xa0\xc2\x80") << "a lone surrogate is no character";
}

TEST(WindowOwner, IsAProcessOnlyWhereItIsOneOfThisMachine) {
  struct Case {
    const char* what;
    std::optional<std::uint32_t> pid;
    std::optional<std::string_view> machine;
    std::int32_t owner;
  };
  const std::vector<Case> cases{
      {"the usual", 77, "desk", 77},
      {"with its domain", 77, "desk.example.org", 77},
      {"with the end of a C string", 77, std::string_view("desk\0", 5), 77},
      {"no machine", 77, std::nullopt, 77},
      {"another machine", 77, "desktop", -4},
      {"no process", std::nullopt, "desk", -4},
      {"no number of a process", 0, "desk", -4},
      {"what would look like a client", 0xfffffffe, "desk", -4},
  };
  for (const auto& [what, pid, machine, owner] : cases) EXPECT_EQ(ownerFrom(pid, machine, "desk", 3), owner) << what;
}

TEST(Preferences, LanguagesFollowTheLocaleVariables) {
  struct Case {
    std::map<std::string, std::string> variables;
    std::vector<std::string> languages;
  };
  const std::vector<Case> cases{
      {{{"LANG", "de_AT.UTF-8"}}, {"de-AT"}},
      {{{"LANG", "de_AT.UTF-8"}, {"LC_MESSAGES", "cs_CZ"}}, {"cs-CZ"}},
      {{{"LANG", "de"}, {"LC_MESSAGES", "cs"}, {"LC_ALL", "fr_CA@euro"}}, {"fr-CA"}},
      {{{"LANG", "cs_CZ.UTF-8"}, {"LANGUAGE", "sk:cs_CZ:en"}}, {"sk", "cs-CZ", "en"}},
      {{{"LANG", "sr_RS.UTF-8@latin"}}, {"sr-Latn-RS"}},
      {{{"LANG", "C.UTF-8"}, {"LANGUAGE", "de"}}, {}},
      {{{"LC_ALL", "POSIX"}, {"LANG", "de"}}, {}},
      {{}, {}},
  };
  for (const auto& [variables, languages] : cases) {
    const auto variable = [&given = variables](const char* name) {
      const auto found = given.find(name);
      return found == given.end() ? std::nullopt : std::optional(found->second);
    };
    EXPECT_EQ(languagesFrom(variable), languages);
  }
}

TEST(DesktopFiles, NameInTheFirstLanguageOfTheMainEntry) {
  constexpr auto text =
      "# comment\n[Desktop Entry]\nType = Application\nName=Files\nName[de]=Dateien\nName[pt_BR]=Arquivos\r\n"
      "StartupWMClass=Org.example.Files\n\n[Desktop Action new]\nName=New window\n";
  EXPECT_EQ(parseDesktopFile(text, {})->name, "Files");
  EXPECT_EQ(parseDesktopFile(text, {"fr", "de-AT"})->name, "Dateien");
  EXPECT_EQ(parseDesktopFile(text, {"pt-BR", "de"})->name, "Arquivos");
  EXPECT_EQ(parseDesktopFile(text, {"pt-PT"})->name, "Files");
  EXPECT_EQ(parseDesktopFile(text, {})->startupWmClass, "Org.example.Files");
  EXPECT_FALSE(parseDesktopFile("[Desktop Entry]\nType=Link\nName=x\n", {}));
  EXPECT_FALSE(parseDesktopFile("", {}));
}

TEST(Applications, IconNearestTheWantedSize) {
  const auto icon = [](std::uint32_t side, std::uint32_t pixel) {
    std::vector<std::uint32_t> data{side, side};
    data.resize(2 + side * side, pixel);
    return data;
  };
  std::vector<std::uint32_t> data;
  for (const auto& part : {icon(16, 1), icon(48, 0x80ff0000), icon(128, 3)})
    data.insert(data.end(), part.begin(), part.end());
  const auto picked = pickIcon(data, 64);
  ASSERT_TRUE(picked);
  EXPECT_EQ(picked->width, 48);
  EXPECT_EQ(picked->pixels.size(), 48U * 48U);
  EXPECT_EQ(picked->pixels[0], 0x80800000U) << "alpha multiplied in";

  data.resize(data.size() - 1);
  EXPECT_EQ(pickIcon(data, 128)->width, 48) << "the last one is cut off";
  for (const std::vector<std::uint32_t>& broken :
       {std::vector<std::uint32_t>{}, {0, 0, 5}, {0xffffffff, 0xffffffff, 1}}) {
    EXPECT_EQ(pickIcon(broken, 64), nullptr);
  }
}

class LoginItemTest : public testing::Test {
 protected:
  LoginItemTest() {
    std::string pattern = (fs::temp_directory_path() / "tessaspaces-login-XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
  }
  ~LoginItemTest() override { fs::remove_all(folder_); }

  [[nodiscard]] fs::path file() const { return folder_ / "autostart" / "tessaspaces.desktop"; }
  [[nodiscard]] std::string text() const {
    std::ostringstream all;
    all << std::ifstream(file()).rdbuf();
    return all.str();
  }

  fs::path folder_;
};

TEST_F(LoginItemTest, TogglingKeepsWhatTheUserWrote) {
  X11LoginItem item(file(), "/opt/100% mine/tessa\"spaces");
  EXPECT_FALSE(item.isRegistered());
  EXPECT_EQ(item.setRegistered(false), std::nullopt);
  EXPECT_FALSE(fs::exists(file())) << "nothing to switch off";

  EXPECT_EQ(item.setRegistered(true), std::nullopt);
  EXPECT_TRUE(item.isRegistered());
  EXPECT_THAT(text(), testing::HasSubstr("Exec=\"/opt/100%% mine/tessa\\\\\"spaces\"\n"));

  std::ofstream(file(), std::ios::app) << "X-GNOME-Autostart-Delay=5\n[Desktop Action x]\nHidden=true\n";
  const auto edited = text();
  EXPECT_TRUE(item.isRegistered()) << "another group's key";
  EXPECT_EQ(item.setRegistered(false), std::nullopt);
  EXPECT_FALSE(item.isRegistered());
  EXPECT_EQ(item.setRegistered(true), std::nullopt);
  EXPECT_EQ(text(), edited);

  // A program that has moved since starts from its new place.
  X11LoginItem moved(file(), "/usr/bin/tessaspaces");
  EXPECT_EQ(moved.setRegistered(true), std::nullopt);
  EXPECT_THAT(text(), testing::HasSubstr("Exec=\"/usr/bin/tessaspaces\"\n"));
}

TEST_F(LoginItemTest, SaysWhereItCouldNotWrite) {
  std::ofstream(folder_ / "autostart") << "a file where a folder should be";
  X11LoginItem item(file(), "/usr/bin/tessaspaces");
  EXPECT_THAT(item.setRegistered(true).value_or(""), testing::HasSubstr(file().string()));
  EXPECT_FALSE(item.isRegistered());
}

}  // namespace
}  // namespace tessaspaces
