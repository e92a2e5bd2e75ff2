#pragma once

#include <string>
#include <vector>

#include "app/State.h"
#include "platform/Session.h"

namespace tessaspaces {

/// What the program needs before it can work, put into words.
namespace Readiness {

enum class Verdict {
  ready,
  waitForWindowManager,  // one may come yet
  foreignSession,        // the session keeps the windows and keys of others from us
};

[[nodiscard]] Verdict verdict(const std::vector<SessionFinding>& findings);

/// One line of the readiness screen, in the user's language.
struct Row {
  State state = State::ok;
  std::string title;
  std::string detail;
};

[[nodiscard]] std::vector<Row> rows(const std::vector<SessionFinding>& findings);

/// How the configuration file fares: it need not exist, but if it does it must be readable.
[[nodiscard]] Row configurationRow();

}  // namespace Readiness
}  // namespace tessaspaces
