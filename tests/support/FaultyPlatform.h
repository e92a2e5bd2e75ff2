#pragma once

#include <atomic>

#include "platform/Platform.h"

namespace tessaspaces {

/// A real platform of which some ways to act do not work: what takes the core down its ladders of fall-backs on a
/// real window manager. Everything else goes through.
class FaultyPlatform final : public Platform {
 public:
  explicit FaultyPlatform(Platform& real) : real_(real) {}

  std::atomic<bool> refusesBridged = false;     // the window server offers no operation of its own
  std::atomic<bool> ignoresMoves = false;       // no window is moved on request
  std::atomic<bool> makesNoEvents = false;      // no swipe can be made
  std::atomic<bool> ignoresActivation = false;  // applications stay where they are
  std::atomic<int> rawSwitches = 0;             // how often the raw request was made

  WindowServer& windowServer() override { return windowServer_; }
  WindowList& windowList() override { return real_.windowList(); }
  Screens& screens() override { return real_.screens(); }
  Applications& applications() override { return applications_; }
  AccessibilityWindows& accessibility() override { return real_.accessibility(); }
  InputEvents& inputEvents() override { return inputEvents_; }
  WindowCapture& windowCapture() override { return real_.windowCapture(); }
  HotKeyRegistrar& hotKeys() override { return real_.hotKeys(); }
  Preferences& preferences() override { return real_.preferences(); }
  LoginItem& loginItem() override { return real_.loginItem(); }
  Permissions& permissions() override { return real_.permissions(); }
  Dispatch& dispatch() override { return real_.dispatch(); }
  [[nodiscard]] std::string name() const override { return real_.name(); }
  [[nodiscard]] OperatingSystemVersion operatingSystemVersion() const override {
    return real_.operatingSystemVersion();
  }
  [[nodiscard]] std::int32_t processID() const override { return real_.processID(); }
  std::vector<SessionFinding> examineSession() override { return real_.examineSession(); }

 private:
  class Server final : public WindowServer {
   public:
    explicit Server(FaultyPlatform& owner) : owner_(owner) {}

    std::int32_t mainConnectionID() override { return real().mainConnectionID(); }
    std::optional<std::vector<ManagedDisplay>> copyManagedDisplaySpaces() override {
      return real().copyManagedDisplaySpaces();
    }
    SpaceID managedDisplayGetCurrentSpace(std::string_view display) override {
      return real().managedDisplayGetCurrentSpace(display);
    }
    void managedDisplaySetCurrentSpace(std::string_view display, SpaceID space) override {
      ++owner_.rawSwitches;
      real().managedDisplaySetCurrentSpace(display, space);
    }
    std::optional<std::vector<WindowID>> copyWindowsOnSpace(SpaceID space) override {
      return real().copyWindowsOnSpace(space);
    }
    std::optional<std::vector<SpaceID>> copySpacesForWindows(int mask, std::span<const WindowID> windows) override {
      return real().copySpacesForWindows(mask, windows);
    }
    void moveWindowsToManagedSpace(std::span<const WindowID> windows, SpaceID space) override {
      if (!owner_.ignoresMoves) real().moveWindowsToManagedSpace(windows, space);
    }
    void addWindowsToSpaces(std::span<const WindowID> windows, std::span<const SpaceID> spaces) override {
      if (!owner_.ignoresMoves) real().addWindowsToSpaces(windows, spaces);
    }
    void removeWindowsFromSpaces(std::span<const WindowID> windows, std::span<const SpaceID> spaces) override {
      if (!owner_.ignoresMoves) real().removeWindowsFromSpaces(windows, spaces);
    }
    std::int32_t spaceSetCompatID(SpaceID space, std::int32_t compatID) override {
      return real().spaceSetCompatID(space, compatID);
    }
    std::int32_t setWindowListWorkspace(std::span<const WindowID> windows, std::int32_t compatID) override {
      return owner_.ignoresMoves ? 0 : real().setWindowListWorkspace(windows, compatID);
    }
    bool performBridged(const BridgedOperation& operation) override {
      if (owner_.refusesBridged) return false;
      if (owner_.ignoresMoves && std::holds_alternative<MoveWindowsToSpace>(operation)) return true;
      return real().performBridged(operation);
    }
    [[nodiscard]] std::unique_ptr<ReadScope> beginRead() override { return real().beginRead(); }
    std::optional<std::string> windowManagerName() override { return real().windowManagerName(); }
    bool carriesHeldWindows() override { return real().carriesHeldWindows(); }

   private:
    WindowServer& real() { return owner_.real_.windowServer(); }
    FaultyPlatform& owner_;
  };

  class Apps final : public Applications {
   public:
    explicit Apps(FaultyPlatform& owner) : owner_(owner) {}
    std::optional<ApplicationInfo> frontmost() override { return real().frontmost(); }
    std::optional<ApplicationInfo> running(std::int32_t pid) override { return real().running(pid); }
    std::vector<ApplicationInfo> runningWithBundleIdentifier(std::string_view identifier) override {
      return real().runningWithBundleIdentifier(identifier);
    }
    ImageRef icon(std::int32_t pid) override { return real().icon(pid); }
    bool activate(std::int32_t pid) override { return owner_.ignoresActivation || real().activate(pid); }

   private:
    Applications& real() { return owner_.real_.applications(); }
    FaultyPlatform& owner_;
  };

  class Events final : public InputEvents {
   public:
    explicit Events(FaultyPlatform& owner) : owner_(owner) {}
    std::unique_ptr<InputEvent> create() override { return owner_.makesNoEvents ? nullptr : real().create(); }
    std::unique_ptr<InputEvent> recreate(std::span<const std::uint8_t> data) override { return real().recreate(data); }
    void post(const InputEvent& event) override { real().post(event); }
    std::uint64_t absoluteTime() override { return real().absoluteTime(); }
    std::optional<Point> mouseLocation() override { return real().mouseLocation(); }
    std::optional<HeldInput> held() override { return real().held(); }
    bool moveMouse(Point to) override { return real().moveMouse(to); }
    bool pressMouse() override { return real().pressMouse(); }
    bool releaseMouse() override { return real().releaseMouse(); }

   private:
    InputEvents& real() { return owner_.real_.inputEvents(); }
    FaultyPlatform& owner_;
  };

  Platform& real_;
  Server windowServer_{*this};
  Apps applications_{*this};
  Events inputEvents_{*this};
};

}  // namespace tessaspaces
