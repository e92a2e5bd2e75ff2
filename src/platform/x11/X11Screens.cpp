#include "platform/x11/X11Screens.h"

#include <xcb/randr.h>

#include <algorithm>

#include "platform/x11/Properties.h"

namespace tessaspaces {
namespace {

bool sameScreen(const ScreenRef& a, const ScreenRef& b) {
  return a->displayID == b->displayID && a->uuid == b->uuid && a->frame == b->frame &&
         a->visibleFrame == b->visibleFrame && a->scale == b->scale && a->name == b->name && a->builtIn == b->builtIn &&
         a->inMirrorSet == b->inMirrorSet && a->mirrors == b->mirrors;
}

bool sameLayout(const ScreenLayout& a, const ScreenLayout& b) {
  return a.areas == b.areas &&
         std::equal(a.screens.begin(), a.screens.end(), b.screens.begin(), b.screens.end(), sameScreen);
}

}  // namespace

std::optional<std::size_t> ScreenLayout::find(std::string_view identifier) const {
  for (std::size_t i = 0; i < screens.size(); ++i) {
    if (screens[i]->uuid == identifier) return monitorOf[i];
  }
  return std::nullopt;
}

X11Screens::X11Screens(Connection& connection, Reader& reader)
    : connection_(connection), reader_(reader), layout_(read()) {}

ScreenLayoutRef X11Screens::layout() const {
  const std::lock_guard lock(mutex_);
  return layout_;
}

std::vector<ScreenRef> X11Screens::screens() {
  return layout()->screens;
}

ScreenRef X11Screens::mainScreen() {
  const auto current = layout();
  if (current->screens.size() < 2) return current->screens.empty() ? nullptr : current->screens[0];
  auto& channel = connection_.requests();
  const auto root = connection_.root();
  const auto activeCookie = askProperty(channel, root, connection_.atoms().netActiveWindow, 1);
  const auto active = firstItem(channel.await<xcb_get_property_reply>(activeCookie)).value_or(XCB_NONE);
  if (active == XCB_NONE) return current->screens[0];
  const auto geometryCookie = channel.send<xcb_get_geometry>(active);
  const auto positionCookie = channel.send<xcb_translate_coordinates>(active, root, std::int16_t{0}, std::int16_t{0});
  const auto geometry = channel.await<xcb_get_geometry_reply>(geometryCookie);
  const auto position = channel.await<xcb_translate_coordinates_reply>(positionCookie);
  if (geometry && position) {
    const int x = position->dst_x + geometry->width / 2;
    const int y = position->dst_y + geometry->height / 2;
    for (std::size_t i = 0; i < current->areas.size(); ++i) {
      const auto& area = current->areas[i];
      if (x >= area.x && x < area.x + area.width && y >= area.y && y < area.y + area.height) {
        return current->screens[i];
      }
    }
  }
  return current->screens[0];
}

Point X11Screens::pointer() {
  std::optional<PixelPoint> pixel;
  if (reader_.keeping()) pixel = press_;
  if (!pixel && reader_.inScope()) pixel = reader_.root(RootDetail::windows)->pointer;
  if (!pixel) {
    auto& channel = connection_.requests();
    const auto reply = channel.await<xcb_query_pointer_reply>(channel.send<xcb_query_pointer>(connection_.root()));
    if (reply) pixel = PixelPoint{reply->root_x, reply->root_y};
  }
  if (!pixel) return {};
  const auto current = layout();
  const double height = current->areas.empty() ? 0 : current->areas[0].height;
  return {double(pixel->x), height - 1 - pixel->y};
}

void X11Screens::start() {
  stale_ = true;  // what changed between the first reading and this was announced to nobody
  if (connection_.extensions().randr == 0) return;
  connection_.events().send<xcb_randr_select_input>(
      connection_.root(),
      static_cast<std::uint16_t>(XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                                 XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE | XCB_RANDR_NOTIFY_MASK_OUTPUT_PROPERTY));
}

void X11Screens::handle(const xcb_generic_event_t& event) {
  const auto type = eventType(event);
  const auto& codes = connection_.extensions();
  if (codes.randr != 0 && (type == codes.randrFirstEvent + XCB_RANDR_SCREEN_CHANGE_NOTIFY ||
                           type == codes.randrFirstEvent + XCB_RANDR_NOTIFY)) {
    stale_ = true;
  } else if (type == XCB_CONFIGURE_NOTIFY) {
    // Monitors made by hand are announced by this alone.
    if (eventAs<xcb_configure_notify_event_t>(event).window == connection_.root()) stale_ = true;
  } else if (type == XCB_PROPERTY_NOTIFY) {
    const auto& property = eventAs<xcb_property_notify_event_t>(event);
    const auto& atoms = connection_.atoms();
    if (property.window == connection_.root() &&
        (property.atom == atoms.netWorkarea || property.atom == XCB_ATOM_RESOURCE_MANAGER)) {
      stale_ = true;
    }
  }
}

void X11Screens::eventsDrained() {
  if (!stale_) return;
  stale_ = false;
  auto fresh = read();
  {
    const std::lock_guard lock(mutex_);
    if (sameLayout(*fresh, *layout_)) return;
    layout_ = std::move(fresh);
  }
  changed.emit();
}

ScreenLayoutRef X11Screens::read() const {
  const auto monitors = readMonitors(connection_);
  auto screens = toScreens(monitors, readScale(connection_));
  auto fresh = std::make_shared<ScreenLayout>();
  for (std::size_t i = 0; i < screens.size(); ++i) {
    fresh->areas.push_back(monitors[i].area);
    const auto twin = std::find_if(fresh->monitors.begin(), fresh->monitors.end(),
                                   [&](const MonitorArea& other) { return other.area == monitors[i].area; });
    fresh->monitorOf.push_back(static_cast<std::size_t>(twin - fresh->monitors.begin()));
    if (screens[i].mirrors == 0) fresh->monitors.push_back({screens[i].uuid.value_or(""), monitors[i].area});
    fresh->screens.push_back(std::make_shared<const Screen>(std::move(screens[i])));
  }
  return fresh;
}

}  // namespace tessaspaces
