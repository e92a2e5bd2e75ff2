#include "platform/x11/WorkArea.h"

#include <algorithm>

#include "platform/x11/Properties.h"

namespace tessaspaces {
namespace {

constexpr std::uint32_t maxCoordinate = 0xffff;
constexpr std::size_t workAreaItems = 4;

PixelRect intersection(const PixelRect& a, const PixelRect& b) {
  const int left = std::max(a.x, b.x);
  const int top = std::max(a.y, b.y);
  return {left, top, std::min(a.x + a.width, b.x + b.width) - left, std::min(a.y + a.height, b.y + b.height) - top};
}

// Clients write what they like: no coordinate lies beyond, and sums stay far from overflowing.
int pixels(std::uint32_t value) {
  return static_cast<int>(std::min(value, maxCoordinate));
}

std::vector<Strut> readStruts(Channel& channel, const Atoms& atoms, std::span<const std::uint32_t> clients,
                              const PixelRect& root) {
  struct Cookies {
    xcb_get_property_cookie_t partial;
    xcb_get_property_cookie_t whole;
  };
  std::vector<Cookies> cookies;
  for (const auto window : clients) {
    cookies.push_back(
        {askProperty(channel, window, atoms.netWmStrutPartial, 12), askProperty(channel, window, atoms.netWmStrut, 4)});
  }
  std::vector<Strut> struts;
  for (const auto& cookie : cookies) {
    const auto partial = channel.await<xcb_get_property_reply>(cookie.partial);
    const auto whole = channel.await<xcb_get_property_reply>(cookie.whole);
    addStruts(items(partial).size() >= 12 ? items(partial) : items(whole), root, struts);
  }
  return struts;
}

}  // namespace

void addStruts(std::span<const std::uint32_t> values, const PixelRect& root, std::vector<Strut>& struts) {
  if (values.size() < 4) return;
  for (std::size_t i = 0; i < 4; ++i) {
    if (values[i] == 0) continue;
    Strut strut{static_cast<Strut::Edge>(i), pixels(values[i]), 0, i < 2 ? root.height - 1 : root.width - 1};
    if (values.size() >= 12) {
      strut.start = pixels(values[4 + 2 * i]);
      strut.end = pixels(values[5 + 2 * i]);
    }
    struts.push_back(strut);
  }
}

PixelRect withoutStruts(PixelRect monitor, const PixelRect& root, const std::vector<Strut>& struts) {
  for (const auto& strut : struts) {
    const bool vertical = strut.edge == Strut::Edge::left || strut.edge == Strut::Edge::right;
    const int from = vertical ? monitor.y : monitor.x;
    const int to = from + (vertical ? monitor.height : monitor.width);
    if (strut.end < from || strut.start >= to) continue;
    PixelRect rest = monitor;
    switch (strut.edge) {
      case Strut::Edge::left: rest.x = std::max(monitor.x, root.x + strut.depth); break;
      case Strut::Edge::top: rest.y = std::max(monitor.y, root.y + strut.depth); break;
      default: break;
    }
    int right = monitor.x + monitor.width;
    int bottom = monitor.y + monitor.height;
    if (strut.edge == Strut::Edge::right) right = std::min(right, root.x + root.width - strut.depth);
    if (strut.edge == Strut::Edge::bottom) bottom = std::min(bottom, root.y + root.height - strut.depth);
    rest.width = right - rest.x;
    rest.height = bottom - rest.y;
    // A panel at an inner edge reserves everything up to the outer one as the protocol counts it: of the
    // monitors in between nothing would be left, which is never what was meant.
    if (rest.width > 0 && rest.height > 0) monitor = rest;
  }
  return monitor;
}

void readWorkAreas(Connection& connection, std::vector<Monitor>& monitors, const PixelRect& root) {
  auto& channel = connection.requests();
  const auto& atoms = connection.atoms();
  const auto clientsCookie = askProperty(channel, connection.root(), atoms.netClientList);
  const auto workCookie = askProperty(channel, connection.root(), atoms.netWorkarea);
  const auto desktopCookie = askProperty(channel, connection.root(), atoms.netCurrentDesktop, 1);
  const auto clients = channel.await<xcb_get_property_reply>(clientsCookie);
  const auto work = channel.await<xcb_get_property_reply>(workCookie);
  const auto desktop = firstItem(channel.await<xcb_get_property_reply>(desktopCookie)).value_or(0);

  const auto struts = readStruts(channel, atoms, items(clients), root);
  for (auto& monitor : monitors) monitor.workArea = withoutStruts(monitor.area, root, struts);

  // _NET_WORKAREA is one rectangle for all monitors together, which says nothing about any one of several.
  const auto areas = items(work);
  const auto first = std::size_t{desktop} * workAreaItems;
  if (monitors.size() == 1 && areas.size() >= workAreaItems) {
    const auto area = areas.subspan(first + workAreaItems <= areas.size() ? first : 0, workAreaItems);
    const auto rest =
        intersection(monitors[0].workArea, {pixels(area[0]), pixels(area[1]), pixels(area[2]), pixels(area[3])});
    if (rest.width > 0 && rest.height > 0) monitors[0].workArea = rest;
  }
}

}  // namespace tessaspaces
