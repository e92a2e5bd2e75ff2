#include "platform/x11/Monitors.h"

#include <xcb/randr.h>

#include <algorithm>
#include <charconv>

#include "platform/x11/DisplayIdentity.h"
#include "platform/x11/Properties.h"
#include "platform/x11/WorkArea.h"

namespace tessaspaces {
namespace {

constexpr std::uint32_t maxEdidItems = 256;  // eight blocks; more than any monitor has

struct Found {
  Monitor monitor;
  xcb_atom_t name = XCB_ATOM_NONE;
  xcb_randr_output_t output = XCB_NONE;
};

std::vector<Found> fromMonitors(Channel& channel, const Reply<xcb_randr_get_monitors_reply_t>& reply) {
  std::vector<Found> found;
  if (!reply) return found;
  for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem > 0; xcb_randr_monitor_info_next(&it)) {
    const auto& info = *it.data;
    Found entry;
    entry.name = info.name;
    entry.monitor.area = {info.x, info.y, info.width, info.height};
    entry.monitor.primary = info.primary != 0;
    if (info.nOutput > 0) entry.output = xcb_randr_monitor_info_outputs(&info)[0];
    found.push_back(std::move(entry));
  }
  std::vector<xcb_get_atom_name_cookie_t> names;
  for (const auto& entry : found) names.push_back(channel.send<xcb_get_atom_name>(entry.name));
  for (std::size_t i = 0; i < found.size(); ++i) {
    if (const auto name = channel.await<xcb_get_atom_name_reply>(names[i])) {
      const auto length = static_cast<std::size_t>(xcb_get_atom_name_name_length(name.get()));
      found[i].monitor.name = toUtf8({xcb_get_atom_name_name(name.get()), length}, TextType::utf8);
    }
  }
  return found;
}

// RandR before 1.5: every CRTC that shows something is a monitor.
std::vector<Found> fromCrtcs(Channel& channel, const Reply<xcb_randr_get_screen_resources_current_reply_t>& resources,
                             xcb_randr_output_t primary) {
  std::vector<Found> found;
  if (!resources) return found;
  const auto* crtcs = xcb_randr_get_screen_resources_current_crtcs(resources.get());
  std::vector<xcb_randr_get_crtc_info_cookie_t> cookies;
  for (int i = 0; i < resources->num_crtcs; ++i) {
    cookies.push_back(channel.send<xcb_randr_get_crtc_info>(crtcs[i], resources->config_timestamp));
  }
  for (const auto cookie : cookies) {
    const auto info = channel.await<xcb_randr_get_crtc_info_reply>(cookie);
    if (!info || info->width == 0 || info->num_outputs == 0) continue;
    Found entry;
    entry.output = xcb_randr_get_crtc_info_outputs(info.get())[0];
    entry.monitor.area = {info->x, info->y, info->width, info->height};
    entry.monitor.primary = entry.output == primary;
    found.push_back(std::move(entry));
  }
  return found;
}

void readOutputs(Connection& connection, std::vector<Found>& found, xcb_timestamp_t configTime) {
  auto& channel = connection.requests();
  struct Cookies {
    Found* entry;
    xcb_randr_get_output_info_cookie_t info;
    xcb_randr_get_output_property_cookie_t edid;
  };
  std::vector<Cookies> cookies;
  for (auto& entry : found) {
    if (entry.output == XCB_NONE) continue;
    cookies.push_back({&entry, channel.send<xcb_randr_get_output_info>(entry.output, configTime),
                       channel.send<xcb_randr_get_output_property>(entry.output, connection.atoms().edid,
                                                                   xcb_atom_t{XCB_GET_PROPERTY_TYPE_ANY}, 0U,
                                                                   maxEdidItems, std::uint8_t{0}, std::uint8_t{0})});
  }
  for (const auto& cookie : cookies) {
    auto& monitor = cookie.entry->monitor;
    if (const auto info = channel.await<xcb_randr_get_output_info_reply>(cookie.info)) {
      const auto* name = reinterpret_cast<const char*>(xcb_randr_get_output_info_name(info.get()));
      monitor.connector = toUtf8({name, info->name_len}, TextType::utf8);
    }
    if (const auto edid = channel.await<xcb_randr_get_output_property_reply>(cookie.edid)) {
      const auto* data = xcb_randr_get_output_property_data(edid.get());
      const auto length = static_cast<std::size_t>(xcb_randr_get_output_property_data_length(edid.get()));
      if (edid->format == 8 && isPlausibleEdid({data, length})) monitor.edid.assign(data, data + length);
    }
  }
}

bool samePlace(const Monitor& a, const Monitor& b) {
  return a.area == b.area;
}

}  // namespace

