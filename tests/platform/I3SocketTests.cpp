#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <thread>

#include "platform/x11/I3Socket.h"
#include "platform/x11/I3Workspaces.h"
#include "support/TemporaryFolder.h"

namespace tessaspaces {
namespace {

using ::testing::ElementsAre;
using ::testing::SizeIs;
using testing::TemporaryFolder;

constexpr std::uint32_t runCommand = 0;
constexpr std::uint32_t getWorkspaces = 1;
constexpr std::uint32_t getOutputs = 3;
constexpr std::uint32_t getConfig = 9;

std::string message(std::uint32_t type, std::string_view payload, std::optional<std::uint32_t> claimed = {}) {
  const auto length = claimed.value_or(static_cast<std::uint32_t>(payload.size()));
  std::string text = "i3-ipc";
  text.append(reinterpret_cast<const char*>(&length), sizeof length);
  text.append(reinterpret_cast<const char*>(&type), sizeof type);
  return text.append(payload);
}

/// What the reader makes of bytes that have arrived already; nobody sends more.
std::optional<std::string> readOut(std::string_view bytes, bool closed) {
  int ends[2] = {};
  EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends), 0);
  EXPECT_EQ(write(ends[1], bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  if (closed) close(ends[1]);
  auto result = readI3Message(ends[0], getWorkspaces, std::chrono::steady_clock::now());
  if (!closed) close(ends[1]);
  close(ends[0]);
  return result;
}

TEST(I3Socket, TakesCompleteMessagesOfTheTypeAlone) {
  EXPECT_EQ(readOut(message(getWorkspaces, "[]"), false), "[]");
  EXPECT_EQ(readOut(message(getWorkspaces, "") + "more", false), "");
  const auto whole = message(getWorkspaces, "[1, 2]");
  for (std::size_t cut = 0; cut < whole.size(); ++cut) {
    EXPECT_EQ(readOut(whole.substr(0, cut), false), std::nullopt) << cut;
    EXPECT_EQ(readOut(whole.substr(0, cut), true), std::nullopt) << cut;
  }
  EXPECT_EQ(readOut(message(getOutputs, "[]"), false), std::nullopt);
  EXPECT_EQ(readOut("HTTP/1.1 200 OK", false), std::nullopt);
  for (const std::uint32_t length : {0xffffffffU, 0x80000000U, 0x7fffffffU, 2000000U}) {
    EXPECT_EQ(readOut(message(getWorkspaces, "[]", length), false), std::nullopt) << length;
  }
}

TEST(I3Socket, ReadsListsAndNoNonsense) {
  const auto workspaces = parseI3Workspaces(R"([
    {"num": 3, "name": "3: web", "visible": true, "focused": false, "output": "DP-1", "rect": {}},
    {"num": "x", "name": "mail", "visible": 1, "output": "DP-2"},
    {"num": 99999999999999999999, "name": "far", "output": "DP-2"}, {"num": 4}, {"name": "", "output": "DP-1"}])");
  ASSERT_TRUE(workspaces.has_value());
  ASSERT_THAT(*workspaces, SizeIs(3));
  EXPECT_EQ(workspaces->at(0).name, "3: web");
  EXPECT_EQ(workspaces->at(0).number, 3);
  EXPECT_TRUE(workspaces->at(0).visible);
  EXPECT_FALSE(workspaces->at(0).focused);
  EXPECT_EQ(workspaces->at(1).number, -1);
  EXPECT_FALSE(workspaces->at(1).visible);
  EXPECT_EQ(workspaces->at(2).number, -1);

  const auto outputs = parseI3Outputs(R"([{"name": "DP-1", "active": true, "rect": {"x": -1920, "y": 0}},
    {"name": "none"}, {"name": "DP-2", "rect": {"x": "left"}}])");
  ASSERT_TRUE(outputs.has_value());
  ASSERT_THAT(*outputs, SizeIs(2));
  EXPECT_EQ(outputs->at(0).x, -1920);
  EXPECT_TRUE(outputs->at(0).active);
  EXPECT_FALSE(outputs->at(1).active);

