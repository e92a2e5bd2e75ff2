#pragma once

#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessaspaces {

/// What a desktop file says of an application.
struct DesktopFile {
  /// The file's id without ".desktop", sub-folders joined by "-".
  std::string id;
  std::string name;
  std::string startupWmClass;
};

/// The entry for applications in the text of a desktop file, its name in the first of the languages
/// ("de-AT" style tags) that it is translated to. Absent when the text describes no application.
[[nodiscard]] std::optional<DesktopFile> parseDesktopFile(std::string_view text,
                                                          const std::vector<std::string>& languages);

/// The installed applications by window class. Any thread.
class DesktopFiles {
 public:
  /// Folders in order of precedence; the languages are asked for at each reading.
  DesktopFiles(std::vector<std::filesystem::path> folders, std::vector<std::string> languages)
      : folders_(std::move(folders)), languages_(std::move(languages)) {}
  /// "applications" in XDG_DATA_HOME and XDG_DATA_DIRS.
  static std::vector<std::filesystem::path> standardFolders();

  /// Reads them all, which `find` does at first otherwise: hundreds of files on a full system.
  void prepare();
  /// The application whose windows have this WM_CLASS (instance and class).
  std::optional<DesktopFile> find(std::string_view instance, std::string_view windowClass);

 private:
  void read();

  const std::vector<std::filesystem::path> folders_;
  const std::vector<std::string> languages_;
  std::mutex mutex_;  // guards the rest
  bool read_ = false;
  std::map<std::string, DesktopFile> byClass_;  // StartupWMClass, lower case
  std::map<std::string, DesktopFile> byId_;     // id, and its last dotted part, lower case
};

}  // namespace tessaspaces
