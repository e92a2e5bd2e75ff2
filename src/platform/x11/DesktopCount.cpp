#include "platform/x11/DesktopCount.h"

#include <set>

#include "platform/x11/I3Workspaces.h"
#include "platform/x11/Properties.h"

namespace tessaspaces {
namespace {

// "Source indication" of EWMH messages: a pager acts on the user's behalf and is obeyed.
constexpr std::uint32_t fromPager = 2;

// What only looks better is not worth a long wait.
constexpr auto shortPatience = std::chrono::milliseconds(100);
// Window managers need milliseconds, but some write the number down first and take it from there.
constexpr auto longPatience = std::chrono::seconds(1);
constexpr auto pollInterval = std::chrono::milliseconds(2);

/// The socket of the i3 that manages the windows.
std::optional<I3Socket> openI3(Connection& connection) {
  auto& channel = connection.requests();
  const auto& atoms = connection.atoms();
  const auto pathCookie = askText(channel, connection.root(), atoms.i3SocketPath);
  const auto pidCookie = askProperty(channel, connection.root(), atoms.i3Pid, 1);
  const auto path = text(channel.await<xcb_get_property_reply>(pathCookie));
  const auto pid = firstItem(channel.await<xcb_get_property_reply>(pidCookie));
  if (!path || !pid) return std::nullopt;
  return I3Socket::open(*path, static_cast<pid_t>(*pid));
}

std::set<std::string> occupiedWorkspaces(const RootState& root, const std::vector<WindowRecord>& windows) {
  std::set<std::string> names;
  for (const auto& record : windows) {
    if (record.desktop && *record.desktop < root.names.size()) names.insert(root.names[*record.desktop]);
  }
  return names;
}

}  // namespace

bool DesktopCount::ignored(const RootState& root) const {
  return ignoring_.load() == root.checkWindow;
}

/// Both as of one moment.
struct DesktopCount::Reading {
  Reader::Root root;
  Reader::Windows windows;
};

DesktopCount::Reading DesktopCount::read() {
  const auto scope = reader_.beginRead();
  return {reader_.root(RootDetail::windows), reader_.windows(WindowDetail::desktops)};
}

bool DesktopCount::add(const PixelRect& monitor) {
  const auto [root, windows] = read();
  if (!root->managed()) return false;
  if (root->isI3()) {
    auto socket = openI3(connection_);
    return socket && addI3Workspace(*socket, monitor, occupiedWorkspaces(*root, *windows));
  }
  if (ignored(*root)) return false;
  connection_.sendToRoot(connection_.root(), connection_.atoms().netNumberOfDesktops, {root->desktopCount + 1});
  return true;
}

bool DesktopCount::remove(const PixelRect& monitor, SpaceID space) {
  const auto reading = read();
  const auto& root = *reading.root;
  const auto desktop = root.desktopOf(space);
  if (!root.managed() || !desktop || root.desktopCount < 2) return false;
  if (root.isI3()) {
    auto socket = *desktop < root.names.size() ? openI3(connection_) : std::nullopt;
    return socket && removeI3Workspace(*socket, monitor, root.names[*desktop]);
  }
  if (ignored(root)) return false;
  if (*desktop + 1 < root.desktopCount) return removeBetween(reading, *desktop);
  connection_.sendToRoot(connection_.root(), connection_.atoms().netNumberOfDesktops, {*desktop});
  return true;
}

bool DesktopCount::removeBetween(const Reading& reading, std::uint32_t desktop) {
  const auto& root = *reading.root;
  const DesktopState before{root.desktopCount, root.current, *reading.windows};
  send(planRemoval(before, desktop));
  const bool obeyed = waitFor(connection_.root(), connection_.atoms().netNumberOfDesktops, longPatience,
                              [&](std::uint32_t count) { return count < root.desktopCount; });
  if (obeyed) {
    removeName(desktop);
    return true;
  }
  // Nobody waits for the answer any more; most window managers obey, and taking it back would be wrong with these.
  if (dispatch_.isEnding()) return true;
  ignoring_ = root.checkWindow;
  send(planReturn(before, desktop));
  return false;
}

void DesktopCount::removeName(std::uint32_t desktop) {
  auto& channel = connection_.requests();
  const auto property = connection_.atoms().netDesktopNames;
  const auto reply = channel.await<xcb_get_property_reply>(askText(channel, connection_.root(), property));
  const auto names = bytes(reply);
  if (!names || reply->bytes_after != 0) return;
  const auto left = withoutName(*names, desktop);
  if (left.size() == names->size()) return;
  channel.send<xcb_change_property>(std::uint8_t{XCB_PROP_MODE_REPLACE}, connection_.root(), property, reply->type,
                                    std::uint8_t{8}, static_cast<std::uint32_t>(left.size()), left.data());
  channel.flush();
}

void DesktopCount::send(const PagerMessages& messages) {
  const auto& atoms = connection_.atoms();
  const auto root = connection_.root();
  const auto time = connection_.timestamp();  // may have to ask the server: not between the messages
  for (const auto& message : messages) {
    switch (message.kind) {
      case PagerMessage::Kind::moveWindow:
        connection_.queueToRoot(message.window, atoms.netWmDesktop, {message.value, fromPager});
        break;
      case PagerMessage::Kind::awaitMove:
        waitFor(message.window, atoms.netWmDesktop, shortPatience,
                [&](std::uint32_t desktop) { return desktop == message.value; });
        break;
      case PagerMessage::Kind::showDesktop:
        connection_.queueToRoot(root, atoms.netCurrentDesktop, {message.value, time});
        break;
      case PagerMessage::Kind::setCount:
        connection_.queueToRoot(root, atoms.netNumberOfDesktops, {message.value});
        break;
    }
  }
  connection_.requests().flush();
}

bool DesktopCount::waitFor(xcb_window_t window, xcb_atom_t property, Duration patience,
                           const std::function<bool(std::uint32_t)>& holds) {
  auto& channel = connection_.requests();
  const auto deadline = dispatch_.now() + patience;
  for (;;) {
    const auto cookie = askProperty(channel, window, property, 1);
    const auto now = firstItem(channel.await<xcb_get_property_reply>(cookie));
    if (!now || holds(*now)) return now.has_value();
    if (dispatch_.now() >= deadline || dispatch_.isEnding()) return false;
    dispatch_.sleep(pollInterval);
  }
}

}  // namespace tessaspaces
