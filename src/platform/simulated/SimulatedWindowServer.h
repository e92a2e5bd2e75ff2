#pragma once

#include "platform/WindowServer.h"
#include "platform/simulated/SimulatedWorld.h"

namespace tessaspaces {

/// The window server's interface onto a simulated world. A space belongs to one display: asking another
/// display to show it is refused. The mask of copySpacesForWindows does not matter here.
class SimulatedWindowServer final : public WindowServer {
 public:
  explicit SimulatedWindowServer(SimulatedWorld& world) : world_(world) {}

  std::int32_t mainConnectionID() override;
  std::optional<std::vector<ManagedDisplay>> copyManagedDisplaySpaces() override;
  SpaceID managedDisplayGetCurrentSpace(std::string_view display) override;
  void managedDisplaySetCurrentSpace(std::string_view display, SpaceID space) override;
  std::optional<std::vector<WindowID>> copyWindowsOnSpace(SpaceID space) override;
  std::optional<std::vector<SpaceID>> copySpacesForWindows(int mask, std::span<const WindowID> windows) override;
  void moveWindowsToManagedSpace(std::span<const WindowID> windows, SpaceID space) override;
  void addWindowsToSpaces(std::span<const WindowID> windows, std::span<const SpaceID> spaces) override;
  void removeWindowsFromSpaces(std::span<const WindowID> windows, std::span<const SpaceID> spaces) override;
  std::int32_t spaceSetCompatID(SpaceID space, std::int32_t compatID) override;
  std::int32_t setWindowListWorkspace(std::span<const WindowID> windows, std::int32_t compatID) override;
  bool performBridged(const BridgedOperation& operation) override;
  bool addSpace(std::string_view display) override;
  bool removeSpace(std::string_view display, SpaceID space) override;
  [[nodiscard]] std::unique_ptr<ReadScope> beginRead() override;
  std::optional<std::string> windowManagerName() override;
  /// True, also where WorldState::carriesDraggedWindow says otherwise: not everybody is known. False when unavailable.
  bool carriesHeldWindows() override;
  /// Logged, and without effect.
  void setDesktopLayout(int rows, int columns) override;

  // What the two error-returning operations answer when they do not know their space or compatibility id.
  static constexpr std::int32_t noError = 0;
  static constexpr std::int32_t illegalArgument = 1001;

 private:
  bool perform(const ShowSpaces& operation);
  bool perform(const SetCurrentSpace& operation);
  bool perform(const HideSpaces& operation);
  bool perform(const MoveWindowsToSpace& operation);
  /// Whether this system offers the operation; one that it does not is logged here.
  bool offers(Operation operation, std::string_view arguments);
  void requestSwitch(Operation operation, std::string_view display, SpaceID space);

  SimulatedWorld& world_;
};

}  // namespace tessaspaces
