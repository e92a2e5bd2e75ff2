#pragma once

#include <QSocketNotifier>
#include <memory>

namespace tessaspaces {

/// Takes changes that others make to the configuration file (the command line, an editor) into the running
/// program at once. The system tells of them; nothing polls. Main thread.
class ConfigWatcher {
 public:
  ConfigWatcher() = default;
  ~ConfigWatcher();
  ConfigWatcher(const ConfigWatcher&) = delete;
  ConfigWatcher& operator=(const ConfigWatcher&) = delete;

  void start();

 private:
  void arm();
  void read();

  int inotify_ = -1;
  int watch_ = -1;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace tessaspaces
