#include "platform/simulated/WorldText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>
#include <utility>

namespace tessaspaces {

namespace {

constexpr std::int32_t firstPid = 1001;
constexpr std::int64_t fullScreenType = 4;

/// Splits into words; the signs that end a word wherever they stand are words of their own.
std::vector<std::string_view> wordsOf(std::string_view text) {
  constexpr std::string_view blanks = " \t\r\n";
  constexpr std::string_view signs = ";|/[]*!";
  std::vector<std::string_view> words;
  while (true) {
    const auto start = text.find_first_not_of(blanks);
    if (start == std::string_view::npos) return words;
    text.remove_prefix(start);
    const auto isSign = signs.find(text.front()) != std::string_view::npos;
    const auto end = isSign ? 1 : text.find_first_of(std::string(blanks).append(signs));
    words.push_back(text.substr(0, end));
    text.remove_prefix(words.back().size());
  }
}

/// Takes a number from the front of the text.
std::optional<double> takeNumber(std::string_view& text) {
  double number = 0;
  const auto [end, status] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (status != std::errc{} || !std::isfinite(number)) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return number;
}

bool takeSign(std::string_view& text, char sign) {
  if (!text.starts_with(sign)) return false;
  text.remove_prefix(1);
  return true;
}

class Reader {
 public:
  explicit Reader(std::string_view text) : words_(wordsOf(text)) {}

  std::optional<WorldDescription> read(std::string* error) {
    do {
      if (!readDisplay()) {
        if (error) *error = where_ + reason_;
        return std::nullopt;
      }
    } while (take(";"));
    return std::move(description_);
  }

 private:
  [[nodiscard]] std::string_view peek() const { return position_ < words_.size() ? words_[position_] : ""; }

  bool take(std::string_view word) {
    if (peek() != word || word.empty()) return false;
    ++position_;
    return true;
  }

  /// The next word when it is not a sign; empty otherwise.
  std::string_view takeName() {
    const auto word = peek();
    if (word.empty() || std::string_view(";|/[]*!").find(word.front()) != std::string_view::npos) return {};
    ++position_;
    return word;
  }

  bool fail(std::string reason) {
    reason_ = std::move(reason);
    return false;
  }

  bool readDisplay() {
    where_ = "display " + std::to_string(description_.displays.size() + 1) + ": ";
    DisplaySetup display;
    display.name = takeName();
    if (display.name.empty()) return fail("a name is missing");
    where_ = "display '" + display.name + "': ";
    const auto& displays = description_.displays;
    const bool taken =
        std::any_of(displays.begin(), displays.end(), [&](const auto& other) { return other.name == display.name; });
    if (taken) return fail("the name is used twice");
    if (!readSize(display)) return false;
    display.builtIn = take("builtin");
    if (!take("|")) return fail("'|' is missing before '" + std::string(peek()) + "'");
    display.spaces.clear();
    origin_ = display.topLeft.value_or(Point{nextX_, 0});
    nextX_ = origin_.x + display.size.width;
    return readSpaces(std::move(display));
  }

  bool readSize(DisplaySetup& display) {
    const auto word = takeName();
    auto rest = word;
    const auto width = takeNumber(rest);
    const bool hasHeight = takeSign(rest, 'x');
    const auto height = hasHeight ? takeNumber(rest) : std::nullopt;
    if (!width || !height) return fail("a size like 1920x1080 is missing before '" + std::string(word) + "'");
    if (!(*width > 0 && *height > 0)) return fail("the size is not positive");
    display.size = {*width, *height};
    if (rest.empty()) return true;
    const auto x = takeSign(rest, '+') ? takeNumber(rest) : std::nullopt;
    const auto y = rest.empty() ? std::optional(0.0) : takeSign(rest, '+') ? takeNumber(rest) : std::nullopt;
    if (!x || !y || !rest.empty()) return fail("'" + std::string(word) + "' is no size with a position");
    display.topLeft = Point{*x, *y};
    return true;
  }

  bool readSpaces(DisplaySetup display) {
    bool marked = false;
    while (!peek().empty() && peek() != ";") {
      if (take("/")) continue;
      SpaceSetup space;
      space.name = takeName();
      if (space.name.empty()) return fail("the name of a desktop is missing before '" + std::string(peek()) + "'");
      if (space.name == "-") space.name.clear();
      for (bool more = true; more;) {
        if (take("*")) {
          if (std::exchange(marked, true)) return fail("two desktops are marked as the current one");
          display.current = display.spaces.size();
        } else if (take("!")) {
          space.type = fullScreenType;
        } else {
          more = false;
        }
      }
      display.spaces.push_back(std::move(space));
      ++spaceCount_;
      if (take("[") && !readWindows()) return false;
    }
    if (display.spaces.empty()) return fail("there is no desktop");
    description_.displays.push_back(std::move(display));
    return true;
  }

  bool readWindows() {
    double step = 0;
    while (!take("]")) {
      const auto title = takeName();
      if (title.empty()) return fail("']' is missing");
      WindowSetup window;
      window.title = title;
      window.pid = applicationNamed(window.title);
      window.space = spaceCount_;
      window.bounds.x = origin_.x + 40 + step;
      window.bounds.y = origin_.y + 40 + step;
      step += 32;
      description_.windows.push_back(std::move(window));
    }
    return true;
  }

  std::int32_t applicationNamed(const std::string& name) {
    auto& applications = description_.applications;
    const auto next = firstPid + static_cast<std::int32_t>(applications.size());
    const auto [known, isNew] = pids_.emplace(name, next);
    if (isNew) applications.push_back({next, name, "simulated." + name});
    return known->second;
  }

  std::vector<std::string_view> words_;
  std::size_t position_ = 0;
  WorldDescription description_;
  std::map<std::string, std::int32_t> pids_;
  SpaceID spaceCount_ = 0;
  Point origin_;
  double nextX_ = 0;
  std::string where_;
  std::string reason_;
};

}  // namespace

std::optional<WorldDescription> parseWorld(std::string_view text, std::string* error) {
  return Reader(text).read(error);
}

}  // namespace tessaspaces
