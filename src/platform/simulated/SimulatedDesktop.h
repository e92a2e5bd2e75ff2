#pragma once

#include "platform/Applications.h"
#include "platform/Screens.h"
#include "platform/WindowList.h"
#include "platform/simulated/SimulatedWorld.h"

namespace tessaspaces {

/// The window list of a simulated world.
class SimulatedWindowList final : public WindowList {
 public:
  explicit SimulatedWindowList(SimulatedWorld& world) : world_(world) {}
  std::optional<std::vector<WindowInfo>> copyWindowInfo(WindowListOption option) override;

 private:
  SimulatedWorld& world_;
};

/// The screens of a simulated world: its displays, seen from the bottom left.
class SimulatedScreens final : public Screens {
 public:
  explicit SimulatedScreens(SimulatedWorld& world) : world_(world) {}
  std::vector<ScreenRef> screens() override;
  ScreenRef mainScreen() override;
  Point pointer() override;

 private:
  SimulatedWorld& world_;
};

/// The applications of a simulated world.
class SimulatedApplications final : public Applications {
 public:
  explicit SimulatedApplications(SimulatedWorld& world) : world_(world) {}
  std::optional<ApplicationInfo> frontmost() override;
  std::optional<ApplicationInfo> running(std::int32_t pid) override;
  std::vector<ApplicationInfo> runningWithBundleIdentifier(std::string_view identifier) override;
  ImageRef icon(std::int32_t pid) override;
  bool activate(std::int32_t pid) override;

 private:
  SimulatedWorld& world_;
};

}  // namespace tessaspaces
