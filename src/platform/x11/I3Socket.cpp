#include "platform/x11/I3Socket.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <nlohmann/json.hpp>
#include <utility>

namespace tessaspaces {
namespace {

using Clock = std::chrono::steady_clock;
using nlohmann::json;

// i3 answers within a millisecond or two; on a busy machine it may have to be waited for.
constexpr auto patience = std::chrono::seconds(1);

// The protocol: this text, the length of the payload and its type, both in the byte order of the machine.
constexpr std::string_view magic = "i3-ipc";
constexpr std::size_t headerSize = magic.size() + 2 * sizeof(std::uint32_t);
constexpr std::uint32_t runCommand = 0;
constexpr std::uint32_t getWorkspaces = 1;
constexpr std::uint32_t getOutputs = 3;
constexpr std::uint32_t getConfig = 9;
// Some hundred bytes for each workspace or command, a few thousand lines of configuration.
constexpr std::uint32_t longestPayload = 1024 * 1024;

bool waitFor(int descriptor, short events, Clock::time_point deadline) {
  for (;;) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    pollfd entry{descriptor, events, 0};
    const int ready = poll(&entry, 1, left > 0 ? static_cast<int>(left) : 0);
    if (ready > 0) return true;
    if (ready == 0 || errno != EINTR) return false;
  }
}

bool isRetriable(int error) {
  return error == EINTR || error == EAGAIN || error == EWOULDBLOCK;
}

bool readAll(int descriptor, char* data, std::size_t size, Clock::time_point deadline) {
  while (size > 0) {
    if (!waitFor(descriptor, POLLIN, deadline)) return false;
    const auto count = read(descriptor, data, size);
    if (count == 0 || (count < 0 && !isRetriable(errno))) return false;
    if (count < 0) continue;
    data += count;
    size -= static_cast<std::size_t>(count);
    // A sender that feeds one byte at a time would never let a wait run out.
    if (size > 0 && Clock::now() >= deadline) return false;
  }
  return true;
}

bool writeAll(int descriptor, std::string_view data, Clock::time_point deadline) {
  while (!data.empty()) {
    if (!waitFor(descriptor, POLLOUT, deadline)) return false;
    const auto count = send(descriptor, data.data(), data.size(), MSG_NOSIGNAL);
    if (count < 0 && !isRetriable(errno)) return false;
    if (count > 0) data.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

json parseList(std::string_view text) {
  auto document = json::parse(text, nullptr, false);
  return document.is_array() ? document : json();
}

std::optional<std::string> textIn(const json& object, const char* key) {
  const auto found = object.find(key);
  if (found == object.end() || !found->is_string()) return std::nullopt;
  return found->get<std::string>();
}

int numberIn(const json& object, const char* key, int fallback) {
  const auto found = object.find(key);
  if (found == object.end() || !found->is_number_integer()) return fallback;
  const auto number = found->get<std::int64_t>();
  return std::in_range<int>(number) ? static_cast<int>(number) : fallback;
}

bool flagIn(const json& object, const char* key) {
  const auto found = object.find(key);
  return found != object.end() && found->is_boolean() && found->get<bool>();
}

}  // namespace

std::optional<std::vector<I3Workspace>> parseI3Workspaces(std::string_view text) {
  const auto list = parseList(text);
  if (!list.is_array()) return std::nullopt;
  std::vector<I3Workspace> workspaces;
  for (const auto& entry : list) {
    if (!entry.is_object()) return std::nullopt;
    auto name = textIn(entry, "name");
    auto output = textIn(entry, "output");
    if (!name || name->empty() || !output) continue;
    workspaces.push_back({std::move(*name), numberIn(entry, "num", -1), std::move(*output), flagIn(entry, "visible"),
                          flagIn(entry, "focused")});
  }
  return workspaces;
}

std::optional<std::vector<I3Output>> parseI3Outputs(std::string_view text) {
  const auto list = parseList(text);
  if (!list.is_array()) return std::nullopt;
  std::vector<I3Output> outputs;
  for (const auto& entry : list) {
    if (!entry.is_object()) return std::nullopt;
    auto name = textIn(entry, "name");
    const auto rect = entry.find("rect");
    if (!name || name->empty() || rect == entry.end() || !rect->is_object()) continue;
    outputs.push_back({std::move(*name), numberIn(*rect, "x", 0), numberIn(*rect, "y", 0), flagIn(entry, "active")});
  }
  return outputs;
}

std::optional<std::string> parseI3Config(std::string_view text) {
  const auto document = json::parse(text, nullptr, false);
  if (!document.is_object()) return std::nullopt;
  std::string config;
  if (const auto files = document.find("included_configs"); files != document.end() && files->is_array()) {
    for (const auto& file : *files) {
      if (!file.is_object()) return std::nullopt;
      config += textIn(file, "variable_replaced_contents").value_or("") + '\n';
    }
    return config;
  }
  return textIn(document, "config");
}

bool parseI3Outcome(std::string_view text) {
  const auto list = parseList(text);
  if (!list.is_array() || list.empty()) return false;
  for (const auto& entry : list) {
    if (!entry.is_object() || !flagIn(entry, "success")) return false;
  }
  return true;
}

std::string quoteForI3(std::string_view name) {
  std::string quoted = "\"";
  for (const char character : name) {
    if (character == '"' || character == '\\') quoted += '\\';
    quoted += character;
  }
  return quoted + '"';
}

std::string patternForI3(std::string_view name) {
  // In a Perl pattern a backslash takes the meaning from any character but letters and digits.
  const auto isPlain = [](unsigned char character) {
    return character >= 0x80 || (character >= '0' && character <= '9') ||
           ((character | 0x20) >= 'a' && (character | 0x20) <= 'z');
  };
  std::string pattern = "^";
  for (const char character : name) {
    if (!isPlain(static_cast<unsigned char>(character))) pattern += '\\';
    pattern += character;
  }
  return quoteForI3(pattern + '$');
}

std::optional<std::string> readI3Message(int descriptor, std::uint32_t type, Clock::time_point deadline) {
  std::array<char, headerSize> header{};
  if (!readAll(descriptor, header.data(), header.size(), deadline)) return std::nullopt;
  std::uint32_t length = 0;
  std::uint32_t given = 0;
  std::memcpy(&length, header.data() + magic.size(), sizeof length);
  std::memcpy(&given, header.data() + magic.size() + sizeof length, sizeof given);
  if (std::string_view(header.data(), magic.size()) != magic || given != type || length > longestPayload) {
    return std::nullopt;
  }
  std::string payload(length, '\0');
  if (!readAll(descriptor, payload.data(), payload.size(), deadline)) return std::nullopt;
  return payload;
}

std::optional<I3Socket> I3Socket::open(const std::string& path, pid_t pid) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (!path.starts_with('/') || path.size() >= sizeof address.sun_path) return std::nullopt;
  path.copy(address.sun_path, path.size());
  I3Socket opened(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (opened.descriptor_ < 0) return std::nullopt;
  if (connect(opened.descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    return std::nullopt;
  }
  ucred peer{};
  socklen_t size = sizeof peer;
  if (getsockopt(opened.descriptor_, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0 || peer.pid != pid) {
    return std::nullopt;
  }
  return opened;
}

I3Socket::~I3Socket() {
  close();
}

I3Socket::I3Socket(I3Socket&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}

I3Socket& I3Socket::operator=(I3Socket&& other) noexcept {
  std::swap(descriptor_, other.descriptor_);
  return *this;
}

void I3Socket::close() {
  if (descriptor_ >= 0) ::close(descriptor_);
  descriptor_ = -1;
}

bool I3Socket::run(std::string_view commands) {
  const auto reply = ask(runCommand, commands);
  return reply && parseI3Outcome(*reply);
}

std::optional<std::vector<I3Workspace>> I3Socket::workspaces() {
  const auto reply = ask(getWorkspaces, {});
  return reply ? parseI3Workspaces(*reply) : std::nullopt;
}

std::optional<std::vector<I3Output>> I3Socket::outputs() {
  const auto reply = ask(getOutputs, {});
  return reply ? parseI3Outputs(*reply) : std::nullopt;
}

std::optional<std::string> I3Socket::config() {
  const auto reply = ask(getConfig, {});
  return reply ? parseI3Config(*reply) : std::nullopt;
}

std::optional<std::string> I3Socket::ask(std::uint32_t type, std::string_view payload) {
  if (descriptor_ < 0) return std::nullopt;
  const auto deadline = Clock::now() + patience;
  const auto length = static_cast<std::uint32_t>(payload.size());
  std::string message(magic);
  message.append(reinterpret_cast<const char*>(&length), sizeof length);
  message.append(reinterpret_cast<const char*>(&type), sizeof type);
  message.append(payload);
  auto reply = writeAll(descriptor_, message, deadline) ? readI3Message(descriptor_, type, deadline) : std::nullopt;
  if (!reply) close();  // a late reply would be taken for the next one's
  return reply;
}

}  // namespace tessaspaces