  EXPECT_TRUE(parseI3Outcome(R"([{"success": true}, {"success": true}])"));
  EXPECT_FALSE(parseI3Outcome(R"([{"success": true}, {"success": false, "error": "no"}])"));
  for (const auto* nonsense : {"", "{}", "null", "7", "\"x\"", "[", "[1]", "[[]]", "[null]", "[{\"name\"", "\xff\xfe",
                               "[{\"name\": \"\xff\", \"output\": \"a\"}]"}) {
    EXPECT_FALSE(parseI3Workspaces(nonsense).has_value()) << nonsense;
    EXPECT_FALSE(parseI3Outputs(nonsense).has_value()) << nonsense;
    EXPECT_FALSE(parseI3Outcome(nonsense)) << nonsense;
  }
  EXPECT_FALSE(parseI3Outcome("[]"));
  EXPECT_FALSE(parseI3Workspaces(std::string(20000, '[')).has_value());
}

TEST(I3Socket, NamesAreNeverCommands) {
  EXPECT_EQ(quoteForI3("3: web"), R"("3: web")");
  EXPECT_EQ(quoteForI3(R"(a"; exit "\)"), R"("a\"; exit \"\\")");
  EXPECT_EQ(patternForI3("2:a.b"), R"("^2\\:a\\.b$")");
  EXPECT_EQ(patternForI3("é\"x"), R"("^é\\\"x$")");
}

/// Answers like i3, from a thread of its own, until the other side hangs up.
class Listener {
 public:
  explicit Listener(std::vector<std::string> replies) : replies_(std::move(replies)) {
    descriptor_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path().copy(address.sun_path, sizeof address.sun_path - 1);
    EXPECT_EQ(bind(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(listen(descriptor_, 1), 0);
    thread_ = std::thread([this] { serve(); });
  }
  ~Listener() {
    shutdown(descriptor_, SHUT_RDWR);
    if (thread_.joinable()) thread_.join();
    close(descriptor_);
  }

  [[nodiscard]] std::string path() const { return folder_.path() / "ipc"; }
  /// The commands that it was given; once the socket was let go.
  std::vector<std::string> commands() {
    if (thread_.joinable()) thread_.join();
    return commands_;
  }

 private:
  void serve() {
    const int peer = accept(descriptor_, nullptr, nullptr);
    if (peer < 0) return;
    for (const auto& reply : replies_) {
      char header[14] = {};
      if (recv(peer, header, sizeof header, MSG_WAITALL) != static_cast<ssize_t>(sizeof header)) break;
      std::uint32_t length = 0;
      std::memcpy(&length, header + 6, sizeof length);
      std::string payload(length, '\0');
      if (length > 0 && recv(peer, payload.data(), length, MSG_WAITALL) != static_cast<ssize_t>(length)) break;
      if (length > 0) commands_.push_back(payload);
      send(peer, reply.data(), reply.size(), MSG_NOSIGNAL);
    }
    close(peer);
  }

  TemporaryFolder folder_;
  std::vector<std::string> replies_;
  std::vector<std::string> commands_;
  int descriptor_ = -1;
  std::thread thread_;
};

const std::string done = message(runCommand, R"([{"success": true}])");
const std::string outputs = message(getOutputs, R"([
  {"name": "xroot-0", "active": false, "rect": {"x": 0, "y": 0}},
  {"name": "west", "active": true, "rect": {"x": 0, "y": 0}},
  {"name": "east", "active": true, "rect": {"x": 960, "y": 0}}])");
constexpr PixelRect west{0, 0, 960, 1080};

const std::string workspaces = message(getWorkspaces, R"([
    {"num": 1, "name": "1", "output": "west", "visible": true, "focused": false},
    {"num": 2, "name": "2: \"a.b\"", "output": "west", "visible": false, "focused": false},
    {"num": 3, "name": "3", "output": "east", "visible": true, "focused": true}])");

