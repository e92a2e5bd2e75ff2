#include "grid/GridSelfTest.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <vector>

#include "grid/Overlap.h"
#include "model/DisplayScreens.h"
#include "model/Snapshot.h"
#include "platform/Platform.h"
#include "settings/L10n.h"
#include "settings/Log.h"
#include "settings/Settings.h"

namespace tessaspaces {
namespace {

/// Sums of fractions differ in their last digits.
constexpr double tolerance = 0.01;

bool isInside(const Rect& inner, const Rect& outer) {
  return inner.minX() >= outer.minX() - tolerance && inner.minY() >= outer.minY() - tolerance &&
         inner.maxX() <= outer.maxX() + tolerance && inner.maxY() <= outer.maxY() + tolerance;
}

bool allInside(const std::vector<Rect>& inner, const Rect& outer) {
  return std::all_of(inner.begin(), inner.end(),
                     [&](const Rect& rect) { return rect.isEmpty() || isInside(rect, outer); });
}

class Findings {
 public:
  void check(bool passed, std::string_view failureKey, std::string_view panel, std::string_view what) {
    ++report_.checks;
    if (passed) return;
    ++report_.failures;
    failures_.push_back(L10n::t(failureKey, panel, what));
    Log::error("SELF-TEST GRID: FAILED — {} ({}, {})", failureKey, panel, what);
  }
  void note(std::string line) { lines_.push_back(std::move(line)); }

  GridSelfTestReport finish() {
    Log::info("SELF-TEST GRID: {}/{} passed", report_.checks - report_.failures, report_.checks);
    report_.text = report_.failures == 0 ? L10n::t("selftest.grid.ok", report_.checks)
                                         : L10n::t("selftest.grid.failed", report_.failures, report_.checks);
    for (const auto& line : lines_) report_.text += "\n" + line;
    for (const auto& failure : failures_) report_.text += "\n" + failure;
    return report_;
  }

 private:
  GridSelfTestReport report_;
  std::vector<std::string> lines_;
  std::vector<std::string> failures_;
};

/// What there is right now.
struct System {
  SpacesSnapshot snapshot = Spaces::enumerate(Spaces::WithWindows::no);
  std::set<WindowID> onScreen;

  System() {
    for (const auto& window : platform()
                                  .windowList()
                                  .copyWindowInfo(WindowListOption::onScreenWithoutDesktopElements)
                                  .value_or(std::vector<WindowInfo>{})) {
      onScreen.insert(window.number.value_or(0));
    }
  }
};

/// One panel beside what the system has.
class PanelTest {
 public:
  PanelTest(const GridPanelController& panel, const System& system, Findings& findings)
      : panel_(panel),
        layout_(panel.root.layout()),
        system_(system),
        findings_(findings),
        name_(panel.screen()->name) {}

  void run() {
    tiles();
    for (std::size_t tile = 0; tile < layout_.tileRects().size(); ++tile) {
      if (tile >= desktops().size() || tile >= layout_.contentRects().size() || tile >= layout_.thumbRects().size()) {
        break;
      }
      previews(tile);
      hits(tile);
      pictures(tile);
    }
    findings_.note(L10n::t("selftest.grid.panel", name_, layout_.tileRects().size(), windows_, pictures_, missing_));
  }

 private:
  [[nodiscard]] const std::vector<DesktopRef>& desktops() const { return layout_.snapshot().desktops; }
  void check(bool passed, std::string_view failureKey, std::string_view what) {
    findings_.check(passed, failureKey, name_, what);
  }
  [[nodiscard]] std::string label(std::size_t tile) const { return desktops()[tile]->label(static_cast<int>(tile)); }

