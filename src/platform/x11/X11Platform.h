#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/Platform.h"

namespace tessaspaces {

/// Whether the platform follows events. A one-shot command does not; a program that runs its Dispatch does.
enum class X11Events { watched, ignored };

/// Any EWMH window manager on an X server with RandR. Everything in it is in pixels. Its Dispatch's main
/// thread opens it, watches its events, and lets it go.
class X11Platform : public Platform {
 public:
  /// Null with a sentence in `error` when there is no usable display; `error` may be null.
  static std::unique_ptr<X11Platform> open(std::unique_ptr<Dispatch> dispatch, std::string* error,
                                           X11Events events = X11Events::watched);
  ~X11Platform() override;

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
  [[nodiscard]] std::string name() const override { return "x11"; }
  [[nodiscard]] OperatingSystemVersion operatingSystemVersion() const override { return {27, 0}; }
  [[nodiscard]] std::int32_t processID() const override;
  std::vector<SessionFinding> examineSession() override;

  /// Called once on the main thread when the server has closed the connection: nothing works any more and
  /// the program should end in an orderly way. It has been reported as an error by then.
  void setConnectionLostHandler(std::function<void()> handler);
  /// How often any thread has waited for an answer of the server: see Channel::roundTrips.
  [[nodiscard]] std::uint64_t roundTrips() const;

 private:
  struct Parts;
  explicit X11Platform(std::unique_ptr<Parts> parts);
  std::unique_ptr<Parts> parts_;
};

}  // namespace tessaspaces
