#include "platform/x11/X11LoginItem.h"

#include <fmt/format.h>

#include <fstream>
#include <sstream>
#include <string_view>

#include "platform/x11/Text.h"

namespace tessaspaces {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view group = "[Desktop Entry]";

bool isKey(std::string_view line, std::string_view key) {
  const auto equals = line.find('=');
  return equals != std::string_view::npos && trim(line.substr(0, equals)) == key;
}

std::optional<std::string> readFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

std::optional<std::string> valueOf(std::string_view text, std::string_view key) {
  bool inGroup = false;
  while (!text.empty()) {
    const auto line = trim(takeLine(text));
    if (line.starts_with('[')) inGroup = line == group;
    if (inGroup && isKey(line, key)) return std::string(trim(line.substr(line.find('=') + 1)));
  }
  return std::nullopt;
}

// The text with its main group's `Hidden` set; everything else stays as it was.
std::string withHidden(std::string_view text, bool hidden) {
  std::string result;
  bool inGroup = false;
  while (!text.empty()) {
    const auto line = takeLine(text);
    if (trim(line).starts_with('[')) inGroup = trim(line) == group;
    if (inGroup && isKey(line, "Hidden")) continue;
    result.append(line).append("\n");
    if (hidden && trim(line) == group) result += "Hidden=true\n";
  }
  return result;
}

// Quoted as the desktop entry rules want it: backslashes are undone twice, once for the string, once for
// the argument, and a percent sign would begin a field code.
std::string execArgument(std::string_view path) {
  std::string result = "\"";
  for (const char c : path) {
    if (c == '\\') {
      result += "\\\\\\\\";
    } else if (c == '"' || c == '`' || c == '$') {
      result.append("\\\\").push_back(c);
    } else if (c == '%') {
      result += "%%";
    } else {
      result += c;
    }
  }
  return result + '"';
}

std::string freshEntry(const fs::path& executable) {
  return fmt::format(
      "{}\nType=Application\nName=tessa⊞spaces\nComment=A grid over the virtual desktops\nExec={}\n"
      "Terminal=false\nX-GNOME-Autostart-enabled=true\n",
      group, execArgument(executable.string()));
}

// Whole or not at all: a login in between must not meet half a file.
bool writeFile(const fs::path& path, std::string_view text) {
  const auto temporary = fs::path(path).concat(".new");
  {
    std::ofstream file(temporary, std::ios::binary | std::ios::trunc);
    file << text;
    if (!file.flush()) return false;
  }
  std::error_code error;
  fs::rename(temporary, path, error);
  return !error;
}

}  // namespace

fs::path X11LoginItem::standardFile() {
  const auto config = environment("XDG_CONFIG_HOME");
  const auto folder = config ? fs::path(*config) : fs::path(environment("HOME").value_or("/")) / ".config";
  return folder / "autostart" / "tessaspaces.desktop";
}

fs::path X11LoginItem::ownExecutable() {
  std::error_code error;
  return fs::read_symlink("/proc/self/exe", error);
}

bool X11LoginItem::isRegistered() {
  const auto text = readFile(file_);
  if (!text || !valueOf(*text, "Exec")) return false;
  return valueOf(*text, "Hidden") != "true" && valueOf(*text, "X-GNOME-Autostart-enabled") != "false";
}

std::optional<std::string> X11LoginItem::setRegistered(bool registered) {
  const auto old = readFile(file_);
  std::string text;
  if (registered) {
    const bool usable = old && valueOf(*old, "Exec") == execArgument(executable_.string()) &&
                        valueOf(*old, "X-GNOME-Autostart-enabled") != "false";
    text = usable ? withHidden(*old, false) : freshEntry(executable_);
  } else {
    // Nothing to switch off; without a file nothing starts.
    if (!old) return std::nullopt;
    text = withHidden(*old, true);
  }
  if (old == text) return std::nullopt;
  std::error_code error;
  fs::create_directories(file_.parent_path(), error);
  if (!writeFile(file_, text)) return fmt::format("cannot write {}", file_.string());
  return std::nullopt;
}

}  // namespace tessaspaces
