#include "settings/ConfigJson.h"

#include <cmath>
#include <utility>

namespace tessaspaces {
namespace {

// Writing JSON is recursive, so that a file of nothing but brackets could overflow the stack.
constexpr int maxDepth = 200;

bool isTooDeep(std::string_view text) {
  int depth = 0;
  bool inString = false;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char c = text[at];
    if (inString) {
      if (c == '\\') ++at;
      if (c == '"') inString = false;
    } else if (c == '"') {
      inString = true;
    } else if (c == '[' || c == '{') {
      if (++depth > maxDepth) return true;
    } else if (c == ']' || c == '}') {
      --depth;
    }
  }
  return false;
}

}  // namespace

ParsedObject parseObject(std::string_view text) {
  if (isTooDeep(text)) return {std::nullopt, "it is nested too deeply"};
  auto json = Json::parse(text, nullptr, false);
  if (json.is_discarded()) return {std::nullopt, "it is not JSON"};
  if (!json.is_object()) return {std::nullopt, "it is not a JSON object"};
  return {std::move(json.get_ref<JsonObject&>()), {}};
}

std::string serialise(const JsonObject& object) {
  return Json(object).dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

const Json* lookup(const JsonObject& object, std::string_view key) {
  const auto found = object.find(key);
  return found != object.end() ? &found->second : nullptr;
}

std::optional<long long> asInteger(const Json* value) {
  if (value == nullptr) return std::nullopt;
  if (const auto* number = value->get_ptr<const Json::number_unsigned_t*>()) {
    return std::in_range<long long>(*number) ? std::optional(static_cast<long long>(*number)) : std::nullopt;
  }
  if (const auto* number = value->get_ptr<const Json::number_integer_t*>()) return *number;
  if (const auto* number = value->get_ptr<const Json::number_float_t*>()) {
    const double whole = std::trunc(*number);
    // 2^63 is the first double that a long long cannot hold; the comparison is false for "not a number" too.
    if (whole >= -0x1p63 && whole < 0x1p63) return static_cast<long long>(whole);
  }
  return std::nullopt;
}

std::optional<bool> asBoolean(const Json* value) {
  if (value == nullptr) return std::nullopt;
  if (value->is_boolean()) return value->get<bool>();
  if (value->is_number()) return value->get<double>() != 0;
  return std::nullopt;
}

std::optional<std::string> asString(const Json* value) {
  if (value == nullptr || !value->is_string()) return std::nullopt;
  return value->get_ref<const std::string&>();
}

std::optional<ConfigValue> asValue(const Json* value) {
  if (value == nullptr) return std::nullopt;
  if (value->is_boolean()) return ConfigValue(value->get<bool>());
  if (value->is_string()) return ConfigValue(value->get_ref<const std::string&>());
  if (!value->is_number()) return std::nullopt;
  if (value->is_number_integer()) {
    if (const auto integer = asInteger(value)) return ConfigValue(*integer);
  }
  return ConfigValue(value->get<double>());
}

Json fromValue(const ConfigValue& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return validUtf8(*text);
  return std::visit([](const auto& plain) { return Json(plain); }, value);
}

std::string validUtf8(std::string_view text) {
  const auto quoted = Json(std::string(text)).dump(-1, ' ', false, Json::error_handler_t::replace);
  return Json::parse(quoted, nullptr, false).get<std::string>();
}

int renameKeys(JsonObject& object, std::string_view from, std::string_view to) {
  int count = 0;
  auto at = object.lower_bound(from);
  while (at != object.end() && at->first.starts_with(from)) {
    const auto old = at++;
    std::string key(to);
    key += std::string_view(old->first).substr(from.size());
    object.emplace(std::move(key), std::move(old->second));
    object.erase(old);
    ++count;
  }
  return count;
}

std::vector<std::string> differingKeys(const JsonObject& one, const JsonObject& other) {
  std::vector<std::string> keys;
  auto left = one.begin();
  auto right = other.begin();
  while (left != one.end() || right != other.end()) {
    if (right == other.end() || (left != one.end() && left->first < right->first)) {
      keys.push_back((left++)->first);
    } else if (left == one.end() || right->first < left->first) {
      keys.push_back((right++)->first);
    } else {
      if (left->second != right->second) keys.push_back(left->first);
      ++left;
      ++right;
    }
  }
  return keys;
}

}  // namespace tessaspaces
