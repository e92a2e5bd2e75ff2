#include "grid/WindowFilter.h"

#include <utf8proc.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "settings/TextTools.h"

namespace tessaspaces {
namespace {

const utf8proc_uint8_t* bytes(std::string_view text) {
  return reinterpret_cast<const utf8proc_uint8_t*>(text.data());
}

struct Character {
  utf8proc_int32_t code = 0;
  std::size_t length = 0;
};

constexpr utf8proc_int32_t unknown = 0xFFFD;

/// The first character of a text that is not empty.
Character first(std::string_view text) {
  utf8proc_int32_t code = 0;
  const auto length = utf8proc_iterate(bytes(text), static_cast<utf8proc_ssize_t>(text.size()), &code);
  if (length < 1 || code < 0) return {unknown, 1};
  return {code, static_cast<std::size_t>(length)};
}

std::string repaired(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const auto character = first(text);
    if (character.code == unknown) {
      result += "\xEF\xBF\xBD";
    } else {
      result += text.substr(0, character.length);
    }
    text.remove_prefix(character.length);
  }
  return result;
}

/// At most so many bytes, with no character cut in two.
std::string_view cut(std::string_view text, std::size_t most) {
  std::size_t length = 0;
  while (length < text.size()) {
    const auto next = length + first(text.substr(length)).length;
    if (next > most) break;
    length = next;
  }
  return text.substr(0, length);
}

/// In a form in which equal texts are those that look alike to someone who types in a hurry.
std::string folded(std::string_view text) {
  const auto valid = repaired(text);
  constexpr auto options = UTF8PROC_STABLE | UTF8PROC_DECOMPOSE | UTF8PROC_COMPAT | UTF8PROC_CASEFOLD |
                           UTF8PROC_STRIPMARK | UTF8PROC_STRIPCC | UTF8PROC_IGNORE;
  utf8proc_uint8_t* made = nullptr;
  const auto length = utf8proc_map(bytes(valid), static_cast<utf8proc_ssize_t>(valid.size()), &made,
                                   static_cast<utf8proc_option_t>(options));
  const std::unique_ptr<utf8proc_uint8_t, decltype(&std::free)> owned(made, &std::free);
  if (length <= 0) return {};
  return {reinterpret_cast<const char*>(made), static_cast<std::size_t>(length)};
}

std::vector<std::string> wordsOf(std::string_view text) {
  std::vector<std::string> words;
  while (!text.empty()) {
    const auto word = text.substr(0, text.find(' '));
    if (!word.empty()) words.emplace_back(word);
    text.remove_prefix(std::min(text.size(), word.size() + 1));
  }
  return words;
}

bool isPartOfAWord(utf8proc_int32_t code) {
  const auto category = utf8proc_category(code);
  return (category >= UTF8PROC_CATEGORY_LU && category <= UTF8PROC_CATEGORY_LO) ||
         (category >= UTF8PROC_CATEGORY_ND && category <= UTF8PROC_CATEGORY_NO);
}

bool startsAWord(std::string_view text, std::size_t at) {
  std::size_t before = at - 1;
  while (before > 0 && (static_cast<unsigned char>(text[before]) & 0xC0U) == 0x80U) --before;
  return !isPartOfAWord(first(text.substr(before)).code);
}

/// 0: at the start, 1: where a word starts, 2: elsewhere.
std::optional<int> placeOf(std::string_view wanted, std::string_view text) {
  auto at = text.find(wanted);
  if (at == std::string_view::npos) return std::nullopt;
  if (at == 0) return 0;
  for (; at != std::string_view::npos; at = text.find(wanted, at + 1)) {
    if (startsAWord(text, at)) return 1;
  }
  return 2;
}

std::optional<int> rankOf(std::string_view wanted, std::string_view title, std::string_view application) {
  const auto inTitle = placeOf(wanted, title);
  const auto inName = placeOf(wanted, application);
  if (!inTitle && !inName) return std::nullopt;
  if (!inName || (inTitle && *inTitle <= *inName)) return *inTitle * 2;
  return *inName * 2 + 1;
}

}  // namespace

bool WindowFilter::set(std::string_view text) {
  const auto trimmed = trimmedWhiteSpace(text);
  // What follows the letters stays: a blank may be the start of the next word.
  if (!trimmed.empty()) text.remove_prefix(static_cast<std::size_t>(trimmed.data() - text.data()));
  const auto valid = trimmed.empty() ? std::string() : repaired(text);
  const auto kept = cut(valid, mostBytes);
  if (kept == text_) return false;
  text_ = kept;
  words_ = wordsOf(folded(text_));
  phrase_.clear();
  for (const auto& word : words_) {
    if (!phrase_.empty()) phrase_ += ' ';
    phrase_ += word;
  }
  return true;
}

bool WindowFilter::append(std::string_view typed) {
  return set(text_ + std::string(typed));
}

bool WindowFilter::removeLast() {
  if (text_.empty()) return false;
  std::size_t last = 0;
  utf8proc_int32_t previous = -1;
  utf8proc_int32_t state = 0;
  for (std::size_t at = 0; at < text_.size();) {
    const auto character = first(std::string_view(text_).substr(at));
    if (previous >= 0 && utf8proc_grapheme_break_stateful(previous, character.code, &state)) last = at;
    previous = character.code;
    at += character.length;
  }
  return set(text_.substr(0, last));
}

std::optional<int> WindowFilter::rank(std::string_view title, std::string_view application) const {
  if (words_.empty()) return std::nullopt;
  const auto foldedTitle = folded(title);
  const auto foldedName = folded(application);
  int worst = 0;
  for (const auto& word : words_) {
    const auto found = rankOf(word, foldedTitle, foldedName);
    if (!found) return std::nullopt;
    worst = std::max(worst, *found);
  }
  if (const auto inARow = rankOf(phrase_, foldedTitle, foldedName)) worst = std::min(worst, *inARow);
  return worst;
}

}  // namespace tessaspaces
