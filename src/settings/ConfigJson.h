#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "settings/ConfigValue.h"

namespace tessaspaces {

// The configuration as JSON: kept apart from the store so that only what must know JSON includes it.

using Json = nlohmann::json;
/// Sorted by key, which is the order in the file too.
using JsonObject = Json::object_t;

struct ParsedObject {
  std::optional<JsonObject> object;
  std::string error;  // why there is none
};
[[nodiscard]] ParsedObject parseObject(std::string_view text);

/// Pretty-printed with sorted keys.
[[nodiscard]] std::string serialise(const JsonObject& object);

/// Null when the key is missing.
[[nodiscard]] const Json* lookup(const JsonObject& object, std::string_view key);
// What a value is as a setting; absent for null pointers and for values of another kind.
[[nodiscard]] std::optional<long long> asInteger(const Json* value);
[[nodiscard]] std::optional<bool> asBoolean(const Json* value);
[[nodiscard]] std::optional<std::string> asString(const Json* value);
[[nodiscard]] std::optional<ConfigValue> asValue(const Json* value);
[[nodiscard]] Json fromValue(const ConfigValue& value);

/// The text with everything that is not UTF-8, which JSON cannot hold, replaced by U+FFFD.
[[nodiscard]] std::string validUtf8(std::string_view text);

/// Moves every key that begins with `from` to `to` plus its rest, unless that key has a value already, which
/// then wins. The number of keys that began with `from`.
int renameKeys(JsonObject& object, std::string_view from, std::string_view to);

/// The keys that only one of the two has or that have different values, sorted.
[[nodiscard]] std::vector<std::string> differingKeys(const JsonObject& one, const JsonObject& other);

}  // namespace tessaspaces
