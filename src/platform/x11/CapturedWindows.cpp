#include "platform/x11/CapturedWindows.h"

#include <xcb/composite.h>

#include <algorithm>
#include <utility>

#include "platform/x11/Properties.h"

namespace tessaspaces {
namespace {

// Deeper than any window manager nests its clients.
constexpr int deepestFrame = 8;

void select(Channel& channel, xcb_window_t window, std::uint32_t mask) {
  channel.send<xcb_change_window_attributes>(window, std::uint32_t{XCB_CW_EVENT_MASK}, &mask);
}

ImageSize outerSize(int width, int height, int border) {
  return {width + 2 * border, height + 2 * border};
}

}  // namespace

CapturedWindows::~CapturedWindows() {
  for (auto& [client, window] : windows_) {
    if (window.contentAsked) xcb_discard_reply(link_.channel().get(), window.contentAsked->sequence);
  }
}

CapturedWindow* CapturedWindows::find(WindowID window) {
  const auto found = windows_.find(window);
  return found == windows_.end() ? nullptr : &found->second;
}

bool CapturedWindows::holdsClient(xcb_window_t top) const {
  return std::any_of(windows_.begin(), windows_.end(), [&](const auto& entry) { return entry.second.top == top; });
}

CapturedWindow* CapturedWindows::byFrame(xcb_window_t frame) {
  const auto found = clientOf_.find(frame);
  return found == clientOf_.end() ? nullptr : find(found->second);
}

bool CapturedWindows::isSettling(const CapturedWindow& window) const {
  return window.mapped && window.picture && dispatch_.now() - window.mappedAt < settleTime;
}

void CapturedWindows::handle(const xcb_generic_event_t& event) {
  if (eventType(event) == link_.damageEvent()) {
    if (auto* window = byFrame(eventAs<xcb_damage_notify_event_t>(event).drawable)) {
      window->stale = true;
      changed.insert(window->client);
    }
    return;
  }
  switch (eventType(event)) {
    case XCB_MAP_NOTIFY:
      if (auto* window = byFrame(eventAs<xcb_map_notify_event_t>(event).window)) {
        window->mapped = true;
        window->mappedAt = dispatch_.now();
        left.erase(window->client);
        nameContent(*window);
      }
      break;
    case XCB_UNMAP_NOTIFY:
      if (auto* window = byFrame(eventAs<xcb_unmap_notify_event_t>(event).window)) handleUnmap(*window);
      break;
    case XCB_CONFIGURE_NOTIFY: {
      const auto& configure = eventAs<xcb_configure_notify_event_t>(event);
      auto* window = byFrame(configure.window);
      const auto size = outerSize(configure.width, configure.height, configure.border_width);
      if (window == nullptr || window->frameSize == size) break;
      window->frameSize = size;
      // A window of another size has another content. Of a hidden one the last picture stays.
      if (window->mapped) nameContent(*window);
      break;
    }
    case XCB_REPARENT_NOTIFY: {
      const auto& reparent = eventAs<xcb_reparent_notify_event_t>(event);
      if (windows_.contains(reparent.window)) unresolved_.insert(reparent.window);
      break;
    }
    case XCB_DESTROY_NOTIFY: handleDestroy(eventAs<xcb_destroy_notify_event_t>(event).window); break;
    default: break;
  }
}

void CapturedWindows::handleUnmap(CapturedWindow& window) {
  // Shown for a moment only, on the way to another desktop: it may not have drawn itself.
  const bool keepOld = isSettling(window);
  window.mapped = false;
  if (window.content == XCB_NONE) return;
  if (keepOld || !window.stale) {
    freeContent(window);
  } else {
    left.insert(window.client);
  }
}

void CapturedWindows::handleDestroy(xcb_window_t destroyed) {
  if (auto* window = byFrame(destroyed); window != nullptr && window->client != destroyed) {
    // The client went with it, unless the window manager has just saved it from there.
    window->damage = XCB_NONE;
    window->redirected = false;
    detach(*window);
    unresolved_.insert(window->client);
  }
  if (auto* window = find(destroyed)) {
    if (window->frame == destroyed) {
      window->damage = XCB_NONE;
      window->redirected = false;
    }
    erase(destroyed);
  }
}

void CapturedWindows::erase(xcb_window_t client) {
  auto& window = windows_.at(client);
  detach(window);
  if (window.picture) changed.insert(client);
  left.erase(client);
  unresolved_.erase(client);
  windows_.erase(client);
}

void CapturedWindows::update() {
  // What is learned on the way may bring more.
  for (int pass = 0; pass < deepestFrame && (listStale_ || !unresolved_.empty()); ++pass) {
    if (std::exchange(listStale_, false)) readList();
    if (!unresolved_.empty()) resolveFrames();
  }
}

void CapturedWindows::readList() {
  auto& channel = link_.channel();
  const auto cookie = askProperty(channel, link_.root(), link_.atoms().netClientList);
  const auto reply = channel.await<xcb_get_property_reply>(cookie);
  const auto clients = items(reply);
  listed_ = {clients.begin(), clients.end()};
  for (const auto client : listed_) {
    const auto [window, isNew] = windows_.try_emplace(client);
    window->second.client = client;
    if (isNew) {
      select(channel, client, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
      unresolved_.insert(client);
    }
  }
  // One that left the list is withdrawn, or its window manager is being replaced: where it is now tells.
  for (const auto& [client, window] : windows_) {
    if (!listed_.contains(client)) unresolved_.insert(client);
  }
}

void CapturedWindows::resolveFrames() {
  auto& channel = link_.channel();
  struct Search {
    CapturedWindow* window;
    xcb_window_t top;
    bool done = false;
    bool capture = true;
  };
  std::vector<Search> searches;
  for (const auto client : std::exchange(unresolved_, {})) {
    if (auto* window = find(client)) searches.push_back({window, client});
  }
  std::vector<xcb_get_property_cookie_t> types;
  for (const auto& search : searches) {
    types.push_back(askProperty(channel, search.window->client, link_.atoms().netWmWindowType, 1));
  }
  for (int level = 0; level < deepestFrame; ++level) {
    std::vector<std::pair<Search*, xcb_query_tree_cookie_t>> asked;
    for (auto& search : searches) {
      if (!search.done) asked.emplace_back(&search, channel.send<xcb_query_tree>(search.top));
    }
    if (asked.empty()) break;
    for (const auto& [search, cookie] : asked) {
      const auto reply = channel.await<xcb_query_tree_reply>(cookie);
      search->done = !reply || reply->parent == link_.root() || reply->parent == XCB_NONE;
      if (!reply) {
        search->top = XCB_NONE;
      } else if (!search->done) {
        search->top = reply->parent;
      }
    }
  }
  for (std::size_t i = 0; i < searches.size(); ++i) {
    const auto type = firstItem(channel.await<xcb_get_property_reply>(types[i]));
    // They are on every desktop and in no overview; a desktop's window is as large as the screen.
    if (type == link_.atoms().typeDesktop || type == link_.atoms().typeDock) searches[i].capture = false;
  }

  std::vector<CapturedWindow*> fresh;
  std::vector<xcb_window_t> gone;
  for (const auto& search : searches) {
    auto& window = *search.window;
    window.top = search.top;
    if (search.top == window.frame && listed_.contains(window.client)) continue;
    if (search.top != window.frame) detach(window);
    if (search.top == XCB_NONE) gone.push_back(window.client);
    const auto holder = clientOf_.find(search.top);
    const bool taken = holder != clientOf_.end() && holder->second != window.client;  // tabs in one frame
    if (search.top == XCB_NONE || taken || !search.capture) continue;
    window.frame = search.top;
    clientOf_[search.top] = window.client;
    fresh.push_back(&window);
  }
  attach(fresh);
  for (const auto client : gone) erase(client);
}

void CapturedWindows::attach(std::span<CapturedWindow*> windows) {
  auto& channel = link_.channel();
  std::vector<std::pair<xcb_get_window_attributes_cookie_t, xcb_get_geometry_cookie_t>> cookies;
  for (const auto* window : windows) {
    select(channel, window->frame, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    cookies.emplace_back(channel.send<xcb_get_window_attributes>(window->frame),
                         channel.send<xcb_get_geometry>(window->frame));
  }
  for (std::size_t i = 0; i < windows.size(); ++i) {
    auto& window = *windows[i];
    const auto attributes = channel.await<xcb_get_window_attributes_reply>(cookies[i].first);
    const auto geometry = channel.await<xcb_get_geometry_reply>(cookies[i].second);
    const bool drawn = attributes && geometry && attributes->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT;
    window.mapped = drawn && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
    const bool withdrawn = window.frame == window.client && !window.mapped && !listed_.contains(window.client);
    if (!drawn || withdrawn) {
      erase(window.client);
      continue;
    }
    window.frameSize = outerSize(geometry->width, geometry->height, geometry->border_width);
    window.mappedAt = dispatch_.now() - settleTime;
    if (window.damage == XCB_NONE) {
      window.damage = xcb_generate_id(channel.get());
      channel.send<xcb_damage_create>(window.damage, window.frame, std::uint8_t{XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY});
    }
    if (!compositor_) redirect(window);
    if (window.mapped && window.content == XCB_NONE) nameContent(window);
  }
}

void CapturedWindows::detach(CapturedWindow& window) {
  if (window.frame == XCB_NONE) return;
  auto& channel = link_.channel();
  freeContent(window);
  left.erase(window.client);
  if (window.damage != XCB_NONE) channel.send<xcb_damage_destroy>(window.damage);
  if (window.redirected) {
    channel.send<xcb_composite_unredirect_window>(window.frame, std::uint8_t{XCB_COMPOSITE_REDIRECT_AUTOMATIC});
  }
  if (window.frame != window.client) select(channel, window.frame, XCB_EVENT_MASK_NO_EVENT);
  window.damage = XCB_NONE;
  window.redirected = false;
  clientOf_.erase(window.frame);
  window.frame = XCB_NONE;
  window.mapped = false;
}

void CapturedWindows::redirect(CapturedWindow& window) {
  if (std::exchange(window.redirected, true)) return;
  link_.channel().send<xcb_composite_redirect_window>(window.frame, std::uint8_t{XCB_COMPOSITE_REDIRECT_AUTOMATIC});
}

void CapturedWindows::setCompositor(bool running) {
  if (std::exchange(compositor_, running) == running) return;
  // Beside a new compositor our redirection goes on, so that nothing is lost until its own is there.
  if (running) return;
  for (auto& [client, window] : windows_) {
    if (window.frame == XCB_NONE) continue;
    redirect(window);
    if (window.mapped) nameContent(window);
  }
}

void CapturedWindows::nameContent(CapturedWindow& window) {
  freeContent(window);
  auto& channel = link_.channel();
  window.content = xcb_generate_id(channel.get());
  channel.send<xcb_composite_name_window_pixmap>(window.frame, window.content);
  window.contentAsked = channel.send<xcb_get_geometry>(window.content);
  window.stale = true;
  changed.insert(window.client);
}

bool CapturedWindows::knowContent(CapturedWindow& window) {
  if (const auto asked = std::exchange(window.contentAsked, std::nullopt)) {
    const auto geometry = link_.channel().await<xcb_get_geometry_reply>(*asked);
    if (geometry && (geometry->depth == 32 || link_.formatOf(geometry->depth) != XCB_NONE)) {
      window.contentSize = {geometry->width, geometry->height};
      window.contentDepth = geometry->depth;
    } else if (geometry) {
      freeContent(window);
    } else {
      window.content = XCB_NONE;  // it was not redirected, or not mapped any more
    }
  }
  return window.content != XCB_NONE;
}

void CapturedWindows::retry(std::span<CapturedWindow* const> windows) {
  for (auto* window : windows) {
    if (!window->mapped || window->frame == XCB_NONE || knowContent(*window)) continue;
    // A compositor leaves a window alone that covers the whole screen.
    redirect(*window);
    nameContent(*window);
  }
}

void CapturedWindows::beginPicture(CapturedWindow& window) {
  if (window.damage != XCB_NONE) {
    link_.channel().send<xcb_damage_subtract>(window.damage, xcb_xfixes_region_t{XCB_NONE},
                                              xcb_xfixes_region_t{XCB_NONE});
  }
  window.stale = false;
}

void CapturedWindows::freeContent(CapturedWindow& window) {
  if (window.content == XCB_NONE) return;
  auto& channel = link_.channel();
  // Without waiting whether it could be named at all: the server then says that there is nothing to free.
  if (const auto asked = std::exchange(window.contentAsked, std::nullopt)) {
    xcb_discard_reply(channel.get(), asked->sequence);
  }
  channel.send<xcb_free_pixmap>(window.content);
  window.content = XCB_NONE;
}

void CapturedWindows::outdatePictures() {
  for (auto& [client, window] : windows_) {
    if (!window.mapped || window.content == XCB_NONE) continue;
    window.stale = true;
    changed.insert(client);
  }
}

}  // namespace tessaspaces
