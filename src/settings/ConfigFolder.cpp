#include "settings/ConfigFolder.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <vector>

namespace tessaspaces {

std::filesystem::path homeDirectory() {
  if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0') return home;
  std::vector<char> buffer(16384);
  passwd entry{};
  passwd* found = nullptr;
  if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr) {
    return found->pw_dir;
  }
  return "/";
}

std::string displayPath(const std::filesystem::path& path) {
  auto text = path.string();
  const auto home = homeDirectory().string();
  const bool inside = text.starts_with(home) && text.substr(home.size()).starts_with('/');
  return inside ? "~" + text.substr(home.size()) : text;
}

std::filesystem::path defaultConfigDirectory() {
  return homeDirectory() / ".config" / "tessaspaces";
}

}  // namespace tessaspaces
