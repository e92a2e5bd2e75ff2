#include <sys/socket.h>
#include <unistd.h>

#include "fuzz/Fuzz.h"
#include "platform/x11/I3Socket.h"
#include "platform/x11/I3Workspaces.h"

// What comes over i3's socket: nothing in it crashes or keeps anyone waiting, and no name in it can become a command.

namespace tessaspaces {
namespace {

using fuzz::require;

void readFromSocket(std::string_view bytes) {
  int ends[2] = {};
  require(socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends) == 0, "there is a pair of sockets");
  const auto sent = send(ends[1], bytes.data(), bytes.size(), MSG_NOSIGNAL);
  const auto deadline = std::chrono::steady_clock::now();
  for (const std::uint32_t type : {1U, 3U}) {
    const auto payload = readI3Message(ends[0], type, deadline);
    require(!payload || static_cast<ssize_t>(payload->size()) <= sent, "a message is no longer than what was sent");
  }
  close(ends[0]);
  close(ends[1]);
}

/// Undoes the quotes as i3 does; a quote that ends the text early is a command that got out.
void requireQuoted(std::string_view name) {
  const auto quoted = quoteForI3(name);
  std::string read;
  std::size_t i = 1;
  for (; i < quoted.size() && quoted[i] != '"'; ++i) {
    if (quoted[i] == '\\' && i + 1 < quoted.size()) ++i;
    read += quoted[i];
  }
  require(i + 1 == quoted.size() && read == name, "the name stays within its quotes");
  require(patternForI3(name).size() >= quoted.size() + 2, "a pattern holds all of the name");
}

}  // namespace
}  // namespace tessaspaces

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tessaspaces;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  readFromSocket(text);
  requireQuoted(text);
  if (const auto workspaces = parseI3Workspaces(text)) {
    for (const auto& workspace : *workspaces) {
      fuzz::require(!workspace.name.empty(), "a workspace has a name");
      requireQuoted(workspace.name);
    }
  }
  static_cast<void>(parseI3Outputs(text));
  static_cast<void>(parseI3Outcome(text));
  static_cast<void>(parseI3Config(text));
  static_cast<void>(parseI3Assignments(text));
  return 0;
}
