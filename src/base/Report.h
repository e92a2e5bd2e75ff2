#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace tessaspaces {

enum class ReportLevel { error, warning, info, debug };

/// Where the layers below the log say what went wrong (an unexpected X error, a lost connection). The
/// program points this at its log once; until then errors and warnings go to standard error. Any thread.
void report(ReportLevel level, std::string_view message);

/// Replaces the sink; an empty function restores standard error. Call before other threads report.
void setReportSink(std::function<void(ReportLevel, std::string_view)> sink);

}  // namespace tessaspaces
