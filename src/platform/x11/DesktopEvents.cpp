#include "platform/x11/DesktopEvents.h"

#include <utility>

#include "platform/x11/Properties.h"

namespace tessaspaces {
namespace {

void select(Channel& channel, xcb_window_t window, std::uint32_t mask) {
  channel.send<xcb_change_window_attributes>(window, std::uint32_t{XCB_CW_EVENT_MASK}, &mask);
}

// Waits until the server has taken the selections in. Just sending them is not enough: while a window manager
// holds the server they may stay unread, and what changes meanwhile would go unnoticed.
void settle(Channel& channel) {
  channel.await<xcb_get_input_focus_reply>(channel.send<xcb_get_input_focus>());
}

}  // namespace

void DesktopEvents::start() {
  auto& channel = connection_.events();
  select(channel, connection_.root(), XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
  settle(channel);
  managerChanged();
  reader_.keepRoot([this] { pump_.lookAhead(); });
  watchClients();
  server_.noteVisibleDesktops();
}

void DesktopEvents::foresee(const xcb_generic_event_t& event) {
  if (eventType(event) == XCB_PROPERTY_NOTIFY) {
    const auto& property = eventAs<xcb_property_notify_event_t>(event);
    if (property.window == connection_.root() && RootReader::reads(connection_.atoms(), property.atom)) {
      reader_.rootChanged();
    }
  } else if (eventType(event) == XCB_DESTROY_NOTIFY &&
             eventAs<xcb_destroy_notify_event_t>(event).window == checkWindow_) {
    reader_.rootChanged();
  }
  switch (active_.changeBy(event)) {
    case FollowedWindow::Change::facts: reader_.activeChanged(); break;
    case FollowedWindow::Change::title: reader_.activeTitleChanged(); break;
    case FollowedWindow::Change::nothing: break;
  }
}

void DesktopEvents::handle(const xcb_generic_event_t& event) {
  foresee(event);
  switch (eventType(event)) {
    case XCB_PROPERTY_NOTIFY: handleProperty(eventAs<xcb_property_notify_event_t>(event)); break;
    case XCB_DESTROY_NOTIFY:
      if (eventAs<xcb_destroy_notify_event_t>(event).window == checkWindow_) {
        managerDirty_ = true;
        reader_.forget();
      }
      break;
    default: break;
  }
}

void DesktopEvents::handleProperty(const xcb_property_notify_event_t& event) {
  const auto& atoms = connection_.atoms();
  if (event.window != connection_.root()) {
    if (event.atom == atoms.netWmDesktop) windowsDirty_ = true;
    return;
  }
  if (event.atom == atoms.netCurrentDesktop) {
    spacesDirty_ = true;
  } else if (event.atom == atoms.netNumberOfDesktops || event.atom == atoms.netDesktopNames ||
             event.atom == atoms.netDesktopViewport) {
    spacesDirty_ = true;
    // A window manager that is starting announces itself before its desktops.
    if (event.atom == atoms.netNumberOfDesktops) managerDirty_ = true;
    reader_.forget();
  } else if (event.atom == atoms.netClientList) {
    clientsDirty_ = true;
  } else if (event.atom == atoms.netSupportingWmCheck) {
    managerDirty_ = true;
    reader_.forget();
  }
}

void DesktopEvents::eventsDrained() {
  const bool manager = std::exchange(managerDirty_, false) && managerChanged();
  const bool spaces = std::exchange(spacesDirty_, false) || manager;
  const bool clients = std::exchange(clientsDirty_, false) || manager;
  const bool windows = std::exchange(windowsDirty_, false) || clients;
  reader_.refreshRoot();
  if (clients) watchClients();
  readActiveAhead();
  if (spaces) server_.noteVisibleDesktops();
  if (manager) server_.windowManagerChanged.emit();
  if (spaces) server_.spacesChanged.emit();
  if (windows) server_.windowsChanged.emit();
}

void DesktopEvents::readActiveAhead() {
  const auto unread = reader_.unreadActive();
  if (!unread) return;
  const auto now = pump_.now();
  if (const auto wait = activePace_.take(*unread, now); wait > Duration::zero()) {
    const auto due = now + wait;
    // The one planned for a window that was active before may be later.
    if (readingPlanned_ && *readingPlanned_ <= due) return;
    readingPlanned_ = due;
    pump_.after(wait, [this, due] {
      if (readingPlanned_ == due) readingPlanned_.reset();
      readActiveAhead();
      pump_.drainLater();
    });
    return;
  }
  // Only a window whose events are selected here already: that would undo what following it selects.
  reader_.refreshActive([this](xcb_window_t window) {
    return (window == XCB_NONE || watched_.contains(window)) && active_.follow(window);
  });
}

void DesktopEvents::watchClients() {
  // The list alone, without the rest of the root: this runs whenever a window opens or closes.
  auto& channel = connection_.requests();
  const auto cookie = askProperty(channel, connection_.root(), connection_.atoms().netClientList);
  const auto reply = channel.await<xcb_get_property_reply>(cookie);
  std::set<xcb_window_t> clients;
  bool selected = false;
  for (const auto window : items(reply)) {
    clients.insert(window);
    if (watched_.contains(window)) continue;
    select(connection_.events(), window, active_.maskOf(window));
    selected = true;
  }
  watched_ = std::move(clients);
  if (selected) settle(connection_.events());
}

bool DesktopEvents::managerChanged() {
  const auto before = checkWindow_;
  auto root = reader_.root(RootDetail::desktops);
  while (root->checkWindow != XCB_NONE && root->checkWindow != checkWindow_) {
    checkWindow_ = root->checkWindow;
    // Its end tells that the window manager has gone, however it went; it may have come before this.
    select(connection_.events(), checkWindow_, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    settle(connection_.events());
    root = reader_.root(RootDetail::desktops);
  }
  const bool changed = root->checkWindow != before || root->managed() != managed_;
  checkWindow_ = root->checkWindow;
  managed_ = root->managed();
  return changed;
}

}  // namespace tessaspaces
