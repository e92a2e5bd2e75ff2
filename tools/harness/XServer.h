#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "harness/Process.h"

namespace tessaspaces::harness {

enum class Glx { off, on };
enum class SharedMemory { off, on };

/// Without a screen anybody sees, or in a window on the display that DISPLAY names.
enum class ServerKind { hidden, nested };

struct XServerOptions {
  int width = 1920;
  int height = 1080;
  /// As XServer::setMonitors takes it; empty: one monitor, the whole screen.
  std::string monitors = {};
  Glx glx = Glx::off;
  SharedMemory sharedMemory = SharedMemory::on;
  ServerKind kind = ServerKind::hidden;
};

/// An Xvfb (or Xephyr) of its own with a fresh home, runtime and temporary folder, so that nothing that runs on it
/// meets anything of the user's or of another test. All of it goes with the object.
class XServer {
 public:
  explicit XServer(const XServerOptions& options = {});

  [[nodiscard]] const std::string& display() const { return display_; }  // ":7"
  /// What programs on this server are started with: PATH, DISPLAY, the folders, an English UTF-8 locale and
  /// whatever sanitizer options this process was given. No session bus.
  [[nodiscard]] Environment environment() const;
  [[nodiscard]] std::filesystem::path home() const { return folder_.path() / "home"; }
  [[nodiscard]] std::filesystem::path runtimeFolder() const { return folder_.path() / "run"; }
  [[nodiscard]] std::filesystem::path temporaryFolder() const { return folder_.path() / "tmp"; }
  /// Where the outputs of all that was started here are kept.
  [[nodiscard]] std::filesystem::path logFolder() const { return folder_.path() / "log"; }

  /// Lays monitors over the screen, through RandR 1.5, in place of those that were there:
  /// "left 960x1080+0+0 | right 960x1080+960+0", a '*' before a name makes it the primary one. Empty text goes
  /// back to the server's own single monitor. The window manager learns of it by RandR's notices.
  void setMonitors(std::string_view layout) const;

  [[nodiscard]] pid_t pid() const { return server_.pid(); }
  /// Waits, however long, until the server ends: a nested one does when its window is closed.
  void waitForEnd() { server_.wait(std::chrono::hours(24 * 365)); }
  /// Starts a program here; its output goes to a file of its own in `logFolder`.
  [[nodiscard]] Process start(std::vector<std::string> arguments, const Environment& extra = {}) const;
  /// Runs a program here to its end, for instance setxkbmap.
  Result run(std::vector<std::string> arguments, const Environment& extra = {}) const;
  /// Writes the whole screen as a PNG picture; false when ImageMagick is not there or fails.
  bool screenshot(const std::filesystem::path& png) const;

 private:
  [[nodiscard]] Command command(std::vector<std::string> arguments, const Environment& extra) const;

  TemporaryFolder folder_;
  std::string display_;
  Process server_;
};

}  // namespace tessaspaces::harness
