#include "platform/x11/X11Capture.h"

#include <malloc.h>
#include <xcb/xfixes.h>

#include <algorithm>
#include <chrono>
#include <utility>

#include "platform/x11/UnlistedWindows.h"

namespace tessaspaces {
namespace {

using namespace std::chrono_literals;

// Windows that went from the screen are read a moment later: the switch that hid them has the server first, and a
// user who passes through desktops may be back by then.
constexpr auto leaveDelay = 50ms;
// How often changes are announced.
constexpr auto changeInterval = 250ms;
// How long the shared memory is kept for the next batch.
constexpr auto memoryTime = 5s;
// The most that is fetched at once: more than any overview shows.
constexpr std::size_t batchBytes = std::size_t{64} << 20U;

// Pictures that were replaced leave holes of many megabytes.
void returnFreeMemory() {
#ifdef __GLIBC__
  malloc_trim(0);
#endif
}

}  // namespace

/// What there is between `begin` and `stop`, in the order in which each part needs the ones before it.
struct X11Capture::Session {
  Session(std::unique_ptr<CaptureLink> opened, const Dispatch& dispatch)
      : link(std::move(opened)), windows(*link, dispatch) {}

  std::unique_ptr<CaptureLink> link;
  SharedSegment memory{*link};
  CapturedWindows windows;
  X11Wallpapers wallpapers{*link, memory};
  RegistrationRef watch;

  // The batch under way, and whose pictures it makes.
  std::unique_ptr<PictureBatch> batch;
  std::vector<WindowID> batchWindows;

