#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "app/Chrome.h"
#include "app/HotKeyClashes.h"
#include "base/Signal.h"

namespace tessaspaces {

class LaunchWindowController;

/// The window of the readiness screen. Taken hot keys can be exchanged for others right here.
class LaunchWindow final : public Panel {
 public:
  explicit LaunchWindow(LaunchWindowController& controller);

  /// Looks at everything again.
  void refresh();

 private:
  [[nodiscard]] bool isForeign() const;
  void populate(QVBoxLayout& layout) override;
  void addIntroduction(QVBoxLayout& layout);
  void addChecks(QVBoxLayout& layout);
  void addHotKeys(QVBoxLayout& layout);
  void addGroup(QVBoxLayout& layout, const HotKeyClashes::GroupReport& report);
  void addButtons(QVBoxLayout& layout);
  void apply(HotkeyGroup group, std::uint32_t modifiers);

  LaunchWindowController& controller_;
  /// Groups that had a clash while the window has been open: they stay, so that the user sees them turn good.
  std::map<HotkeyGroup, bool> touched_;
  /// Why the last wish for a group was not followed.
  std::map<HotkeyGroup, QString> refused_;
  ScopedConnection hotkeys_;
};

}  // namespace tessaspaces