std::vector<Monitor> readMonitors(Connection& connection) {
  auto& channel = connection.requests();
  const auto root = connection.root();
  const auto geometry = channel.send<xcb_get_geometry>(root);
  std::vector<Found> found;
  if (connection.extensions().randr != 0) {
    // The "current" resources: the plain request makes the server probe the hardware, which takes a while.
    const auto resourcesCookie = channel.send<xcb_randr_get_screen_resources_current>(root);
    const auto primaryCookie = channel.send<xcb_randr_get_output_primary>(root);
    if (connection.hasMonitors()) {
      const auto monitors = channel.send<xcb_randr_get_monitors>(root, std::uint8_t{1});
      found = fromMonitors(channel, channel.await<xcb_randr_get_monitors_reply>(monitors));
    }
    const auto resources = channel.await<xcb_randr_get_screen_resources_current_reply>(resourcesCookie);
    const auto primary = channel.await<xcb_randr_get_output_primary_reply>(primaryCookie);
    if (found.empty()) found = fromCrtcs(channel, resources, primary ? primary->output : XCB_NONE);
    readOutputs(connection, found, resources ? resources->config_timestamp : XCB_CURRENT_TIME);
  }
  std::vector<Monitor> monitors;
  for (auto& entry : found) {
    if (entry.monitor.area.width <= 0 || entry.monitor.area.height <= 0) continue;
    if (entry.monitor.name.empty()) entry.monitor.name = entry.monitor.connector;
    monitors.push_back(std::move(entry.monitor));
  }
  const auto whole = channel.await<xcb_get_geometry_reply>(geometry);
  if (monitors.empty() && whole) {
    Monitor monitor;
    monitor.name = "screen";
    monitor.area = {0, 0, whole->width, whole->height};
    monitors.push_back(std::move(monitor));
  }
  std::stable_partition(monitors.begin(), monitors.end(), [](const Monitor& monitor) { return monitor.primary; });
  if (whole) readWorkAreas(connection, monitors, {0, 0, whole->width, whole->height});
  return monitors;
}

double readScale(Connection& connection) {
  auto& channel = connection.requests();
  const auto cookie = askText(channel, connection.root(), XCB_ATOM_RESOURCE_MANAGER);
  return scaleFromResources(bytes(channel.await<xcb_get_property_reply>(cookie)).value_or(""));
}

double scaleFromResources(std::string_view resources) {
  constexpr std::string_view key = "Xft.dpi:";
  while (!resources.empty()) {
    const auto end = resources.find('\n');
    auto line = resources.substr(0, end);
    resources.remove_prefix(end == std::string_view::npos ? resources.size() : end + 1);
    if (!line.starts_with(key)) continue;
    line.remove_prefix(std::min(line.size(), line.find_first_not_of(" \t", key.size())));
    double dpi = 0;
    std::from_chars(line.data(), line.data() + line.size(), dpi);
    if (dpi >= 48 && dpi <= 960) return std::max(1.0, dpi / 96);
  }
  return 1;
}

std::vector<Screen> toScreens(const std::vector<Monitor>& monitors, double scale) {
  std::vector<MonitorIdentity> identities;
  for (const auto& monitor : monitors) identities.push_back({monitor.name, monitor.edid});
  const auto identified = identify(identities);
  const double primaryHeight = monitors.empty() ? 0 : monitors[0].area.height;
  const auto flip = [&](const PixelRect& r) {
    return Rect{double(r.x), primaryHeight - r.y - r.height, double(r.width), double(r.height)};
  };
  std::vector<Screen> screens;
  for (std::size_t i = 0; i < monitors.size(); ++i) {
    const auto& monitor = monitors[i];
    Screen screen;
    screen.displayID = identified[i].number;
    screen.uuid = identified[i].uuid;
    screen.frame = flip(monitor.area);
    screen.visibleFrame = flip(monitor.workArea);
    screen.scale = scale;
    screen.name = monitor.name;
    screen.builtIn = isBuiltInConnector(monitor.connector.empty() ? monitor.name : monitor.connector);
    // The first monitor at a place is the one that the others there mirror.
    const auto twins = std::count_if(monitors.begin(), monitors.end(),
                                     [&](const Monitor& other) { return samePlace(monitor, other); });
    const auto master =
        std::find_if(monitors.begin(), monitors.end(), [&](const Monitor& other) { return samePlace(monitor, other); });
    const auto masterIndex = static_cast<std::size_t>(master - monitors.begin());
    screen.inMirrorSet = twins > 1;
    if (masterIndex != i) screen.mirrors = identified[masterIndex].number;
    screens.push_back(std::move(screen));
  }
  return screens;
}

}  // namespace tessaspaces
