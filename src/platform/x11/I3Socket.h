#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessaspaces {

/// One workspace as i3 describes it.
struct I3Workspace {
  std::string name;
  /// The number that the name begins with; -1 without one.
  int number = -1;
  std::string output;
  bool visible = false;
  bool focused = false;
};

/// One monitor as i3 describes it; the place of its top left corner on the root window, in pixels.
struct I3Output {
  std::string name;
  int x = 0;
  int y = 0;
  bool active = false;
};

/// The lists in the replies, in i3's order; absent when the text is not what i3 sends. Entries without a name are
/// left out.
[[nodiscard]] std::optional<std::vector<I3Workspace>> parseI3Workspaces(std::string_view json);
[[nodiscard]] std::optional<std::vector<I3Output>> parseI3Outputs(std::string_view json);
/// The user's configuration as i3 has read it, with what it includes, and with variables replaced where i3 tells so.
/// Absent as above.
[[nodiscard]] std::optional<std::string> parseI3Config(std::string_view json);
/// Whether each of the commands worked.
[[nodiscard]] bool parseI3Outcome(std::string_view json);

/// A name inside a command: in quotes, so that nothing in it is read as a command.
[[nodiscard]] std::string quoteForI3(std::string_view name);
/// A pattern, in quotes too, that matches this name alone.
[[nodiscard]] std::string patternForI3(std::string_view name);

/// Reads one message from a descriptor that does not block: its payload. Absent when it is no message of that type,
/// when it is longer than any that i3 has reason to send, or when it is not complete at the deadline.
[[nodiscard]] std::optional<std::string> readI3Message(int descriptor, std::uint32_t type,
                                                       std::chrono::steady_clock::time_point deadline);

/// i3's own interface, for what it does not do by EWMH: a Unix socket on which each request gets one reply. Each
/// request waits for its reply, but never longer than a second; one that failed ends the connection. One thread.
class I3Socket {
 public:
  /// Connects to `path`, at which the process `pid` has to be the one that listens: the path comes from a property
  /// that may have outlived its writer. Absent when that does not come about.
  static std::optional<I3Socket> open(const std::string& path, pid_t pid);
  ~I3Socket();
  I3Socket(I3Socket&& other) noexcept;
  I3Socket& operator=(I3Socket&& other) noexcept;

  /// Carries commands out, separated by "; ". What they do becomes visible at once, when the last one is done. False
  /// when one of them failed or there was no answer.
  bool run(std::string_view commands);
  std::optional<std::vector<I3Workspace>> workspaces();
  std::optional<std::vector<I3Output>> outputs();
  std::optional<std::string> config();

 private:
  explicit I3Socket(int descriptor) : descriptor_(descriptor) {}
  std::optional<std::string> ask(std::uint32_t type, std::string_view payload);
  void close();

  int descriptor_ = -1;
};

}  // namespace tessaspaces
