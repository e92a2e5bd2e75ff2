#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <regex>
#include <thread>

#include "base/Report.h"
#include "settings/Fakes.h"
#include "settings/LogFile.h"
#include "settings/Settings.h"

namespace tessaspaces {
namespace {

using namespace tessaspaces::testing;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class LogTest : public SettingsTest {};

std::size_t linesIn(const std::string& text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

TEST_F(LogTest, BuildsOnlyWhatItWrites) {
  int built = 0;
  const auto message = [&] {
    ++built;
    return std::string("message");
  };
  const LogLevel levels[] = {LogLevel::error, LogLevel::warning, LogLevel::info, LogLevel::debug};
  for (const auto level : levels) Log::log(message, level);
  EXPECT_EQ(built, 1) << "errors only, by default";
  Settings::setLogLevel(LogLevel::info);
  for (const auto level : levels) Log::log(message, level);
  Log::log(message);
  EXPECT_EQ(built, 4);
  EXPECT_EQ(linesIn(log()), 4u);
}

TEST_F(LogTest, WritesDateLevelAndMessage) {
  Settings::setLogLevel(LogLevel::debug);
  Log::error("SWITCH: {} of {}", 1, "two");
  Log::debug("{{}} %s");
  std::smatch match;
  const auto text = log();
  const std::regex expected(
      R"(\[\d{4}-\d\d-\d\d \d\d:\d\d:\d\d \+0000\] \[ERROR\] SWITCH: 1 of two\n\[[^\]]*\] \[DEBUG\] \{\} %s\n)");
  EXPECT_TRUE(std::regex_match(text, match, expected)) << text;
  const auto time =
      std::chrono::sys_days(std::chrono::year(2026) / 11 / 21) + std::chrono::hours(5) + std::chrono::minutes(54);
  EXPECT_EQ(logLine(time, LogLevel::warning, "x"), "[2026-11-21 05:54:00 +0000] [WARNING] x\n");
}

TEST_F(LogTest, TakesReportsOfLowerLayers) {
  Log::takeReports();
  report(ReportLevel::error, "X11: lost");
  report(ReportLevel::warning, "X11: odd");
  setReportSink({});
  EXPECT_THAT(log(), HasSubstr("[ERROR] X11: lost\n"));
  EXPECT_EQ(linesIn(log()), 1u);
}

TEST_F(LogTest, RotatesOnTheSizeBeforeTheLine) {
  const auto backup = Log::fileURL().string() + ".1";
  writeText(backup, "older");
  writeText(Log::fileURL(), "");
  fs::resize_file(Log::fileURL(), 2097151);
  Log::error("one byte short");
  EXPECT_EQ(readText(backup), "older");

  fs::resize_file(Log::fileURL(), 2097152);
  Log::error("full");
  EXPECT_FALSE(fs::exists(Log::fileURL()));
  EXPECT_THAT(readText(backup), HasSubstr("] full\n")) << "the line that found it full goes along";
  Log::error("fresh");
  EXPECT_EQ(linesIn(log()), 1u);
  EXPECT_EQ(folder.names(), (std::vector<std::string>{"tessaspaces.log", "tessaspaces.log.1"}));
}

TEST_F(LogTest, OneProcessRotatesWhenTwoFindTheLogFull) {
  const auto file = folder / "shared.log";
  writeText(file, "full");
  const int first = ::open(file.c_str(), O_WRONLY | O_APPEND);
  const int second = ::open(file.c_str(), O_WRONLY | O_APPEND);
  rotateLog(first, file);
  writeText(file, "new");
  ::close(first);
  rotateLog(second, file);
  ::close(second);
  EXPECT_EQ(readText(file), "new");
  EXPECT_EQ(readText(file.string() + ".1"), "full");
}

TEST_F(LogTest, FailsSilently) {
  Log::error("one");
  fs::remove_all(folder.path());
  Log::error("two");
  EXPECT_FALSE(fs::exists(folder.path()));
  // A file where the folder should be, and a folder where the file should be.
  writeText(folder.path(), "");
  Log::error("three");
  fs::remove(folder.path());
  fs::create_directories(Log::fileURL());
  Log::error("four");
}

TEST_F(LogTest, ShowsTheHomeFolderAsATilde) {
  const std::string home = std::getenv("HOME") != nullptr ? std::getenv("HOME") : "";
  ::setenv("HOME", folder.path().c_str(), 1);
  EXPECT_EQ(Log::displayPath(), "~/tessaspaces.log");
  ConfigStore::useDirectory({});
  EXPECT_EQ(Log::displayPath(), "~/.config/tessaspaces/tessaspaces.log");
  EXPECT_TRUE(fs::is_directory(folder / ".config/tessaspaces"));
  ConfigStore::useDirectory(folder.path().string() + "ish");
  EXPECT_EQ(Log::displayPath(), folder.path().string() + "ish/tessaspaces.log");
  fs::remove_all(folder.path().string() + "ish");
  ::setenv("HOME", home.c_str(), 1);
}

TEST_F(LogTest, ThreadsAndProcessesLoseNoLine) {
  // Small enough that the file fills up once: a second rotation by the other process would lose the first part.
  constexpr int lines = 300;
  const auto file = folder / "shared.log";
  const auto limit = static_cast<long long>(lines * 2 * 10 * 2 / 3);
  std::vector<pid_t> children;
  for (const std::string name : {"first", "other"}) {
    const pid_t child = ::fork();
    if (child == 0) {
      for (int line = 0; line < lines; ++line) appendToLog(file, name + " row\n", limit);
      ::_exit(0);
    }
    children.push_back(child);
  }
  for (const auto child : children) ::waitpid(child, nullptr, 0);
  EXPECT_EQ(linesIn(readText(file)) + linesIn(readText(file.string() + ".1")), 2u * lines);

  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([] {
      for (int line = 0; line < 50; ++line) Log::error("line {}", line);
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(linesIn(log()), 200u);
}

}  // namespace
}  // namespace tessaspaces