  void tiles() {
    std::vector<SpaceID> shown;
    for (const auto& desktop : desktops()) shown.push_back(desktop->spaceID);
    std::vector<SpaceID> there;
    for (const auto& desktop : system_.snapshot.desktops) {
      const bool ours = !desktops().empty() && desktop->displayUUID == desktops().front()->displayUUID;
      if (ours) there.push_back(desktop->spaceID);
    }
    check(!shown.empty() && shown == there, "selftest.grid.desktops", std::to_string(shown.size()));

    const auto uuid = Spaces::displayUUID(panel_.screen()).value_or("");
    const int cells = Settings::gridRows(uuid) * Settings::gridColumns(uuid);
    const auto expected = std::min<std::size_t>(there.size(), static_cast<std::size_t>(cells));
    const auto& rects = layout_.tileRects();
    check(rects.size() == expected, "selftest.grid.tiles", std::to_string(rects.size()));

    const auto size = panel_.screen()->frame;
    const double top = layout_.menuBarInset() + GridLayout::headerHeight;
    const bool inside = std::none_of(rects.begin(), rects.end(), [](const Rect& rect) { return rect.isEmpty(); }) &&
                        allInside(rects, {0, top, size.width, size.height - top});
    check(inside && !hasOverlap(rects), "selftest.grid.geometry", std::to_string(rects.size()));
  }

  void previews(std::size_t tile) {
    const auto& desktop = *desktops()[tile];
    const auto& content = layout_.contentRects()[tile];
    const auto& rects = layout_.thumbRects()[tile];
    check(rects.size() == desktop.windows.size() && allInside(rects, content), "selftest.grid.previews", label(tile));
    // The other view too, whichever is shown.
    const auto apart = GridLayout::explodedWindowRects(content, desktop);
    check(apart.size() == desktop.windows.size() && allInside(apart, content) && !hasOverlap(apart),
          "selftest.grid.exploded", label(tile));
    windows_ += static_cast<int>(std::count_if(rects.begin(), rects.end(), [](const Rect& r) { return !r.isEmpty(); }));
  }

  void hits(std::size_t tile) {
    const auto middle = layout_.tileRects()[tile].center();
    const auto found = layout_.hitTestTile(middle);
    check(found && *found == static_cast<int>(tile), "selftest.grid.hit", label(tile));
    const auto cursor = panel_.root.screenPoint(middle);
    const auto drop = panel_.root.externalDropTarget(cursor, cursor);
    check(drop && drop->desktop == desktops()[tile] && panel_.containsOnScreen(cursor), "selftest.grid.drop",
          label(tile));

    const auto& rects = layout_.thumbRects()[tile];
    bool all = true;
    for (std::size_t window = 0; window < rects.size(); ++window) {
      if (rects[window].isEmpty()) continue;
      const auto hit = layout_.hitTestWindow(rects[window].center());
      // One in front of it covers its middle perhaps.
      all = all && hit && hit->tile == static_cast<int>(tile) && hit->window <= static_cast<int>(window);
    }
    check(all, "selftest.grid.hitWindows", label(tile));
  }

  void pictures(std::size_t tile) {
    const auto& desktop = *desktops()[tile];
    const auto& rects = layout_.thumbRects()[tile];
    bool all = true;
    for (std::size_t i = 0; i < std::min(rects.size(), desktop.windows.size()); ++i) {
      if (rects[i].isEmpty()) continue;
      const bool there = i < desktop.thumbs.size() && desktop.thumbs[i];
      ++(there ? pictures_ : missing_);
      // A window that was never on screen cannot have one.
      if (system_.onScreen.contains(desktop.windows[i].id)) all = all && there;
    }
    check(all, "selftest.grid.pictures", label(tile));
  }

  const GridPanelController& panel_;
  const GridLayout& layout_;
  const System& system_;
  Findings& findings_;
  const std::string name_;
  int windows_ = 0;
  int pictures_ = 0;
  int missing_ = 0;
};

}  // namespace

GridSelfTestReport runGridSelfTest(const GridCoordinator& coordinator) {
  Findings findings;
  const auto panels = coordinator.visiblePanels();
  const auto wanted = GridCoordinator::panelCount();
  findings.check(!panels.empty() && panels.size() == wanted, "selftest.grid.panels", std::to_string(panels.size()),
                 std::to_string(wanted));
  const auto holding =
      std::count_if(panels.begin(), panels.end(), [](const auto& panel) { return panel->hasKeyboard(); });
  findings.check(holding == 1, "selftest.grid.keyboard", std::to_string(holding), std::to_string(panels.size()));
  const System system;
  for (const auto& panel : panels) PanelTest(*panel, system, findings).run();
  return findings.finish();
}

}  // namespace tessaspaces
