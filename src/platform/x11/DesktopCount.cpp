#include "platform/x11/DesktopCount.h"

#include <set>

#include "platform/x11/DesktopRemoval.h"
#include "platform/x11/I3Workspaces.h"
#include "platform/x11/Properties.h"

namespace tessaspaces {
namespace {

// "Source indication" of EWMH messages: a pager acts on the user's behalf and is obeyed.
constexpr std::uint32_t fromPager = 2;

// Window managers need milliseconds, but some write the number down first and take it from there.
constexpr auto patience = std::chrono::seconds(1);
constexpr auto pollInterval = std::chrono::milliseconds(5);

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

void send(Connection& connection, const PagerMessages& messages) {
  const auto time = connection.timestamp();  // may have to ask the server: not between the messages
  const auto& atoms = connection.atoms();
  const auto root = connection.root();
  for (const auto& message : messages) {
    switch (message.kind) {
      case PagerMessage::Kind::moveWindow:
        connection.queueToRoot(message.window, atoms.netWmDesktop, {message.value, fromPager});
        break;
      case PagerMessage::Kind::showDesktop:
        connection.queueToRoot(root, atoms.netCurrentDesktop, {message.value, time});
        break;
      case PagerMessage::Kind::setCount:
        connection.queueToRoot(root, atoms.netNumberOfDesktops, {message.value});
        break;
    }
  }
  connection.requests().flush();
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
  send(connection_, planRemoval(before, desktop));
  if (waitForCountBelow(root.desktopCount)) {
    removeName(desktop);
    return true;
  }
  ignoring_ = root.checkWindow;
  send(connection_, planReturn(before, desktop));
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

bool DesktopCount::waitForCountBelow(std::uint32_t count) {
  auto& channel = connection_.requests();
  const auto deadline = dispatch_.now() + patience;
  for (;;) {
    const auto cookie = askProperty(channel, connection_.root(), connection_.atoms().netNumberOfDesktops, 1);
    const auto now = firstItem(channel.await<xcb_get_property_reply>(cookie));
    if (now && *now < count) return true;
    if (!now || dispatch_.now() >= deadline) return false;
    dispatch_.sleep(pollInterval);
  }
}

}  // namespace tessaspaces
