#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/HotKeyRegistrar.h"

namespace tessaspaces {

class Platform;

/// A combo that could not be had, for telling the user.
struct HotKeyFailure {
  KeyCombo combo;
  std::string label;
  /// See HotKeyRegistration::status.
  std::int32_t status = 0;
};

/// Registers the global hot keys and runs their actions. Main thread only, but for the platform's press
/// callback, which just hands the id over to the main thread.
class HotKeyCenter {
 public:
  static HotKeyCenter& shared();

  HotKeyCenter() = default;
  HotKeyCenter(const HotKeyCenter&) = delete;
  HotKeyCenter& operator=(const HotKeyCenter&) = delete;

  /// Takes the combo for this program; `label` names it in the log. False, with a line in the log and an
  /// entry in `failures`, when the platform refuses it; false alone for an empty combo.
  bool registerHotKey(KeyCombo combo, const std::string& label, std::function<void()> action);
  /// Gives every combo back and forgets actions and failures. Ids are not used again, so that a press
  /// still under way cannot run another combo's action.
  void unregisterAll();
  /// Runs the action of a registered combo; nothing for an id that is not registered any more.
  void fire(std::uint32_t id);
  /// Runs the action of this combo if it is registered: whoever has the whole
  /// keyboard hands in what the system cannot deliver meanwhile. False when it is none.
  ///
  /// As long as the key is held, presses of it that the system delivers are its repeats, and are dropped: whoever gives
  /// the keyboard back at this press is not to get the same key again.
  bool press(KeyCombo combo);

  /// What has been refused since the last `unregisterAll`, in order.
  [[nodiscard]] const std::vector<HotKeyFailure>& failures() const { return failures_; }
  [[nodiscard]] std::size_t registeredCount() const { return refs_.size(); }

 private:
  void installHandler();
  void watchHeld();

  struct Entry {
    KeyCombo combo;
    std::function<void()> action;
  };
  std::map<std::uint32_t, Entry> entries_;
  std::vector<HotKeyHandle> refs_;
  std::vector<HotKeyFailure> failures_;
  std::uint32_t nextID_ = 1;
  /// Handed in, and not let go of since, as far as was looked.
  std::optional<KeyCombo> held_;
  /// The platform whose presses arrive here; null before the first registration.
  const Platform* handlerInstalled_ = nullptr;
};

}  // namespace tessaspaces
