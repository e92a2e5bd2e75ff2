#include "harness/Probe.h"

#include <algorithm>

#include "harness/XServer.h"

namespace tessaspaces::harness {
namespace {

constexpr std::uint32_t onEveryDesktop = 0xFFFFFFFF;
constexpr std::uint32_t pagerIsAsking = 2;  // EWMH's source indication

}  // namespace

Probe::Probe(const XServer& server) : x_(server.display()) {
  const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
  xcb_change_window_attributes(x_.get(), x_.root(), XCB_CW_EVENT_MASK, &mask);
  x_.roundTrip();
}

// A change between the question and the wait for the next event must not be missed, so that watching comes first.
void Probe::watch(xcb_window_t window) const {
  const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  xcb_change_window_attributes(x_.get(), window, XCB_CW_EVENT_MASK, &mask);
}

std::optional<int> Probe::currentDesktop() const {
  return x_.number(x_.root(), "_NET_CURRENT_DESKTOP");
}

std::optional<int> Probe::desktopCount() const {
  return x_.number(x_.root(), "_NET_NUMBER_OF_DESKTOPS");
}

std::optional<xcb_window_t> Probe::activeWindow() const {
  const auto window = x_.number(x_.root(), "_NET_ACTIVE_WINDOW");
  return window == 0U ? std::nullopt : window;
}

std::vector<xcb_window_t> Probe::clientList() const {
  return x_.numbers(x_.root(), "_NET_CLIENT_LIST");
}

bool Probe::manages(xcb_window_t window) const {
  const auto all = clientList();
  return std::find(all.begin(), all.end(), window) != all.end();
}

std::optional<int> Probe::desktopOf(xcb_window_t window) const {
  watch(window);
  const auto desktop = x_.number(window, "_NET_WM_DESKTOP");
  if (desktop == onEveryDesktop) return -1;
  return desktop;
}

bool Probe::viewable(xcb_window_t window) const {
  watch(window);
  const auto answer = x_.reply(xcb_get_window_attributes_reply, xcb_get_window_attributes(x_.get(), window));
  return answer && answer->map_state == XCB_MAP_STATE_VIEWABLE;
}

std::optional<std::string> Probe::windowManager() const {
  const auto check = x_.number(x_.root(), "_NET_SUPPORTING_WM_CHECK");
  if (!check) return std::nullopt;
  watch(*check);
  if (x_.number(*check, "_NET_SUPPORTING_WM_CHECK") != check || !desktopCount() || !currentDesktop())
    return std::nullopt;
  const std::string name = x_.text(*check, "_NET_WM_NAME");
  return name.empty() ? std::nullopt : std::optional(name);
}

std::vector<int> Probe::desktopsAt(int x, int y) const {
  const auto viewports = x_.numbers(x_.root(), "_NET_DESKTOP_VIEWPORT");
  std::vector<int> result;
  for (std::size_t i = 0; i + 1 < viewports.size(); i += 2) {
    if (viewports[i] == static_cast<std::uint32_t>(x) && viewports[i + 1] == static_cast<std::uint32_t>(y)) {
      result.push_back(static_cast<int>(i / 2));
    }
  }
  return result;
}

std::optional<xcb_window_t> Probe::findWindow(std::string_view title) const {
  for (const xcb_window_t window : clientList()) {
    watch(window);
    if (x_.text(window, "_NET_WM_NAME") == title || x_.text(window, "WM_NAME") == title) return window;
  }
  return std::nullopt;
}

bool Probe::waitForDesktop(int desktop, Milliseconds timeout) const {
  return waitFor([&] { return currentDesktop() == desktop; }, timeout);
}

void Probe::switchTo(int desktop) const {
  x_.sendToRoot(x_.root(), "_NET_CURRENT_DESKTOP", {static_cast<std::uint32_t>(desktop), XCB_CURRENT_TIME});
}

void Probe::moveTo(xcb_window_t window, int desktop) const {
  x_.sendToRoot(window, "_NET_WM_DESKTOP", {static_cast<std::uint32_t>(desktop), pagerIsAsking});
}

void Probe::setDesktopCount(int count) const {
  x_.sendToRoot(x_.root(), "_NET_NUMBER_OF_DESKTOPS", {static_cast<std::uint32_t>(count)});
}

void Probe::activate(xcb_window_t window) const {
  x_.sendToRoot(window, "_NET_ACTIVE_WINDOW", {pagerIsAsking, XCB_CURRENT_TIME, 0});
}

}  // namespace tessaspaces::harness