  std::set<WindowID> first;  // windows on screen that have no picture yet
  std::set<WindowID> news;   // to be announced
  bool compositorDirty = true;
  bool wallpaperDirty = false;
  bool drainPending = false;
  bool leavePending = false;
  bool announcePending = false;
  bool releasePending = false;
  TimePoint memoryUsed;
};

bool X11Capture::begin() {
  if (session_) return true;
  auto link = CaptureLink::open(connection_);
  if (!link) return false;
  session_ = std::make_shared<Session>(std::move(link), dispatch_);
  auto& channel = session_->link->channel();
  const auto root = session_->link->root();
  const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
  channel.send<xcb_change_window_attributes>(root, std::uint32_t{XCB_CW_EVENT_MASK}, &mask);
  // A compositor that ends may do so by giving up the selection alone.
  channel.send<xcb_xfixes_select_selection_input>(
      root, session_->link->compositorSelection(),
      std::uint32_t{XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                    XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                    XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE});
  act();
  session_->watch = dispatch_.watch(xcb_get_file_descriptor(channel.get()), [this] { drain(); });
  drainLater();
  return true;
}

void X11Capture::stop() {
  if (!session_) return;
  session_.reset();
  returnFreeMemory();
}

void X11Capture::setLimits(const PreviewLimits& limits) {
  if (std::exchange(limits_, limits) == limits || !session_) return;
  session_->windows.outdatePictures();
  act();
}

std::uint64_t X11Capture::roundTrips() const {
  return session_ ? session_->link->channel().roundTrips() : 0;
}

void X11Capture::after(Duration delay, std::function<void(Session&)> work) {
  dispatch_.after(delay, [weak = std::weak_ptr(session_), work = std::move(work)] {
    if (const auto session = weak.lock()) work(*session);
  });
}

void X11Capture::drainLater() {
  // After a round trip: it may have queued events inside xcb, which the watched descriptor does not show.
  if (std::exchange(session_->drainPending, true)) return;
  dispatch_.async([this, weak = std::weak_ptr(session_)] {
    if (const auto session = weak.lock()) {
      session->drainPending = false;
      drain();
    }
  });
}

void X11Capture::drain() {
  const auto session = session_;  // observers may stop the capture
  if (!session) return;
  takeEvents();
  if (session->batch && session->batch->arrived()) {
    announceLater(finishBatch());
  }
  if (!session->batch && !session->first.empty()) sendDue();
  act();
  if (session->link->channel().broken()) session->watch.reset();  // a closed descriptor stays readable for ever
  if (std::exchange(session->wallpaperDirty, false)) wallpaperChanged.emit();
}

void X11Capture::takeEvents() {
  auto& channel = session_->link->channel();
  channel.flush();
  while (const EventRef event{xcb_poll_for_event(channel.get())}) {
    if (event->response_type == 0) {
      handleError(reinterpret_cast<const xcb_generic_error_t&>(*event), channel.extensions());
      continue;
    }
    if (isSynthetic(*event)) continue;
    if (eventType(*event) == XCB_PROPERTY_NOTIFY) {
      const auto& property = eventAs<xcb_property_notify_event_t>(*event);
      if (property.atom == session_->link->atoms().netClientList) session_->windows.forgetList();
      if (session_->wallpapers.concerns(property.atom)) {
        session_->wallpapers.forget();
        session_->wallpaperDirty = true;
      }
    } else if (eventType(*event) == session_->link->selectionEvent()) {
      session_->compositorDirty = true;
    } else {
      session_->windows.handle(*event);
    }
  }
}

void X11Capture::act() {
  auto& session = *session_;
  auto& channel = session.link->channel();
  const auto roundTrips = channel.roundTrips();
  if (std::exchange(session.compositorDirty, false)) {
    const auto cookie = channel.send<xcb_get_selection_owner>(session.link->compositorSelection());
    const auto owner = channel.await<xcb_get_selection_owner_reply>(cookie);
    session.windows.setCompositor(owner && owner->owner != XCB_NONE);
  }
  session.windows.update();
  channel.flush();
  if (channel.roundTrips() != roundTrips) drainLater();

  if (!session.windows.left.empty() && !std::exchange(session.leavePending, true)) {
    after(leaveDelay, [this](Session& later) {
      later.leavePending = false;
      sendDue();
    });
  }
  session.news.merge(std::exchange(session.windows.changed, {}));
  if (!session.news.empty() && !std::exchange(session.announcePending, true)) {
    after(changeInterval, [this](Session& later) {
      later.announcePending = false;
      announce();
    });
  }
}

void X11Capture::announceLater(const std::vector<WindowID>& windows) {
  session_->news.insert(windows.begin(), windows.end());
}

void X11Capture::announce() {
  auto& session = *session_;
  std::vector<WindowID> news;
  for (const auto id : std::exchange(session.news, {})) {
    auto* window = session.windows.find(id);
    if (window != nullptr && session.windows.isSettling(*window)) {
      session.news.insert(id);
    } else if (window != nullptr && !window->picture && window->content != XCB_NONE) {
      session.first.insert(id);  // announced when it is there
    } else if (window == nullptr || window->picture) {
      news.push_back(id);
    }
  }
  if (!session.first.empty()) sendDue();
  act();
  if (!news.empty()) previewsChanged.emit(news);
}

// Makes the pictures that have to be made without anybody asking for them: of windows that went from the screen, and
// the first of a window.
void X11Capture::sendDue() {
  auto& session = *session_;
  if (session.batch) return;  // goes on when that has arrived
  session.batch = std::make_unique<PictureBatch>(*session.link, session.memory);
  for (auto* due : {&session.windows.left, &session.first}) {
    while (!due->empty() && session.batch->bytes() < batchBytes) {
      auto* window = session.windows.find(*due->begin());
      due->erase(due->begin());
      if (window != nullptr && window->stale && session.windows.knowContent(*window)) addPicture(*window);
    }
  }
  sendBatch();
  drainLater();
}

void X11Capture::addPicture(CapturedWindow& window) {
  auto& session = *session_;
  session.windows.beginPicture(window);
  PictureSource source;
  source.drawable = window.content;
  source.depth = window.contentDepth;
  source.area = {0, 0, window.contentSize.width, window.contentSize.height};
  // Without a compositor translucent windows look opaque on the screen, whatever alpha they hold.
  source.opaque = !session.windows.hasCompositor();
  session.batch->add(source, fitted(window.contentSize, limits_));
  session.batchWindows.push_back(window.client);
}

bool X11Capture::sendBatch() {
  auto& session = *session_;
  if (session.batch->empty()) {
    session.batch.reset();
    return false;
  }
  session.batch->send();
  for (const auto id : session.batchWindows) {
    auto* window = session.windows.find(id);
    if (window->mapped) continue;
    session.windows.freeContent(*window);
    session.windows.left.erase(id);
  }
  session.link->channel().flush();
  return true;
}

std::vector<WindowID> X11Capture::finishBatch() {
  auto& session = *session_;
  if (!session.batch) return {};
  const auto pictures = session.batch->receive();
  session.batch.reset();
  const auto windows = std::exchange(session.batchWindows, {});
  std::vector<WindowID> made;
  for (std::size_t i = 0; i < windows.size(); ++i) {
    auto* window = session.windows.find(windows[i]);
    if (window == nullptr || !pictures[i]) continue;
    window->picture = pictures[i];
    made.push_back(windows[i]);
  }
  releaseMemoryLater();
  return made;
}

void X11Capture::releaseMemoryLater() {
  session_->memoryUsed = dispatch_.now();
  if (!std::exchange(session_->releasePending, true)) after(memoryTime, [this](Session&) { releaseMemory(); });
}

void X11Capture::releaseMemory() {
  auto& session = *session_;
  const auto unused = dispatch_.now() - session.memoryUsed;
  if (session.batch || unused < memoryTime) {
    after(session.batch ? memoryTime : memoryTime - unused, [this](Session&) { releaseMemory(); });
    return;
  }
  session.releasePending = false;
  session.memory.release();
  session.link->channel().flush();
  returnFreeMemory();
}

ImageRef X11Capture::preview(WindowID window) {
  const auto* found = session_ ? session_->windows.find(window) : nullptr;
  return found != nullptr ? found->picture : nullptr;
}

std::vector<ImageRef> X11Capture::previews(std::span<const WindowID> windows) {
  std::vector<ImageRef> pictures(windows.size());
  if (!session_) return pictures;
  auto& session = *session_;
  takeEvents();
  announceLater(finishBatch());

  std::vector<CapturedWindow*> wanted;
  for (const auto id : windows) {
    auto* window = session.windows.find(id);
    if (window == nullptr || !window->stale || session.windows.isSettling(*window)) continue;
    if (std::find(wanted.begin(), wanted.end(), window) == wanted.end()) wanted.push_back(window);
  }
  session.windows.retry(wanted);
  for (auto next = wanted.begin(); next != wanted.end();) {
    session.batch = std::make_unique<PictureBatch>(*session.link, session.memory);
    for (; next != wanted.end() && session.batch->bytes() < batchBytes; ++next) {
      if (session.windows.knowContent(**next)) addPicture(**next);
    }
    if (sendBatch()) finishBatch();
  }
  for (std::size_t i = 0; i < windows.size(); ++i) {
    const auto* window = session.windows.find(windows[i]);
    if (window == nullptr) continue;
    pictures[i] = window->picture;
    if (!window->stale) session.news.erase(windows[i]);  // the caller has it
  }
  drainLater();
  return pictures;
}

std::optional<X11Capture::Place> X11Capture::placeOf(std::string_view display) const {
  const auto layout = screens_.layout();
  for (std::size_t i = 0; i < layout->screens.size(); ++i) {
    if (layout->screens[i]->uuid == display) return Place{layout->screens[i]->name, layout->areas[i]};
  }
  return std::nullopt;
}

Wallpaper X11Capture::wallpaper(std::string_view display, SpaceID space, int longestSide) {
  const auto place = session_ ? placeOf(display) : std::nullopt;
  if (!place) return UnknownWallpaper{};
  takeEvents();
  announceLater(finishBatch());
  auto wallpaper =
      session_->wallpapers.wallpaper({place->monitor, place->area, reader_.numbering()->desktopOf(space)}, longestSide);
  releaseMemoryLater();
  drainLater();
  return wallpaper;
}

ImageRef X11Capture::screenContent(std::string_view display, int longestSide) {
  const auto place = session_ ? placeOf(display) : std::nullopt;
  if (!place) return nullptr;
  announceLater(finishBatch());
  PictureSource source;
  source.drawable = session_->link->root();
  source.depth = session_->link->rootDepth();
  source.area = place->area;
  source.kind = PictureSource::Kind::screen;
  PictureBatch batch(*session_->link, session_->memory);
  batch.add(source, fitted({place->area.width, place->area.height}, longestSide));
  batch.send();
  auto image = batch.receive().front();
  releaseMemoryLater();
  drainLater();
  return image;
}

std::vector<Rect> X11Capture::unlistedWindows() {
  if (!session_) return {};
  const auto overriding = overridingWindows(*session_->link);
  // The news of their clients came before that answer.
  takeEvents();
  act();
  std::vector<Rect> found;
  for (const auto& [window, bounds] : overriding) {
    if (!session_->windows.holdsClient(window)) found.push_back(bounds);
  }
  drainLater();
  return found;
}

}  // namespace tessaspaces
