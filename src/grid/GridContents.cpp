#include "grid/GridContents.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "grid/ScreenGeometry.h"
#include "model/DisplayScreens.h"
#include "model/Snapshot.h"
#include "platform/Platform.h"

namespace tessaspaces {
namespace {

using namespace std::chrono_literals;

/// Changes in quick succession, as of a window that is being made, are taken in together.
constexpr Duration refreshPause = 100ms;
/// Titles change without a word.
constexpr Duration slowRefresh = 1s;
/// How long a window manager may take until a window that was placed is where it belongs.
constexpr Duration arrivalTime = 300ms;
/// Between two questions for the names of applications that had none.
constexpr Duration namelessPause = 10s;

/// Another object for each desktop: the old ones may be read by a switch that is under way.
SpacesSnapshot copyOf(const SpacesSnapshot& snapshot) {
  SpacesSnapshot copy;
  for (const auto& desktop : snapshot.desktops) copy.desktops.push_back(std::make_shared<DesktopInfo>(*desktop));
  return copy;
}

/// The identifier texts of the screen's display, and then of those that show the same picture: the desktops of a mirror
/// set are listed under one of them.
std::vector<std::string> displaysOf(const ScreenRef& screen) {
  std::vector<std::string> displays;
  const auto id = Spaces::directDisplayID(screen);
  if (const auto uuid = Spaces::displayUUID(screen)) displays.push_back(*uuid);
  if (!id || !screen->inMirrorSet) return displays;
  const auto masterOf = [](const Screen& each) {
    return each.mirrors != 0 ? each.mirrors : each.displayID.value_or(0);
  };
  for (const auto& other : platform().screens().screens()) {
    const auto uuid = Spaces::displayUUID(other);
    if (uuid && other->displayID != *id && masterOf(*other) == masterOf(*screen)) displays.push_back(*uuid);
  }
  return displays;
}

}  // namespace

/// Listens to the system.
struct GridContents::Freshness {
  ScopedConnection spaces;
  ScopedConnection windows;
  ScopedConnection previews;
  RegistrationRef timer;
};

struct GridContents::Hold {
  explicit Hold(std::weak_ptr<GridContents> held) : contents(std::move(held)) {}
  Hold(const Hold&) = delete;
  Hold& operator=(const Hold&) = delete;
  ~Hold() {
    const auto held = contents.lock();
    if (!held) return;
    if (std::exchange(held->heldRefresh_, false)) held->refreshSoon();
    const auto news = std::exchange(held->heldPreviews_, {});
    if (news.empty()) return;
    platform().dispatch().async([weak = contents, news] {
      if (const auto self = weak.lock()) self->previewsChanged({news.begin(), news.end()});
    });
  }
  std::weak_ptr<GridContents> contents;
};

GridContents::GridContents(TileBackgrounds& backgrounds) : backgrounds_(backgrounds) {
  backgroundsChanged_ = backgrounds_.changed.connect([this] { changed.emit(Change::backgrounds); });
}

GridContents::~GridContents() = default;

void GridContents::prepare() {
  readSnapshot();
  learnNames();
}

void GridContents::keepPreviews() {
  if (!std::exchange(captureAsked_, true)) platform().windowCapture().begin();
}

void GridContents::renew() {
  readSnapshot();
  keepPreviews();
  takePreviews(windows());
}

void GridContents::complete() {
  platform().dispatch().async([weak = weak_from_this()] {
    const auto self = weak.lock();
    if (!self) return;
    self->learnNames();
    self->backgrounds_.refresh();
  });
}

void GridContents::readSnapshot() {
  lastRefresh_ = platform().dispatch().now();
  // One batch for both.
  const auto reading = platform().windowServer().beginRead();
  auto fresh = Spaces::enumerate();
  // There is no display without a desktop: the window server gave no answer.
  if (fresh.desktops.empty()) return;
  snapshot_ = std::move(fresh);
  fullScreen_.clear();
  for (const auto& info :
       platform().windowList().copyWindowInfo(WindowListOption::all).value_or(std::vector<WindowInfo>{})) {
    if (info.fullScreen.value_or(false) && info.number) fullScreen_.insert(*info.number);
  }
  expected_.apply(snapshot_);
  for (const auto& desktop : snapshot_.desktops) {
    for (std::size_t i = 0; i < desktop->windows.size(); ++i) {
      auto& thumb = desktop->thumbs[i];
      if (!thumb) thumb = platform().windowCapture().preview(desktop->windows[i].id);
    }
  }
  nameFullScreenApplications();
}

// Where a full-screen window makes no space of its own, as on X11, it covers an ordinary desktop.
void GridContents::nameFullScreenApplications() {
  for (const auto& desktop : snapshot_.desktops) {
    if (fullScreen_.empty() || desktop->frontmostFullscreenAppName || !desktop->screen) continue;
    const Rect screen = ScreenGeometry::flipped(desktop->screen->frame);
    const auto covering = std::find_if(desktop->windows.begin(), desktop->windows.end(), [&](const auto& window) {
      return fullScreen_.contains(window.id) && screen.contains(window.bounds.center());
    });
    if (covering == desktop->windows.end()) continue;
    const auto name = names_.find(covering->pid);
    if (name == names_.end()) continue;
    desktop->frontmostFullscreenAppName = name->second.empty() ? covering->title : name->second;
  }
}

void GridContents::learnNames() {
  bool learned = false;
  // An application may come to have a name after its first window; but asking costs, and some never have one.
  const auto now = platform().dispatch().now();
  const bool askAgain = now >= nextAskAgain_;
  if (askAgain) nextAskAgain_ = now + namelessPause;
  std::map<std::int32_t, std::string> names;
  for (const auto& desktop : snapshot_.desktops) {
    for (const auto& window : desktop->windows) {
      if (names.contains(window.pid)) continue;
      const auto known = names_.find(window.pid);
      if (known != names_.end() && (!known->second.empty() || !askAgain)) {
        names.insert(*known);
        continue;
      }
      const auto application = platform().applications().running(window.pid);
      auto& name = names[window.pid] = application ? application->localizedName : "";
      learned = learned || known == names_.end() || known->second != name;
    }
  }
  names_ = std::move(names);
  nameFullScreenApplications();
  if (learned) changed.emit(Change::names);
}

std::vector<WindowID> GridContents::windows() const {
  // Displays that share their desktops list each window once more, and sticky ones are on every desktop.
  std::set<WindowID> ids;
  for (const auto& desktop : snapshot_.desktops) {
    for (const auto& window : desktop->windows) ids.insert(window.id);
  }
  return {ids.begin(), ids.end()};
}

void GridContents::takePreviews(const std::vector<WindowID>& windows) {
  if (windows.empty()) return;
  const auto pictures = platform().windowCapture().previews(windows);
  std::map<WindowID, ImageRef> fresh;
  for (std::size_t i = 0; i < windows.size() && i < pictures.size(); ++i) {
    if (!pictures[i]) continue;
    fresh[windows[i]] = pictures[i];
    Spaces::cacheThumbnail(windows[i], pictures[i]);
  }
  for (const auto& desktop : snapshot_.desktops) {
    for (std::size_t i = 0; i < desktop->windows.size(); ++i) {
      const auto found = fresh.find(desktop->windows[i].id);
      if (found != fresh.end()) desktop->thumbs[i] = found->second;
    }
  }
}

SpacesSnapshot GridContents::desktopsOf(const ScreenRef& screen) const {
  for (const auto& display : displaysOf(screen)) {
    SpacesSnapshot found;
    for (const auto& desktop : snapshot_.desktops) {
      if (desktop->displayUUID == display) found.desktops.push_back(desktop);
    }
    if (!found.desktops.empty()) return found;
  }
  return {};
}

std::map<SpaceID, TileBackground> GridContents::backgrounds(const SpacesSnapshot& desktops, ImageSize pixels) {
  std::map<SpaceID, TileBackground> found;
  for (const auto& desktop : desktops.desktops) {
    found[desktop->spaceID] = backgrounds_.background(desktop->displayUUID, desktop->spaceID, pixels);
  }
  return found;
}

void GridContents::setPreviewLimits(const PreviewLimits& limits) {
  // Other limits make every window on screen be captured anew.
  if (limits == previewLimits_) return;
  previewLimits_ = limits;
  platform().windowCapture().setLimits(limits);
}

std::shared_ptr<void> GridContents::keepFresh() {
  if (auto running = freshness_.lock()) return running;
  auto fresh = std::make_shared<Freshness>();
  auto& server = platform().windowServer();
  fresh->spaces = server.spacesChanged.connect([this] { refreshSoon(); });
  fresh->windows = server.windowsChanged.connect([this] { refreshSoon(); });
  fresh->previews = platform().windowCapture().previewsChanged.connect(
      [this](const std::vector<WindowID>& news) { previewsChanged(news); });
  fresh->timer = platform().dispatch().every(slowRefresh, [this] { refresh(); });
  freshness_ = fresh;
  return fresh;
}

std::shared_ptr<void> GridContents::hold() {
  if (auto running = hold_.lock()) return running;
  auto fresh = std::make_shared<Hold>(weak_from_this());
  hold_ = fresh;
  return fresh;
}

void GridContents::refreshSoon() {
  if (std::exchange(refreshScheduled_, true)) return;
  const auto pause = lastRefresh_ + refreshPause - platform().dispatch().now();
  platform().dispatch().after(std::max(Duration{}, Duration(pause)), [weak = weak_from_this()] {
    const auto self = weak.lock();
    if (!self) return;
    self->refreshScheduled_ = false;
    self->refresh();
  });
}

void GridContents::refresh() {
  if (freshness_.expired()) return;
  if (!hold_.expired()) {
    heldRefresh_ = true;
    return;
  }
  readSnapshot();
  learnNames();
  changed.emit(Change::desktops);
}

void GridContents::previewsChanged(const std::vector<WindowID>& windows) {
  if (freshness_.expired()) return;
  if (!hold_.expired()) {
    heldPreviews_.insert(windows.begin(), windows.end());
    return;
  }
  takePreviews(windows);
  changed.emit(Change::pictures);
}

ExpectedMoves::Number GridContents::expectMove(const SpaceWindow& window, SpaceID to, bool leaves) {
  const auto number = expected_.add(window, to, leaves);
  snapshot_ = copyOf(snapshot_);
  expected_.apply(snapshot_);
  changed.emit(Change::desktops);
  return number;
}

void GridContents::moveArrived(WindowID window, ExpectedMoves::Number number) {
  platform().dispatch().after(arrivalTime, [weak = weak_from_this(), window, number] {
    const auto self = weak.lock();
    if (self && self->expected_.remove(window, number)) self->refreshSoon();
  });
}

bool GridContents::moveFailed(WindowID window, ExpectedMoves::Number number) {
  if (!expected_.remove(window, number)) return false;
  readSnapshot();
  changed.emit(Change::desktops);
  return true;
}

}  // namespace tessaspaces
