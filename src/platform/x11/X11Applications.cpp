#include "platform/x11/X11Applications.h"

#include <algorithm>
#include <set>

#include "platform/x11/Activation.h"
#include "platform/x11/Properties.h"
#include "platform/x11/Text.h"
#include "platform/x11/WindowOwner.h"

namespace tessaspaces {
namespace {

constexpr int wantedIconSize = 64;
constexpr std::uint32_t maxIconSide = 1024;
constexpr std::uint32_t maxIconItems = 1 << 20;

std::uint32_t premultiplied(std::uint32_t pixel) {
  const std::uint32_t alpha = pixel >> 24;
  const auto channel = [&](int shift) { return (((pixel >> shift) & 0xff) * alpha + 127) / 255; };
  return (alpha << 24) | (channel(16) << 16) | (channel(8) << 8) | channel(0);
}

}  // namespace

std::vector<X11Applications::Owned> X11Applications::ownedWindows() {
  const auto root = reader_.root(RootDetail::windows);
  const auto clients = root->clients ? *root->clients : findClients(connection_);
  std::vector<OwnerCookies> cookies;
  for (const auto window : clients) cookies.push_back(askOwner(connection_, window));
  std::vector<Owned> owned;
  for (std::size_t i = 0; i < clients.size(); ++i) {
    if (const auto pid = receiveOwner(connection_, clients[i], cookies[i])) owned.push_back({clients[i], *pid});
  }
  return owned;
}

std::optional<xcb_window_t> X11Applications::frontWindow(std::int32_t pid) {
  for (const auto& owned : ownedWindows()) {
    if (owned.pid == pid) return owned.window;
  }
  return std::nullopt;
}

ApplicationInfo X11Applications::describe(std::int32_t pid, std::vector<std::string> names) {
  names.resize(2);
  const auto& windowClass = names[1].empty() ? names[0] : names[1];
  ApplicationInfo info;
  info.pid = pid;
  info.localizedName = windowClass;
  if (!windowClass.empty()) info.bundleIdentifier = lowerCase(windowClass);
  if (const auto file = desktopFiles_.find(names[0], names[1])) {
    info.localizedName = file->name;
    info.bundleIdentifier = file->id;
  }
  return info;
}

std::vector<ApplicationInfo> X11Applications::describe(const std::vector<Owned>& windows) {
  auto& channel = connection_.requests();
  std::vector<xcb_get_property_cookie_t> cookies;
  for (const auto& owned : windows) {
    cookies.push_back(askProperty(channel, owned.window, XCB_ATOM_WM_CLASS, maxClassBytes / 4));
  }
  std::vector<ApplicationInfo> result;
  for (std::size_t i = 0; i < windows.size(); ++i) {
    result.push_back(describe(windows[i].pid, texts(channel.await<xcb_get_property_reply>(cookies[i]))));
  }
  return result;
}

std::optional<ApplicationInfo> X11Applications::frontmost() {
  auto active = reader_.active();
  if (!active.window || !active.window->pid) return std::nullopt;
  return describe(*active.window->pid, std::move(active.windowClass));
}

std::optional<ApplicationInfo> X11Applications::running(std::int32_t pid) {
  const auto window = frontWindow(pid);
  if (!window) return std::nullopt;
  return describe({{*window, pid}}).front();
}

std::vector<ApplicationInfo> X11Applications::runningWithBundleIdentifier(std::string_view identifier) {
  auto windows = ownedWindows();
  std::set<std::int32_t> seen;
  std::erase_if(windows, [&](const Owned& owned) { return !seen.insert(owned.pid).second; });
  auto applications = describe(windows);
  std::erase_if(applications, [&](const ApplicationInfo& info) { return info.bundleIdentifier != identifier; });
  return applications;
}

ImageRef X11Applications::icon(std::int32_t pid) {
  auto& channel = connection_.requests();
  const auto window = frontWindow(pid);
  if (!window) return nullptr;
  const auto reply =
      channel.await<xcb_get_property_reply>(askProperty(channel, *window, connection_.atoms().netWmIcon, maxIconItems));
  return pickIcon(items(reply), wantedIconSize);
}

bool X11Applications::activate(std::int32_t pid) {
  const auto window = frontWindow(pid);
  if (!window) return false;
  activateWindow(connection_, reader_, *window);
  return true;
}

ImageRef pickIcon(std::span<const std::uint32_t> data, int wanted) {
  std::span<const std::uint32_t> best;
  std::uint32_t bestWidth = 0;
  std::uint32_t bestHeight = 0;
  while (data.size() > 2) {
    const auto width = data[0];
    const auto height = data[1];
    if (width == 0 || height == 0 || width > maxIconSide || height > maxIconSide) break;
    const std::size_t pixels = std::size_t{width} * height;
    if (pixels > data.size() - 2) break;
    const auto distance = [wanted](std::uint32_t side) { return std::abs(static_cast<int>(side) - wanted); };
    if (best.empty() || distance(width) < distance(bestWidth)) {
      best = data.subspan(2, pixels);
      bestWidth = width;
      bestHeight = height;
    }
    data = data.subspan(2 + pixels);
  }
  if (best.empty()) return nullptr;
  auto image = std::make_shared<Image>();
  image->width = static_cast<int>(bestWidth);
  image->height = static_cast<int>(bestHeight);
  image->pixels.reserve(best.size());
  std::transform(best.begin(), best.end(), std::back_inserter(image->pixels), premultiplied);
  return image;
}

}  // namespace tessaspaces