const std::string config = message(getConfig, R"({"config": "set $five 5", "included_configs": [
  {"raw_contents": "", "variable_replaced_contents": "workspace 4 output east west\nworkspace 5 output west\n"},
  {"variable_replaced_contents": "workspace \"6: web\" output west"}]})");

TEST(I3Workspaces, ANumberThatIsKeptForAnotherMonitorIsNotTaken) {
  Listener i3({outputs, workspaces, config, done});
  {
    auto socket = I3Socket::open(i3.path(), getpid());
    ASSERT_TRUE(socket.has_value());
    EXPECT_TRUE(addI3Workspace(*socket, west, {"1"}));
  }
  EXPECT_THAT(i3.commands(), ElementsAre(R"(workspace --no-auto-back-and-forth "1"; )"
                                         "workspace --no-auto-back-and-forth number 5"));
}

TEST(I3Workspaces, AssignmentsAreReadAsPeopleWriteThem) {
  const auto* text =
      "# workspace 1 output a\n  workspace\t2   output  b c\nworkspace 3: web page output \"d\"\r\n"
      "workspace \"4: x output y\" output e\nworkspace 5 gaps inner 0\nworkspace name output f\nworkspace 6\n"
      "workspace \"7 output g\nworkspace 99999999999 output h\nworkspace output output\nworkspace 8 output\nworkspace";
  EXPECT_THAT(parseI3Assignments(text), ElementsAre(I3Assignment{2, "b"}, I3Assignment{3, "d"}, I3Assignment{4, "e"}));
  EXPECT_EQ(parseI3Config(R"({"config": "workspace"})"), "workspace") << "before i3 knew of included files";
  for (const auto* nonsense : {"", "[]", "{}", R"({"included_configs": [1]})", R"({"config": 1})"}) {
    EXPECT_FALSE(parseI3Config(nonsense).has_value()) << nonsense;
  }
}

TEST(I3Workspaces, AnEmptyOneThatIsShownWouldGoAsTheNewOneComes) {
  Listener i3({outputs, workspaces, config});
  auto socket = I3Socket::open(i3.path(), getpid());
  ASSERT_TRUE(socket.has_value());
  EXPECT_FALSE(addI3Workspace(*socket, west, {"2: \"a.b\"", "3"}));
}

TEST(I3Workspaces, TheFocusReturnsToAnotherMonitorAfterARemoval) {
  Listener i3({outputs, workspaces, done});
  {
    auto socket = I3Socket::open(i3.path(), getpid());
    ASSERT_TRUE(socket.has_value());
    EXPECT_TRUE(removeI3Workspace(*socket, west, "1"));
  }
  EXPECT_THAT(
      i3.commands(),
      ElementsAre(R"([workspace="^1$"] move --no-auto-back-and-forth container to workspace "2: \"a.b\""; )"
                  R"(workspace --no-auto-back-and-forth "2: \"a.b\""; workspace --no-auto-back-and-forth "3")"));
}

TEST(I3Socket, TalksToTheProcessThatTheWindowManagerIs) {
  Listener i3({message(runCommand, "[{\"success\": true"), done});
  EXPECT_FALSE(I3Socket::open(i3.path(), getpid() + 1).has_value());
  EXPECT_FALSE(I3Socket::open(i3.path() + "-gone", getpid()).has_value());
  EXPECT_FALSE(I3Socket::open("relative", getpid()).has_value());
  EXPECT_FALSE(I3Socket::open("/" + std::string(500, 'x'), getpid()).has_value());
}

TEST(I3Socket, AfterAnAnswerThatIsNoneNothingMoreIsAsked) {
  Listener i3({message(getOutputs, "[]"), done});
  auto socket = I3Socket::open(i3.path(), getpid());
  ASSERT_TRUE(socket.has_value());
  EXPECT_FALSE(socket->run("nop"));
  EXPECT_FALSE(socket->run("nop")) << "the next answer might be the first one's";
}

}  // namespace
}  // namespace tessaspaces
