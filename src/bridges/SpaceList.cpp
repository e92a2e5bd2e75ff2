#include "bridges/SpaceList.h"

#include <algorithm>
#include <cmath>

#include "settings/ConfigJson.h"

namespace tessaspaces {
namespace {

// Json::parse and its results' destruction work on a stack of their own, so that depth does no harm. Copying, comparing
// or writing a value would recurse: none of that here.
std::optional<Json> parseArray(std::string_view reply) {
  auto json = Json::parse(reply, nullptr, false);
  if (!json.is_array()) return std::nullopt;  // also when it is not JSON
  return json;
}

std::optional<Json> parseObjects(std::string_view reply) {
  auto json = parseArray(reply);
  if (json && !std::all_of(json->begin(), json->end(), [](const Json& element) { return element.is_object(); })) {
    return std::nullopt;
  }
  return json;
}

const Json* value(const Json& object, std::string_view key) {
  return lookup(object.get_ref<const JsonObject&>(), key);
}

std::optional<SpaceID> asSpaceID(const Json* value) {
  if (value == nullptr) return std::nullopt;
  if (const auto* number = value->get_ptr<const Json::number_unsigned_t*>()) return *number;
  if (const auto* number = value->get_ptr<const Json::number_float_t*>()) {
    const double whole = std::trunc(*number);
    // 2^64 is the first double that a space id cannot hold.
    if (whole >= 0 && whole < 0x1p64) return static_cast<SpaceID>(whole);
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::int64_t> SpaceList::index(SpaceID ofSpace) const {
  const auto found = indexByID.find(ofSpace);
  return found != indexByID.end() ? std::optional(found->second) : std::nullopt;
}

std::optional<SpaceList> SpaceList::parse(std::string_view reply) {
  const auto spaces = parseObjects(reply);
  if (!spaces) return std::nullopt;
  SpaceList list;
  for (const auto& space : *spaces) {
    const auto id = asSpaceID(value(space, "id"));
    if (!id) continue;
    if (const auto index = asInteger(value(space, "index"))) list.indexByID[*id] = *index;
    if (asBoolean(value(space, "has-focus")).value_or(false)) list.focusedID = id;
  }
  return list;
}

std::optional<std::int64_t> SpaceList::countSpaces(std::string_view reply) {
  const auto spaces = parseArray(reply);
  if (!spaces) return std::nullopt;
  return static_cast<std::int64_t>(spaces->size());
}

std::optional<std::int64_t> SpaceList::countWindows(std::string_view reply, std::int64_t onSpaceIndex) {
  const auto spaces = parseObjects(reply);
  if (!spaces) return std::nullopt;
  const auto isWanted = [&](const Json& space) { return asInteger(value(space, "index")) == onSpaceIndex; };
  const auto space = std::find_if(spaces->begin(), spaces->end(), isWanted);
  if (space == spaces->end()) return std::nullopt;
  const auto* windows = value(*space, "windows");
  if (windows == nullptr || !windows->is_array()) return std::nullopt;
  return static_cast<std::int64_t>(windows->size());
}

}  // namespace tessaspaces
