#include <optional>
#include <string>
#include <vector>

#include "model/Navigation.h"
#include "settings/L10n.h"
#include "settings/Log.h"

namespace tessaspaces::Spaces {
namespace {

struct Case {
  const char* name;
  int index;
  GridDirection direction;
  int count;
  int columns;
  bool circulate;
  bool vertically;
  CirculationJoin join;
  std::optional<std::int64_t> expected;
};

constexpr auto left = GridDirection::left;
constexpr auto right = GridDirection::right;
constexpr auto up = GridDirection::up;
constexpr auto down = GridDirection::down;
constexpr auto nextRow = CirculationJoin::nextRow;
constexpr auto sameRow = CirculationJoin::sameRow;
constexpr std::nullopt_t none = std::nullopt;
constexpr bool yes = true;
constexpr bool no = false;

// Twelve desktops in four columns are three full rows; ten are two full rows and a short one of two.
const std::vector<Case>& cases() {
  static const std::vector<Case> table{
      {"inside right", 0, right, 12, 4, yes, yes, nextRow, 1},
      {"inside down", 0, down, 12, 4, yes, yes, nextRow, 4},
      {"inside left", 5, left, 12, 4, no, no, nextRow, 4},
      {"inside up", 5, up, 12, 4, no, no, nextRow, 1},
      {"off, row end right", 3, right, 12, 4, no, no, nextRow, none},
      {"off, row start left", 4, left, 12, 4, no, no, nextRow, none},
      {"off, top up", 1, up, 12, 4, no, no, nextRow, none},
      {"off, bottom down", 9, down, 12, 4, no, no, nextRow, none},
      {"nextRow, row end right", 3, right, 12, 4, yes, no, nextRow, 4},
      {"nextRow, row start left", 4, left, 12, 4, yes, no, nextRow, 3},
      {"nextRow, last -> first", 11, right, 12, 4, yes, no, nextRow, 0},
      {"nextRow, first -> last", 0, left, 12, 4, yes, no, nextRow, 11},
      {"sameRow, row end right", 3, right, 12, 4, yes, no, sameRow, 0},
      {"sameRow, row start left", 4, left, 12, 4, yes, no, sameRow, 7},
      {"sameRow, last -> row start", 11, right, 12, 4, yes, no, sameRow, 8},
      {"vertical off, top up", 1, up, 12, 4, yes, no, nextRow, none},
      {"vertical off, bottom down", 9, down, 12, 4, yes, no, nextRow, none},
      {"vertical on, top up", 1, up, 12, 4, yes, yes, nextRow, 9},
      {"vertical on, bottom down", 9, down, 12, 4, yes, yes, nextRow, 1},
      {"ragged, row end right", 9, right, 10, 4, yes, no, nextRow, 0},
      {"ragged, sameRow end right", 9, right, 10, 4, yes, no, sameRow, 8},
      {"ragged, down into gap", 6, down, 10, 4, no, no, nextRow, none},
      {"ragged, up from short row", 8, up, 10, 4, no, no, nextRow, 4},
      {"ragged, vertical up to shorter col", 2, up, 10, 4, yes, yes, nextRow, 6},
      {"ragged, vertical up full col", 1, up, 10, 4, yes, yes, nextRow, 9},
      {"ragged, vertical down wraps", 9, down, 10, 4, yes, yes, nextRow, 1},
  };
  return table;
}

std::string text(std::optional<std::int64_t> index) {
  return index ? std::to_string(*index) : "nil";
}

}  // namespace

SelfTestResult runCirculationSelfTest() {
  std::vector<std::string> failures;
  for (const auto& test : cases()) {
    const auto got =
        neighbor(test.index, test.direction, test.count, test.columns, test.circulate, test.vertically, test.join);
    if (got != test.expected) {
      failures.push_back(std::string(test.name) + ": expected " + text(test.expected) + ", got " + text(got));
    }
  }
  const std::size_t count = cases().size();
  Log::info("SELF-TEST CIRCULATION: {}/{} passed", count - failures.size(), count);
  for (const auto& failure : failures) Log::error("SELF-TEST CIRCULATION: FAILED — {}", failure);

  SelfTestResult result{static_cast<int>(count), static_cast<int>(failures.size()), {}};
  if (failures.empty()) {
    result.report = L10n::t("selftest.circulation.ok", std::to_string(count));
    return result;
  }
  result.report =
      L10n::t("selftest.circulation.failed", std::to_string(failures.size()), std::to_string(count)) + "\n\n";
  for (std::size_t i = 0; i < failures.size(); ++i) result.report += (i == 0 ? "" : "\n") + failures[i];
  return result;
}

std::string selfTestCirculation() {
  return runCirculationSelfTest().report;
}

}  // namespace tessaspaces::Spaces
