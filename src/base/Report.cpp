#include "base/Report.h"

#include <cstdio>
#include <utility>

namespace tessaspaces {
namespace {

std::function<void(ReportLevel, std::string_view)>& sink() {
  static std::function<void(ReportLevel, std::string_view)> current;
  return current;
}

}  // namespace

void report(ReportLevel level, std::string_view message) {
  if (const auto& current = sink()) {
    current(level, message);
  } else if (level <= ReportLevel::warning) {
    std::fprintf(stderr, "tessaspaces: %.*s\n", static_cast<int>(message.size()), message.data());
  }
}

void setReportSink(std::function<void(ReportLevel, std::string_view)> newSink) {
  sink() = std::move(newSink);
}

}  // namespace tessaspaces
