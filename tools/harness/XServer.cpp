#include "harness/XServer.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>
#include <xcb/randr.h>
#include <xcb/xcbext.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <sstream>

#include "harness/XConnection.h"

namespace tessaspaces::harness {
namespace {

/// Reads the display number that the server writes once it takes connections; empty when it never does.
std::string readDisplayNumber(int descriptor, const Process& server) {
  std::string number;
  const Deadline deadline(patience);
  while (!deadline.passed()) {
    pollfd ready[2] = {{descriptor, POLLIN, 0}, {server.endDescriptor(), POLLIN, 0}};
    poll(ready, 2, deadline.pollTimeout());
    if (ready[0].revents != 0) {
      std::array<char, 16> bytes{};
      const ssize_t count = read(descriptor, bytes.data(), bytes.size());
      if (count <= 0) break;
      number.append(bytes.data(), static_cast<std::size_t>(count));
      if (number.back() == '\n') return ":" + number.substr(0, number.size() - 1);
    } else if (ready[1].revents != 0) {
      break;
    }
  }
  return {};
}

Command serverCommand(const XServerOptions& options) {
  Command command;
  const std::string size = fmt::format("{}x{}", options.width, options.height);
  command.environment = {{"PATH", "/usr/local/bin:/usr/bin:/bin"}};
  if (options.kind == ServerKind::nested) {
    command.arguments = {"Xephyr", "-displayfd", "3", "-screen", size, "-title", "tessa⊞spaces"};
    for (const char* name : {"DISPLAY", "XAUTHORITY", "HOME"}) {
      if (const char* value = std::getenv(name)) command.environment[name] = value;
    }
  } else {
    command.arguments = {"Xvfb", "-displayfd", "3", "-screen", "0", size + "x24"};
  }
  for (const char* argument : {"-nolisten", "tcp", "-noreset", "-s", "0"}) command.arguments.emplace_back(argument);
  command.arguments.emplace_back(options.glx == Glx::on ? "+extension" : "-extension");
  command.arguments.emplace_back("GLX");
  if (options.sharedMemory == SharedMemory::off) {
    for (const char* argument : {"-extension", "MIT-SHM"}) command.arguments.emplace_back(argument);
  }
  return command;
}

struct Monitor {
  std::string name;
  bool primary = false;
  Rectangle frame;
};

std::vector<Monitor> parseMonitors(std::string_view layout) {
  std::vector<Monitor> monitors;
  std::istringstream parts{std::string(layout)};
  for (std::string part; std::getline(parts, part, '|');) {
    std::istringstream words(part);
    Monitor monitor;
    std::string geometry;
    if (!(words >> monitor.name >> geometry)) continue;
    Rectangle& frame = monitor.frame;
    if (std::sscanf(geometry.c_str(), "%dx%d%d%d", &frame.width, &frame.height, &frame.x, &frame.y) != 4) {
      throw Failure("not a monitor: " + part);
    }
    monitor.primary = monitor.name.front() == '*';
    if (monitor.primary) monitor.name.erase(0, 1);
    monitors.push_back(monitor);
  }
  return monitors;
}

/// The request as it goes over the wire. libxcb 1.15's own function leaves the last part of what it sends
/// unset, and then aborts or not as the stack will have it.
struct SetMonitorRequest {
  xcb_randr_set_monitor_request_t head{};
  xcb_randr_monitor_info_t info{};
  xcb_randr_output_t output = 0;
};
static_assert(sizeof(SetMonitorRequest) ==
              sizeof(xcb_randr_set_monitor_request_t) + sizeof(xcb_randr_monitor_info_t) + sizeof(xcb_randr_output_t));

void send(xcb_connection_t* connection, SetMonitorRequest& request) {
  const std::size_t unused = request.info.nOutput == 0 ? sizeof request.output : 0;
  // libxcb wants two free places in front of the first.
  std::array<iovec, 3> parts{};
  parts[2].iov_base = &request;
  parts[2].iov_len = sizeof request - unused;
  const xcb_protocol_request_t what{1, &xcb_randr_id, XCB_RANDR_SET_MONITOR, 1};
  xcb_send_request(connection, 0, &parts[2], &what);
}

void deleteMonitors(XConnection& connection) {
  const auto monitors =
      connection.reply(xcb_randr_get_monitors_reply, xcb_randr_get_monitors(connection.get(), connection.root(), 0));
  if (!monitors) return;
  for (auto it = xcb_randr_get_monitors_monitors_iterator(monitors.get()); it.rem > 0;
       xcb_randr_monitor_info_next(&it)) {
    if (it.data->automatic == 0) xcb_randr_delete_monitor(connection.get(), connection.root(), it.data->name);
  }
}

}  // namespace

XServer::XServer(const XServerOptions& options) {
  for (const auto& path : {home(), runtimeFolder(), temporaryFolder(), logFolder()}) {
    std::filesystem::create_directories(path);
    chmod(path.c_str(), 0700);
  }
  // Two servers that start in the same moment can both try one number; the loser gives up, so it tries again.
  for (int attempt = 0; attempt < 5 && display_.empty(); ++attempt) {
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0) throw Failure("pipe2 failed");
    Command command = serverCommand(options);
    command.output = logFolder() / "server";
    command.passedDescriptor = ends[1];
    server_ = Process(command);
    close(ends[1]);
    display_ = readDisplayNumber(ends[0], server_);
    close(ends[0]);
  }
  if (display_.empty()) throw Failure("the X server did not start:\n" + server_.output());
  if (!options.monitors.empty()) setMonitors(options.monitors);
}

