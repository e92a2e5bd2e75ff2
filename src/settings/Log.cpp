#include "settings/Log.h"

#include <chrono>
#include <mutex>

#include "base/Report.h"
#include "settings/ConfigFolder.h"
#include "settings/ConfigStore.h"
#include "settings/LogFile.h"
#include "settings/Settings.h"

namespace tessaspaces::Log {
namespace {

std::mutex lock;  // guards the log file and its backup within this process

}  // namespace

bool isEnabled(LogLevel level) {
  return level <= Settings::logLevel();
}

void write(LogLevel level, std::string_view message) {
  const auto file = fileURL();
  const auto line = logLine(std::chrono::system_clock::now(), level, message);
  const std::lock_guard guard(lock);
  appendToLog(file, line, maxLogBytes);
}

std::filesystem::path fileURL() {
  return ConfigStore::directory() / "tessaspaces.log";
}

std::string displayPath() {
  return tessaspaces::displayPath(fileURL());
}

void takeReports() {
  setReportSink([](ReportLevel level, std::string_view message) {
    // The two enumerations list the same levels in the same order.
    log([&] { return message; }, static_cast<LogLevel>(level));
  });
}

}  // namespace tessaspaces::Log
