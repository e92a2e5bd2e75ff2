#pragma once

#include <QSocketNotifier>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace tessaspaces {

/// Takes changes that others make to the configuration file (the command line, an editor) into the running
/// program at once, also where the file is a link, and when its folder goes and comes back. The system tells
/// of them; nothing polls. Main thread.
class ConfigWatcher {
 public:
  ConfigWatcher() = default;
  ~ConfigWatcher();
  ConfigWatcher(const ConfigWatcher&) = delete;
  ConfigWatcher& operator=(const ConfigWatcher&) = delete;

  /// Also takes in what has changed since the file was read first.
  void start();

 private:
  /// An entry of a watched folder whose coming, change or going matters.
  struct Watch {
    int descriptor = -1;
    std::string entry;
  };

  void arm();
  [[nodiscard]] Watch watchNearest(const std::filesystem::path& file);
  void read();

  int inotify_ = -1;
  std::vector<Watch> watches_;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace tessaspaces
