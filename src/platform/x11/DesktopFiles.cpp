#include "platform/x11/DesktopFiles.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "platform/x11/Text.h"

namespace tessaspaces {
namespace {

namespace fs = std::filesystem;

// How well a key like "Name[de]" suits: 0 is the best language, one more than all for the plain name.
std::optional<std::size_t> nameRank(std::string_view key, const std::vector<std::string>& languages) {
  if (key == "Name") return languages.size();
  if (!key.starts_with("Name[") || !key.ends_with("]")) return std::nullopt;
  std::string tag(key.substr(5, key.size() - 6));
  tag = tag.substr(0, tag.find_first_of(".@"));
  std::replace(tag.begin(), tag.end(), '_', '-');
  for (std::size_t i = 0; i < languages.size(); ++i) {
    if (languages[i] == tag || languages[i].substr(0, languages[i].find('-')) == tag) return i;
  }
  return std::nullopt;
}

// Desktop files have a few kilobytes, with all their translations.
constexpr std::uintmax_t maxFileSize = 1U << 20;

std::optional<std::string> readFile(const fs::path& path) {
  std::error_code error;
  // A pipe would be waited for.
  if (!fs::is_regular_file(path, error) || fs::file_size(path, error) > maxFileSize || error) return std::nullopt;
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

}  // namespace

std::optional<DesktopFile> parseDesktopFile(std::string_view text, const std::vector<std::string>& languages) {
  DesktopFile file;
  bool inEntry = false;
  bool application = false;
  std::size_t bestRank = languages.size() + 1;
  while (!text.empty()) {
    const auto line = trim(takeLine(text));
    if (line.empty() || line.front() == '#') continue;
    if (line.front() == '[') {
      inEntry = line == "[Desktop Entry]";
      continue;
    }
    const auto equals = line.find('=');
    if (!inEntry || equals == std::string_view::npos) continue;
    const auto key = trim(line.substr(0, equals));
    const auto value = trim(line.substr(equals + 1));
    if (key == "Type") application = value == "Application";
    if (key == "StartupWMClass") file.startupWmClass = value;
    if (const auto rank = nameRank(key, languages); rank && *rank < bestRank) {
      bestRank = *rank;
      file.name = value;
    }
  }
  if (!application || file.name.empty()) return std::nullopt;
  return file;
}

std::vector<fs::path> DesktopFiles::standardFolders() {
  std::vector<fs::path> folders;
  const auto home = environment("HOME");
  if (const auto data = environment("XDG_DATA_HOME")) {
    folders.emplace_back(fs::path(*data) / "applications");
  } else if (home) {
    folders.emplace_back(fs::path(*home) / ".local/share/applications");
  }
  std::string dirs = environment("XDG_DATA_DIRS").value_or("/usr/local/share:/usr/share");
  std::istringstream list(dirs);
  for (std::string dir; std::getline(list, dir, ':');) {
    if (!dir.empty()) folders.emplace_back(fs::path(dir) / "applications");
  }
  return folders;
}

void DesktopFiles::prepare() {
  const std::lock_guard lock(mutex_);
  if (!read_) read();
}

std::optional<DesktopFile> DesktopFiles::find(std::string_view instance, std::string_view windowClass) {
  const std::lock_guard lock(mutex_);
  if (!read_) read();
  for (const auto* index : {&byClass_, &byId_}) {
    for (const auto text : {windowClass, instance}) {
      if (text.empty()) continue;
      if (const auto found = index->find(lowerCase(text)); found != index->end()) return found->second;
    }
  }
  return std::nullopt;
}

void DesktopFiles::read() {
  read_ = true;
  for (const auto& folder : folders_) {
    std::error_code error;
    fs::recursive_directory_iterator files(folder, fs::directory_options::skip_permission_denied, error);
    for (; !error && files != fs::recursive_directory_iterator(); files.increment(error)) {
      const auto& path = files->path();
      if (path.extension() != ".desktop") continue;
      const auto text = readFile(path);
      auto file = text ? parseDesktopFile(*text, languages_) : std::nullopt;
      if (!file) continue;
      auto id = fs::path(path).replace_extension().lexically_relative(folder).string();
      std::replace(id.begin(), id.end(), '/', '-');
      file->id = id;
      // The first folder to name something wins, and a whole id wins over the last part of another.
      if (!file->startupWmClass.empty()) byClass_.emplace(lowerCase(file->startupWmClass), *file);
      byId_.emplace(lowerCase(id), *file);
      if (const auto dot = id.rfind('.'); dot != std::string::npos) byId_.emplace(lowerCase(id.substr(dot + 1)), *file);
    }
  }
}

}  // namespace tessaspaces
