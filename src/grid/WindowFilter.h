#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessaspaces {

/// What the user typed to find a window, and how well a window answers to it. Letters count whatever their case, their
/// accents and their width. Texts are UTF-8; bytes that are none count as one unknown character each.
class WindowFilter {
 public:
  /// Longer texts are cut: nobody types them, and each further byte costs every window.
  static constexpr std::size_t mostBytes = 256;

  /// True when the text is another one now. Blanks before the first letter are dropped.
  bool set(std::string_view text);
  bool append(std::string_view typed);
  /// Takes back the last character as the user sees it, accents and all. False when there is none.
  bool removeLast();

  /// As it was typed.
  [[nodiscard]] const std::string& text() const { return text_; }
  [[nodiscard]] bool isEmpty() const { return text_.empty(); }

  /// How well a window answers, smaller is better: its title starts with the text (0), its application's name does (1),
  /// a word of the title (2) or of the name (3), or the text stands somewhere in the title (4) or in the name (5).
  /// Several words count by the worst of them, unless they stand in a row. Absent: one of them is nowhere, or the
  /// filter is empty.
  [[nodiscard]] std::optional<int> rank(std::string_view title, std::string_view application) const;

 private:
  std::string text_;
  /// Folded, what `rank` looks for.
  std::string phrase_;
  std::vector<std::string> words_;
};

}  // namespace tessaspaces
