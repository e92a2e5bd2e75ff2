#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/Platform.h"
#include "platform/simulated/SimulatedCapture.h"
#include "platform/simulated/SimulatedWorld.h"
#include "platform/simulated/VirtualDispatch.h"

namespace tessaspaces {

/// A whole platform in memory, for unit tests and for `--platform simulated` on a machine without an X
/// server. It behaves as a window server does; `world()` is the other side of it, where displays, desktops,
/// windows and faults come from.
class SimulatedPlatform final : public Platform {
 public:
  /// An empty world: no displays, no windows. Null: virtual time.
  explicit SimulatedPlatform(std::unique_ptr<Dispatch> dispatch = nullptr);
  ~SimulatedPlatform() override;

  /// A world from a few words (grammar: WorldText.h), for instance
  ///   "left 960x1080 | A* B C / D E ; right 960x1080+960 | X* Y"
  /// Null when the text cannot be read: the reason goes to `error`, or is reported where that is null.
  static std::unique_ptr<SimulatedPlatform> fromText(std::string_view text, std::string* error = nullptr,
                                                     std::unique_ptr<Dispatch> dispatch = nullptr);

  WindowServer& windowServer() override;
  WindowList& windowList() override;
  Screens& screens() override;
  Applications& applications() override;
  AccessibilityWindows& accessibility() override;
  InputEvents& inputEvents() override;
  HotKeyRegistrar& hotKeys() override;
  WindowCapture& windowCapture() override;
  Preferences& preferences() override;
  LoginItem& loginItem() override;
  Permissions& permissions() override;
  Dispatch& dispatch() override;

  [[nodiscard]] std::string name() const override { return "simulated"; }
  [[nodiscard]] OperatingSystemVersion operatingSystemVersion() const override;
  /// `ownPid`.
  [[nodiscard]] std::int32_t processID() const override { return ownPid; }
  std::vector<SessionFinding> examineSession() override;

  static constexpr std::int32_t ownPid = 4242;

  SimulatedWorld& world();
  /// What windows and displays show, from the outside.
  SimulatedCapture& pictures();
  /// The clock; a fatal stop when the platform was given another Dispatch.
  VirtualDispatch& time();

  // Hot keys, from the outside.
  /// Whether the combo is registered; if so the press handler was called.
  bool pressKey(KeyCombo combo);
  /// Another program holds the combo: registering it gives `status` (10 as on X11).
  void takeKey(KeyCombo combo, std::int32_t status = 10);
  void releaseKey(KeyCombo combo);

  // The session.
  /// 27.0 unless set: below it the old ways of switching are used.
  void setOperatingSystemVersion(OperatingSystemVersion version);
  void setLegacyPreference(std::string key, PreferenceValue value);
  void setPreferredLanguages(std::vector<std::string> tags);
  /// True unless set.
  void setNaturalScrolling(bool natural);
  /// False unless set.
  void setReduceMotion(bool reduce);
  /// Both true unless set.
  void setPermissions(bool accessibility, bool screenRecording);
  /// All facts are fine unless set.
  void setFinding(SessionFinding finding);

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace tessaspaces
