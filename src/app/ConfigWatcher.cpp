#include "app/ConfigWatcher.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>

#include "settings/AtomicFile.h"
#include "settings/ConfigStore.h"
#include "settings/Log.h"
#include "settings/Settings.h"

namespace tessaspaces {
namespace {

/// Our own writes come by here too: they leave no key that another has changed.
void reload() {
  if (const auto keys = ConfigStore::reloadIfChanged(); !keys.empty()) Settings::announceChanges(keys);
}

}  // namespace

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
  // Whatever was written before the watch was there.
  reload();
}

/// Watches where the file lies and, if it is a link, where the file that it leads to lies.
void ConfigWatcher::arm() {
  const auto file = ConfigStore::fileURL();
  const auto target = followLinks(file);
  std::vector<Watch> watches{watchNearest(file)};
  if (target != file) watches.push_back(watchNearest(target));
  // A folder that is watched already keeps its descriptor.
  for (const Watch& old : watches_) {
    const bool kept = std::any_of(watches.begin(), watches.end(),
                                  [&old](const Watch& watch) { return watch.descriptor == old.descriptor; });
    if (!kept) inotify_rm_watch(inotify_, old.descriptor);
  }
  watches_ = std::move(watches);
}

/// Watches the folder of the file or, where there is none, the nearest one above that the missing may come to.
ConfigWatcher::Watch ConfigWatcher::watchNearest(const std::filesystem::path& file) {
  constexpr std::uint32_t events =
      IN_CREATE | IN_MOVED_TO | IN_MOVED_FROM | IN_CLOSE_WRITE | IN_DELETE | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
  Watch watch;
  auto entry = file;
  // A missing folder may come while the one above is not watched yet: then from below again.
  for (int climbs = 0; climbs < 100; ++climbs) {
    const auto folder = entry.parent_path();
    watch = {inotify_add_watch(inotify_, folder.c_str(), events), entry.filename().string()};
    const bool missing = watch.descriptor < 0 && (errno == ENOENT || errno == ENOTDIR);
    std::error_code error;
    if (missing && folder.has_relative_path()) {
      entry = folder;
    } else if (watch.descriptor >= 0 && entry != file && std::filesystem::is_directory(entry, error)) {
      entry = file;
    } else {
      break;
    }
  }
  if (watch.descriptor < 0) Log::warning("CONFIG: changes from outside are not noticed: {}", std::strerror(errno));
  return watch;
}

void ConfigWatcher::read() {
  alignas(inotify_event) std::array<char, 4096> buffer;
  bool changed = false;
  ssize_t length = 0;
  while ((length = ::read(inotify_, buffer.data(), buffer.size())) > 0) {
    for (ssize_t offset = 0; offset < length;) {
      const auto* event = reinterpret_cast<const inotify_event*>(buffer.data() + offset);
      offset += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
      const std::string_view name = event->len > 0 ? event->name : "";
      changed |= (event->mask & IN_Q_OVERFLOW) != 0;
      for (const Watch& watch : watches_) {
        if (event->wd != watch.descriptor) continue;
        changed |= name == watch.entry || (event->mask & (IN_DELETE_SELF | IN_MOVE_SELF | IN_IGNORED)) != 0;
      }
    }
  }
  if (!changed) return;
  // The file may have become a link, or a missing folder may be there now.
  arm();
  reload();
}

}  // namespace tessaspaces