Environment XServer::environment() const {
  Environment result = {{"DISPLAY", display_},
                        {"HOME", home()},
                        {"XDG_RUNTIME_DIR", runtimeFolder()},
                        {"TMPDIR", temporaryFolder()},
                        {"LANG", "C.UTF-8"},
                        {"LANGUAGE", "en"},
                        {"XDG_SESSION_TYPE", "x11"},
                        {"QT_QPA_PLATFORM", "xcb"},
                        {"DBUS_SESSION_BUS_ADDRESS", "disabled:"},
                        {"NO_AT_BRIDGE", "1"},
                        {"TESSASPACES_X_FATAL", "1"}};
  for (const char* name :
       {"PATH", "ASAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS", "LSAN_OPTIONS", "LD_LIBRARY_PATH"}) {
    if (const char* value = std::getenv(name)) result[name] = value;
  }
  return result;
}

void XServer::setMonitors(std::string_view layout) const {
  const std::vector<Monitor> monitors = parseMonitors(layout);
  XConnection connection(display_);
  // Without the version exchanged the server keeps to the requests of RandR 1.0.
  connection.reply(xcb_randr_query_version_reply, xcb_randr_query_version(connection.get(), 1, 5));
  const auto resources = connection.reply(xcb_randr_get_screen_resources_current_reply,
                                          xcb_randr_get_screen_resources_current(connection.get(), connection.root()));
  if (!resources || resources->num_outputs == 0) throw Failure("the server has no output");
  const xcb_randr_output_t output = *xcb_randr_get_screen_resources_current_outputs(resources.get());
  // Nobody sees one monitor gone and the next one not yet there.
  xcb_grab_server(connection.get());
  deleteMonitors(connection);
  for (std::size_t i = 0; i < monitors.size(); ++i) {
    SetMonitorRequest request;
    request.head.window = connection.root();
    request.info.name = connection.atom(monitors[i].name);
    request.info.primary = monitors[i].primary ? 1 : 0;
    request.info.x = static_cast<std::int16_t>(monitors[i].frame.x);
    request.info.y = static_cast<std::int16_t>(monitors[i].frame.y);
    request.info.width = static_cast<std::uint16_t>(monitors[i].frame.width);
    request.info.height = static_cast<std::uint16_t>(monitors[i].frame.height);
    // 96 dots per inch, so that nobody scales.
    request.info.width_in_millimeters = static_cast<std::uint32_t>(monitors[i].frame.width * 254 / 960);
    request.info.height_in_millimeters = static_cast<std::uint32_t>(monitors[i].frame.height * 254 / 960);
    // An output belongs to one monitor; while one has it, the server's automatic monitor is away.
    request.info.nOutput = i == 0 ? 1 : 0;
    request.output = output;
    send(connection.get(), request);
  }
  xcb_ungrab_server(connection.get());
  connection.roundTrip();
}

Command XServer::command(std::vector<std::string> arguments, const Environment& extra) const {
  Command result;
  result.arguments = std::move(arguments);
  result.environment = environment();
  for (const auto& [key, value] : extra) result.environment[key] = value;
  result.folder = home();
  return result;
}

Process XServer::start(std::vector<std::string> arguments, const Environment& extra) const {
  static int serial = 0;
  const std::string name = std::filesystem::path(arguments.at(0)).filename();
  Command what = command(std::move(arguments), extra);
  what.output = logFolder() / fmt::format("{}-{}", name, ++serial);
  return Process(what);
}

Result XServer::run(std::vector<std::string> arguments, const Environment& extra) const {
  return harness::run(command(std::move(arguments), extra));
}

bool XServer::screenshot(const std::filesystem::path& png) const {
  const auto file = std::filesystem::absolute(png);
  std::filesystem::create_directories(file.parent_path());
  return findProgram("import") && run({"import", "-window", "root", file}).status == 0;
}

}  // namespace tessaspaces::harness
