#pragma once

#include <concepts>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "settings/ConfigValue.h"

namespace tessaspaces {

/// All preferences, in one JSON file under the user's home, shared with any other process of the user that
/// uses it: a change re-reads the file, applies itself alone, and replaces the file as a whole. Reads are
/// answered from memory. A change that cannot be written is logged and applies for the rest of the run.
/// Any thread.
namespace ConfigStore {

/// The stored number, a fraction cut off. Absent when there is none, when it is of another kind, and when
/// it is out of range.
[[nodiscard]] std::optional<long long> integer(std::string_view key);
/// The stored boolean, or whether the stored number is other than 0.
[[nodiscard]] std::optional<bool> boolean(std::string_view key);
[[nodiscard]] std::optional<std::string> string(std::string_view key);
/// The stored value of whichever kind; absent for null, lists and objects too.
[[nodiscard]] std::optional<ConfigValue> value(std::string_view key);
/// Every key that the file holds, sorted.
[[nodiscard]] std::vector<std::string> keys();

/// True when the file has the value now; every change that could not be written before goes along, and counts. Text
/// that is not UTF-8 is stored with U+FFFD in place of what is not.
bool set(std::string_view key, ConfigValue value);

/// Stores a boolean, an integer or a text. A template, so that a string literal is never taken for a
/// boolean and no integer type is ambiguous.
template <class Value>
requires std::same_as<Value, bool> || std::integral<Value> || std::convertible_to<const Value&, std::string_view>
bool set(std::string_view key, const Value& value) {
  if constexpr (std::same_as<Value, bool>) {
    return set(key, ConfigValue(std::in_place_type<bool>, value));
  } else if constexpr (std::integral<Value>) {
    return set(key, ConfigValue(std::in_place_type<long long>, static_cast<long long>(value)));
  } else {
    return set(key, ConfigValue(std::in_place_type<std::string>, std::string_view(value)));
  }
}

/// True when the file does not have the key any more.
bool remove(std::string_view key);

/// The stored text where there is a non-empty one, else `candidate`, which is then stored: of several
/// threads and processes that ask at once, all get the same one.
[[nodiscard]] std::string stringOrStore(std::string_view key, std::string candidate);

/// Once at start: takes over what older versions kept in the system's preferences, if the file is empty.
void migrateFromUserDefaults(const std::vector<std::string>& keys);

/// Re-reads the file if it changed on disk. The keys whose values another process (or the user's editor)
/// has changed since the last call, sorted. A file that cannot be parsed changes nothing. Costs one `stat`
/// when nothing happened.
[[nodiscard]] std::vector<std::string> reloadIfChanged();

/// Why the file that lies there now cannot be read, in a few words of English; absent when it can be and when
/// there is none. Never waits, whatever lies there.
[[nodiscard]] std::optional<std::string> complaint();

/// ~/.config/tessaspaces unless `useDirectory` said otherwise; made when first asked for, if it can be, and
/// again by a change when it has gone.
[[nodiscard]] std::filesystem::path directory();
/// config.json in `directory()`.
[[nodiscard]] std::filesystem::path fileURL();

/// Forgets all that is in memory and works in another folder from now on; an empty path means the default.
void useDirectory(std::filesystem::path directory);

}  // namespace ConfigStore
}  // namespace tessaspaces
