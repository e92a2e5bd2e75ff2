#include "ui/x11/CoverWatch.h"

#include <xcb/shape.h>

#include <QRegion>
#include <algorithm>
#include <chrono>
#include <memory>

#include "ui/x11/Await.h"

namespace tessaspaces {
namespace {

using namespace std::chrono_literals;

/// From the first news until the look at how things are, in which more news may come.
constexpr auto settle = 60ms;
/// Until the second look, which decides.
constexpr auto confirm = 250ms;
/// The part of a panel that has to be covered.
constexpr double most = 0.5;

long long areaOf(const QRegion& region) {
  long long area = 0;
  for (const QRect& rect : region) area += static_cast<long long>(rect.width()) * rect.height();
  return area;
}

QRegion toRegion(const xcb_shape_get_rectangles_reply_t& reply, QPoint origin) {
  QRegion region;
  const auto* rectangles = xcb_shape_get_rectangles_rectangles(&reply);
  for (int i = 0; i < xcb_shape_get_rectangles_rectangles_length(&reply); ++i) {
    region += QRect(rectangles[i].x, rectangles[i].y, rectangles[i].width, rectangles[i].height).translated(origin);
  }
  return region;
}

}  // namespace

CoverWatch::CoverWatch(xcb_connection_t* connection)
    : connection_(connection), root_(xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root) {
  const auto* shape = xcb_get_extension_data(connection, &xcb_shape_id);
  hasShape_ = shape != nullptr && shape->present != 0;
  timer_.setSingleShot(true);
  timer_.callOnTimeout([this] { look(); });
}

void CoverWatch::add(QWindow& window) {
  if (panels_.empty()) listen(true);
  panels_.push_back({&window, false});
}

void CoverWatch::remove(QWindow& window) {
  const auto gone = std::erase_if(panels_, [&](const Panel& panel) { return panel.window == &window; });
  if (gone == 0 || !panels_.empty()) return;
  timer_.stop();
  listen(false);
}

void CoverWatch::listen(bool wanted) {
  if (wanted) {
    // Qt has asked for other events of the root window on the same connection, and a client has one mask for a window.
    const auto attributes =
        await(connection_, xcb_get_window_attributes_reply, xcb_get_window_attributes(connection_, root_));
    if (!attributes) return;
    maskBefore_ = attributes->your_event_mask;
  }
  // Where it was not heard what to go back to, nothing was changed.
  if (!maskBefore_) return;
  const std::uint32_t mask = *maskBefore_ | (wanted ? std::uint32_t{XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY} : 0U);
  if (!wanted) maskBefore_.reset();
  xcb_change_window_attributes(connection_, root_, XCB_CW_EVENT_MASK, &mask);
  xcb_flush(connection_);
}

bool CoverWatch::isOurs(xcb_window_t window) const {
  const auto* setup = xcb_get_setup(connection_);
  return (window & ~setup->resource_id_mask) == setup->resource_id_base;
}

void CoverWatch::handle(const xcb_generic_event_t& event) {
  if (panels_.empty()) return;
  xcb_window_t window = XCB_NONE;
  switch (eventType(event)) {
    case XCB_MAP_NOTIFY:
      if (eventAs<xcb_map_notify_event_t>(event).event == root_) window = eventAs<xcb_map_notify_event_t>(event).window;
      break;
    case XCB_CONFIGURE_NOTIFY: {
      const auto& configured = eventAs<xcb_configure_notify_event_t>(event);
      if (configured.event == root_) window = configured.window;
      break;
    }
    case XCB_CIRCULATE_NOTIFY: window = eventAs<xcb_circulate_notify_event_t>(event).window; break;
    default: return;
  }
  if (window != XCB_NONE && !isOurs(window) && !timer_.isActive()) timer_.start(settle);
}

std::vector<xcb_window_t> CoverWatch::stacking() const {
  const auto tree = await(connection_, xcb_query_tree_reply, xcb_query_tree(connection_, root_));
  if (!tree) return {};
  const auto* first = xcb_query_tree_children(tree.get());
  return {first, first + xcb_query_tree_children_length(tree.get())};
}

bool CoverWatch::isCovered(const QWindow& window) const {
  return isCovered(static_cast<xcb_window_t>(window.winId()), stacking());
}

void CoverWatch::look() {
  const auto all = stacking();
  bool again = false;
  std::vector<QWindow*> found;
  for (Panel& panel : panels_) {
    const bool now = isCovered(static_cast<xcb_window_t>(panel.window->winId()), all);
    if (now && panel.seenCovered) found.push_back(panel.window);
    again = again || (now && !panel.seenCovered);
    panel.seenCovered = now;
  }
  if (again) timer_.start(confirm);
  // Whoever hears of it closes panels.
  for (QWindow* window : found) {
    const bool open =
        std::any_of(panels_.begin(), panels_.end(), [&](const Panel& panel) { return panel.window == window; });
    if (open) covered.emit(window);
  }
}

bool CoverWatch::isCovered(xcb_window_t panel, const std::vector<xcb_window_t>& stacking) const {
  const auto at = std::find(stacking.begin(), stacking.end(), panel);
  if (at == stacking.end()) return false;
  struct Above {
    xcb_window_t window;
    xcb_get_window_attributes_cookie_t attributes;
    xcb_get_geometry_cookie_t geometry;
  };
  std::vector<Above> above;
  const auto own = xcb_get_geometry(connection_, panel);
  for (auto each = at + 1; each != stacking.end(); ++each) {
    if (isOurs(*each)) continue;
    above.push_back({*each, xcb_get_window_attributes(connection_, *each), xcb_get_geometry(connection_, *each)});
  }
  const auto place = await(connection_, xcb_get_geometry_reply, own);
  const QRect area = place ? QRect(place->x, place->y, place->width, place->height) : QRect();

  struct Candidate {
    QRegion region;
    QPoint origin;
    xcb_shape_get_rectangles_cookie_t outline{};
    xcb_shape_get_rectangles_cookie_t input{};
  };
  std::vector<Candidate> candidates;
  for (const Above& each : above) {
    const auto attributes = await(connection_, xcb_get_window_attributes_reply, each.attributes);
    const auto geometry = await(connection_, xcb_get_geometry_reply, each.geometry);
    if (!attributes || !geometry || attributes->map_state != XCB_MAP_STATE_VIEWABLE ||
        attributes->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT) {
      continue;
    }
    const int border = 2 * geometry->border_width;
    const QRect rect(geometry->x, geometry->y, geometry->width + border, geometry->height + border);
    if (!rect.intersects(area)) continue;
    Candidate candidate{rect, rect.topLeft()};
    if (hasShape_) {
      candidate.outline = xcb_shape_get_rectangles(connection_, each.window, XCB_SHAPE_SK_BOUNDING);
      candidate.input = xcb_shape_get_rectangles(connection_, each.window, XCB_SHAPE_SK_INPUT);
    }
    candidates.push_back(std::move(candidate));
  }
  QRegion covering;
  for (Candidate& candidate : candidates) {
    if (hasShape_) {
      const auto outline = await(connection_, xcb_shape_get_rectangles_reply, candidate.outline);
      const auto input = await(connection_, xcb_shape_get_rectangles_reply, candidate.input);
      if (!outline || !input) continue;
      // What lets every click through is not in the way: a compositor paints the whole screen in such a window.
      if (xcb_shape_get_rectangles_rectangles_length(input.get()) == 0) continue;
      candidate.region &= toRegion(*outline, candidate.origin);
    }
    covering += candidate.region & area;
  }
  return static_cast<double>(areaOf(covering)) > most * area.width() * area.height();
}

}  // namespace tessaspaces
