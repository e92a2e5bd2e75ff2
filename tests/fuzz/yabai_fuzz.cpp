#include "bridges/SpaceList.h"
#include "fuzz/Fuzz.h"

using namespace tessaspaces;

/// What yabai answers, read in each of the ways that the bridge reads it.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto reply = fuzz::asText(data, size);
  const auto list = SpaceList::parse(reply);
  const auto count = SpaceList::countSpaces(reply);
  const auto windows = SpaceList::countWindows(reply, 1);
  fuzz::require(!list || count, "a list that cannot be counted");
  fuzz::require(!windows || list, "windows without a list");
  fuzz::require(!windows || *windows >= 0, "fewer than no windows");
  if (!list) return 0;
  fuzz::require(static_cast<std::int64_t>(list->indexByID.size()) <= *count, "more ids than desktops");
  for (const auto& [id, index] : list->indexByID) {
    fuzz::require(list->index(id) == index, "an id that is not found again");
    const auto ofThis = SpaceList::countWindows(reply, index);
    fuzz::require(!ofThis || static_cast<std::size_t>(*ofThis) < size, "more windows than the reply has room for");
  }
  return 0;
}
