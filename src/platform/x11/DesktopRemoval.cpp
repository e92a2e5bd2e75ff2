#include "platform/x11/DesktopRemoval.h"

namespace tessaspaces {
namespace {

using Kind = PagerMessage::Kind;

class Plan {
 public:
  explicit Plan(const DesktopState& desktops) : desktops_(desktops) {}

  /// Sends the windows that are on `from` now to `to`.
  void move(std::uint32_t from, std::uint32_t to) {
    for (const auto& record : desktops_.windows) {
      if (record.desktop == from) messages_.push_back({Kind::moveWindow, record.window, to});
    }
  }
  /// Changes the number of the desktop that is shown: on all desktops for a moment, its windows stay in sight.
  void renumberShown(std::uint32_t from, std::uint32_t to) {
    const auto before = messages_.size();
    move(from, allDesktops);
    // openbox carries out only the last of the moves of one window that it finds waiting.
    if (messages_.size() > before) messages_.push_back({Kind::awaitMove, messages_.back().window, allDesktops});
    messages_.push_back({Kind::showDesktop, XCB_NONE, to});
    move(from, to);
  }
  void setCount(std::uint32_t count) { messages_.push_back({Kind::setCount, XCB_NONE, count}); }
  PagerMessages take() { return std::move(messages_); }

 private:
  const DesktopState& desktops_;
  PagerMessages messages_;
};

}  // namespace

PagerMessages planRemoval(const DesktopState& desktops, std::uint32_t removed) {
  Plan plan(desktops);
  // Upwards, so that each desktop has been emptied when the next one's windows come.
  for (auto desktop = removed + 1; desktop < desktops.count; ++desktop) {
    if (desktop == desktops.current) {
      plan.renumberShown(desktop, desktop - 1);
    } else {
      plan.move(desktop, desktop - 1);
    }
  }
  plan.setCount(desktops.count - 1);
  return plan.take();
}

PagerMessages planReturn(const DesktopState& desktops, std::uint32_t removed) {
  Plan plan(desktops);
  // A window manager that was only slow has dropped it after all.
  plan.setCount(desktops.count);
  for (auto desktop = desktops.count - 1; desktop > removed; --desktop) {
    if (desktop == desktops.current) {
      plan.renumberShown(desktop, desktop);
    } else {
      plan.move(desktop, desktop);
    }
  }
  return plan.take();
}

std::string withoutName(std::string_view names, std::uint32_t removed) {
  std::size_t begin = 0;
  for (; removed > 0; --removed) {
    const auto end = names.find('\0', begin);
    if (end == std::string_view::npos) return std::string(names);
    begin = end + 1;
  }
  std::string result(names.substr(0, begin));
  if (const auto end = names.find('\0', begin); end != std::string_view::npos) result += names.substr(end + 1);
  return result;
}

}  // namespace tessaspaces
