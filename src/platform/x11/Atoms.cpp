#include "platform/x11/Atoms.h"

#include <fmt/format.h>

#include <array>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/x11/Channel.h"

namespace tessaspaces {
namespace {

struct Entry {
  xcb_atom_t Atoms::*member;
  std::string_view name;
};

constexpr auto entries = std::to_array<Entry>({
#define TESSASPACES_ATOM_ENTRY(member, name) {&Atoms::member, name},
    TESSASPACES_ATOMS(TESSASPACES_ATOM_ENTRY)
#undef TESSASPACES_ATOM_ENTRY
});

}  // namespace

Atoms Atoms::intern(Channel& channel, int screenNumber) {
  const auto send = [&](std::string_view name) {
    return channel.send<xcb_intern_atom>(std::uint8_t{0}, static_cast<std::uint16_t>(name.size()), name.data());
  };
  std::vector<xcb_intern_atom_cookie_t> cookies;
  cookies.reserve(entries.size());
  for (const auto& entry : entries) cookies.push_back(send(entry.name));
  const std::array selections{
      std::pair{&Atoms::netDesktopLayoutSelection, send(fmt::format("_NET_DESKTOP_LAYOUT_S{}", screenNumber))},
      std::pair{&Atoms::xsettingsSelection, send(fmt::format("_XSETTINGS_S{}", screenNumber))}};

  Atoms atoms;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (const auto reply = channel.await<xcb_intern_atom_reply>(cookies[i])) atoms.*entries[i].member = reply->atom;
  }
  for (const auto& [member, cookie] : selections) {
    if (const auto reply = channel.await<xcb_intern_atom_reply>(cookie)) atoms.*member = reply->atom;
  }
  return atoms;
}

}  // namespace tessaspaces
