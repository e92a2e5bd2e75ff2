#include "platform/x11/WindowOwner.h"

#include <unistd.h>

#include <array>
#include <limits>
#include <string>

namespace tessaspaces {
namespace {

constexpr std::uint32_t maxMachineBytes = 256;

std::string machineName() {
  std::array<char, maxMachineBytes> name{};
  if (::gethostname(name.data(), name.size() - 1) != 0) return {};
  return name.data();
}

std::string_view hostPart(std::string_view name) {
  return name.substr(0, name.find_first_of(std::string_view(".\0", 2)));
}

// The server numbers its clients in the upper bits of the resource ids that it hands them.
std::uint32_t clientOf(Connection& connection, xcb_window_t window) {
  const auto* setup = xcb_get_setup(connection.requests().get());
  return window / (setup->resource_id_mask + 1);
}

}  // namespace

OwnerCookies askOwner(Connection& connection, xcb_window_t window) {
  auto& channel = connection.requests();
  return {askProperty(channel, window, connection.atoms().netWmPid, 1),
          askProperty(channel, window, XCB_ATOM_WM_CLIENT_MACHINE, maxMachineBytes / 4)};
}

std::optional<std::int32_t> receiveOwner(Connection& connection, xcb_window_t window, const OwnerCookies& cookies) {
  auto& channel = connection.requests();
  const auto pid = channel.await<xcb_get_property_reply>(cookies.pid);
  const auto machineReply = channel.await<xcb_get_property_reply>(cookies.machine);
  if (!pid) return std::nullopt;
  const auto machine = bytes(machineReply);
  // A notebook may get another name with the network that it joins; older windows keep the old one.
  static const std::string firstName = machineName();
  const bool older = machine && hostPart(*machine) == hostPart(firstName);
  return ownerFrom(firstItem(pid), machine, older ? firstName : machineName(), clientOf(connection, window));
}

std::int32_t ownerFrom(std::optional<std::uint32_t> pid, std::optional<std::string_view> machine,
                       std::string_view ownMachine, std::uint32_t client) {
  const bool here = !machine || hostPart(*machine) == hostPart(ownMachine);
  if (pid && *pid > 0 && *pid <= std::numeric_limits<std::int32_t>::max() && here) {
    return static_cast<std::int32_t>(*pid);
  }
  return -1 - static_cast<std::int32_t>(client);
}

}  // namespace tessaspaces
