#include "support/CoreTest.h"

#include <fstream>

#include "model/Snapshot.h"
#include "settings/ConfigStore.h"
#include "settings/L10n.h"
#include "settings/Log.h"
#include "settings/Settings.h"

namespace tessaspaces {

LoggedTest::LoggedTest() {
  std::string pattern = (std::filesystem::temp_directory_path() / "tessaspaces-test-XXXXXX").string();
  folder = mkdtemp(pattern.data());
  ConfigStore::useDirectory(folder);
  Settings::setLogLevel(LogLevel::debug);
  Settings::setLanguage(AppLanguage::english);
  Spaces::forgetEverything();
}

LoggedTest::~LoggedTest() {
  std::error_code ignored;
  std::filesystem::remove_all(folder, ignored);
}

void CoreTest::start(std::string_view worldText, OperatingSystemVersion version) {
  std::string error;
  setPlatform(nullptr);
  sim = SimulatedPlatform::fromText(worldText, &error);
  ASSERT_TRUE(sim) << error;
  sim->setOperatingSystemVersion(version);
  setPlatform(sim.get());
  L10n::reload();
  sim->time().runUntilIdle();
  world().clearCalls();
}

std::vector<std::string> LoggedTest::takeLog() {
  std::vector<std::string> lines;
  std::ifstream file(Log::fileURL());
  for (std::string line; std::getline(file, line);) {
    lines.push_back(line.substr(line.find("] ") + 2));
  }
  std::filesystem::remove(Log::fileURL());
  return lines;
}

void CoreTest::put(std::string_view key, long long value) {
  ConfigStore::set(std::string(key), value);
}

}  // namespace tessaspaces
