#pragma once

#include <concepts>
#include <filesystem>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tessaspaces {

/// Every text that the user sees, by key, in the user's language. A text that a language lacks is shown in
/// English, and a key that no table has is shown as it stands, so that nothing is ever blank. Any thread.
namespace L10n {

/// What a text may be given to show: a string or an integer.
class Argument {
 public:
  template <std::convertible_to<std::string_view> Text>
  Argument(const Text& text) : value_(std::string(std::string_view(text))) {}
  template <std::integral Integer>
  requires(!std::same_as<Integer, bool>) Argument(Integer value) : value_(static_cast<long long>(value)) {}

  /// The string itself, or the integer in decimal.
  [[nodiscard]] std::string text() const;

 private:
  std::variant<std::string, long long> value_;
};

/// The text for `key`.
[[nodiscard]] std::string t(std::string_view key);

/// `format` with its conversions replaced: `%@` and `%d` take the next argument, `%2$@` the second one,
/// `%%` is a per cent sign. Either conversion shows either kind of argument. What is no conversion, or asks
/// for an argument that was not given, is left as it stands; surplus arguments are ignored.
[[nodiscard]] std::string format(std::string_view format, const std::vector<Argument>& arguments);

/// The text for `key`, formatted with the arguments.
template <class... Arguments>
requires(sizeof...(Arguments) > 0) [[nodiscard]] std::string t(std::string_view key, const Arguments&... arguments) {
  return format(t(key), std::vector<Argument>{Argument(arguments)...});
}

/// Loads the table of the language that is set now and posts `Notifications::languageChanged`.
void reload();

/// The code of the language to show: the one set, else the best match for the user's preferred languages
/// among those offered, else "en".
[[nodiscard]] std::string preferredLanguageCode();

/// The first of `offered` that serves the first of the user's `preferred` tags ("de-AT", "cs_CZ.UTF-8") that
/// any serves; empty when there is none.
[[nodiscard]] std::string bestMatch(const std::vector<std::string>& preferred, const std::vector<std::string>& offered);

/// The folder that holds "Localization" and the images. Where none was set: TESSASPACES_RESOURCES from the
/// environment, else share/tessaspaces beside the folder of this executable, else the source tree's.
[[nodiscard]] std::filesystem::path resourceFolder();

/// Takes the tables from this folder from now on; an empty path returns to the search above.
void setResourceFolder(std::filesystem::path folder);

}  // namespace L10n

/// Short for L10n::t.
[[nodiscard]] inline std::string L(std::string_view key) {
  return L10n::t(key);
}

}  // namespace tessaspaces
