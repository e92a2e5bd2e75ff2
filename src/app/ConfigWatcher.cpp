#include "app/ConfigWatcher.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>

#include "settings/ConfigStore.h"
#include "settings/Log.h"
#include "settings/Settings.h"

namespace tessaspaces {

ConfigWatcher::~ConfigWatcher() {
  notifier_.reset();
  if (inotify_ >= 0) close(inotify_);
}

void ConfigWatcher::start() {
  if (inotify_ >= 0) return;
  inotify_ = inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
  if (inotify_ < 0) {
    Log::warning("CONFIG: changes from outside are not noticed: {}", std::strerror(errno));
    return;
  }
  notifier_ = std::make_unique<QSocketNotifier>(inotify_, QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { read(); });
  arm();
}

void ConfigWatcher::arm() {
  // Naming the folder makes it anew if somebody has removed it.
  const auto folder = ConfigStore::fileURL().parent_path();
  watch_ = inotify_add_watch(inotify_, folder.c_str(),
                             IN_MOVED_TO | IN_CLOSE_WRITE | IN_DELETE | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR);
  if (watch_ < 0) Log::warning("CONFIG: changes from outside are not noticed: {}", std::strerror(errno));
}

void ConfigWatcher::read() {
  alignas(inotify_event) std::array<char, 4096> buffer;
  const std::string fileName = ConfigStore::fileURL().filename().string();
  bool fileChanged = false;
  bool folderChanged = false;
  ssize_t length = 0;
  while ((length = ::read(inotify_, buffer.data(), buffer.size())) > 0) {
    for (ssize_t offset = 0; offset < length;) {
      const auto* event = reinterpret_cast<const inotify_event*>(buffer.data() + offset);
      offset += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
      if (event->wd != watch_ && (event->mask & IN_Q_OVERFLOW) == 0) continue;
      if (event->len > 0 && std::string_view(event->name) == fileName) fileChanged = true;
      if ((event->mask & IN_Q_OVERFLOW) != 0) fileChanged = true;
      if ((event->mask & (IN_DELETE_SELF | IN_MOVE_SELF | IN_IGNORED)) != 0) folderChanged = true;
    }
  }
  if (folderChanged) {
    inotify_rm_watch(inotify_, watch_);
    arm();
    // Whatever was written before the watch was there.
    fileChanged = true;
  }
  if (!fileChanged) return;
  // Our own writes come by here too: they leave no key that another has changed.
  if (const auto keys = ConfigStore::reloadIfChanged(); !keys.empty()) Settings::announceChanges(keys);
}

}  // namespace tessaspaces
