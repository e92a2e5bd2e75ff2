#include "platform/x11/CaptureLink.h"

#include <fmt/format.h>
#include <sys/socket.h>
#include <xcb/composite.h>
#include <xcb/damage.h>
#include <xcb/shm.h>
#include <xcb/xfixes.h>

#include <array>
#include <string>
#include <utility>

namespace tessaspaces {
namespace {

// A server on another machine, also one at the far end of an ssh tunnel, cannot see this one's memory. And
// trying to hand it a file descriptor over such a connection would break that.
bool isLocal(xcb_connection_t* connection) {
  sockaddr_storage address{};
  socklen_t size = sizeof address;
  const int descriptor = xcb_get_file_descriptor(connection);
  return getpeername(descriptor, reinterpret_cast<sockaddr*>(&address), &size) == 0 && address.ss_family == AF_UNIX;
}

}  // namespace

std::unique_ptr<CaptureLink> CaptureLink::open(Connection& connection) {
  int screenNumber = 0;
  XcbConnectionRef opened(xcb_connect(nullptr, &screenNumber));
  if (xcb_connection_has_error(opened.get()) != 0) return nullptr;
  std::unique_ptr<CaptureLink> link(new CaptureLink(std::move(opened), connection));
  return link->setUp(screenNumber) ? std::move(link) : nullptr;
}

CaptureLink::CaptureLink(XcbConnectionRef connection, Connection& main)
    : channel_(std::move(connection)), atoms_(main.atoms()), root_(main.root()), rootDepth_(main.screen().root_depth) {}

bool CaptureLink::setUp(int screenNumber) {
  if (!findExtensions()) return false;

  const auto atom = [&](std::string_view name) {
    return channel_.send<xcb_intern_atom>(std::uint8_t{0}, static_cast<std::uint16_t>(name.size()), name.data());
  };
  const std::array names{
      std::pair{&CaptureLink::compositorSelection_, fmt::format("_NET_WM_CM_S{}", screenNumber)},
      std::pair{&CaptureLink::xfceDesktopSelection_, fmt::format("XFDESKTOP_SELECTION_{}", screenNumber)},
      std::pair{&CaptureLink::rootPixmap_, std::string("_XROOTPMAP_ID")},
      std::pair{&CaptureLink::esetrootPixmap_, std::string("ESETROOT_PMAP_ID")}};
  std::array<xcb_intern_atom_cookie_t, names.size()> atoms;
  for (std::size_t i = 0; i < names.size(); ++i) atoms[i] = atom(names[i].second);
  // The server refuses extensions to those who have not told what version they speak.
  const auto composite = channel_.send<xcb_composite_query_version>(0U, 4U);
  const auto damage = channel_.send<xcb_damage_query_version>(1U, 1U);
  const auto fixes = channel_.send<xcb_xfixes_query_version>(5U, 0U);
  const auto render = channel_.send<xcb_render_query_version>(0U, 11U);
  const auto formats = channel_.send<xcb_render_query_pict_formats>();
  const bool mayShare = sharesMemory_;
  const auto shm = mayShare ? channel_.send<xcb_shm_query_version>() : xcb_shm_query_version_cookie_t{};

  for (std::size_t i = 0; i < names.size(); ++i) {
    if (const auto reply = channel_.await<xcb_intern_atom_reply>(atoms[i])) this->*names[i].first = reply->atom;
  }
  const auto compositeReply = channel_.await<xcb_composite_query_version_reply>(composite);
  const auto damageReply = channel_.await<xcb_damage_query_version_reply>(damage);
  const auto fixesReply = channel_.await<xcb_xfixes_query_version_reply>(fixes);
  const auto renderReply = channel_.await<xcb_render_query_version_reply>(render);
  const auto formatsReply = channel_.await<xcb_render_query_pict_formats_reply>(formats);
  if (mayShare) {
    const auto reply = channel_.await<xcb_shm_query_version_reply>(shm);
    // From 1.2 on memory is handed over by file descriptor.
    sharesMemory_ =
        reply && std::pair(reply->major_version, reply->minor_version) >= std::pair<std::uint16_t, std::uint16_t>(1, 2);
  }
  // From 0.2 on contents can be named, from 0.6 on pictures be transformed, from 0.10 on padded.
  return compositeReply && damageReply && fixesReply && renderReply && formatsReply &&
         std::pair(compositeReply->major_version, compositeReply->minor_version) >= std::pair(0U, 2U) &&
         std::pair(renderReply->major_version, renderReply->minor_version) >= std::pair(0U, 10U) &&
         readFormats(*formatsReply, screenNumber);
}

bool CaptureLink::findExtensions() {
  auto* connection = channel_.get();
  for (auto* extension : {&xcb_composite_id, &xcb_damage_id, &xcb_xfixes_id, &xcb_render_id, &xcb_shm_id}) {
    xcb_prefetch_extension_data(connection, extension);
  }
  const auto data = [&](xcb_extension_t& extension) {
    const auto* reply = xcb_get_extension_data(connection, &extension);
    return reply != nullptr && reply->present ? *reply : xcb_query_extension_reply_t{};
  };
  ExtensionCodes codes;
  codes.composite = data(xcb_composite_id).major_opcode;
  codes.damage = data(xcb_damage_id).major_opcode;
  codes.damageFirstError = data(xcb_damage_id).first_error;
  codes.render = data(xcb_render_id).major_opcode;
  codes.renderFirstError = data(xcb_render_id).first_error;
  channel_.setExtensions(codes);
  damageEvent_ = static_cast<std::uint8_t>(data(xcb_damage_id).first_event + XCB_DAMAGE_NOTIFY);
  selectionEvent_ = static_cast<std::uint8_t>(data(xcb_xfixes_id).first_event + XCB_XFIXES_SELECTION_NOTIFY);
  sharesMemory_ = data(xcb_shm_id).present != 0 && isLocal(connection);
  return codes.composite != 0 && codes.damage != 0 && codes.render != 0 && data(xcb_xfixes_id).present != 0;
}

bool CaptureLink::readFormats(const xcb_render_query_pict_formats_reply_t& reply, int screenNumber) {
  auto screens = xcb_render_query_pict_formats_screens_iterator(&reply);
  for (; screenNumber > 0 && screens.rem > 0; --screenNumber) xcb_render_pictscreen_next(&screens);
  if (screens.rem == 0) return false;
  for (auto depths = xcb_render_pictscreen_depths_iterator(screens.data); depths.rem > 0;
       xcb_render_pictdepth_next(&depths)) {
    if (depths.data->num_visuals > 0) {
      formats_[depths.data->depth] = xcb_render_pictdepth_visuals(depths.data)[0].format;
    }
  }
  for (auto it = xcb_render_query_pict_formats_formats_iterator(&reply); it.rem > 0;
       xcb_render_pictforminfo_next(&it)) {
    const auto& format = *it.data;
    const auto& direct = format.direct;
    if (format.type != XCB_RENDER_PICT_TYPE_DIRECT || direct.red_shift != 16 || direct.green_shift != 8 ||
        direct.blue_shift != 0 || direct.red_mask != 0xff || direct.green_mask != 0xff || direct.blue_mask != 0xff) {
      continue;
    }
    if (format.depth == 32 && direct.alpha_mask == 0xff && direct.alpha_shift == 24) imageFormat_ = format.id;
    if (format.depth == 24 && direct.alpha_mask == 0) opaqueFormat_ = format.id;
  }
  return imageFormat_ != XCB_NONE && opaqueFormat_ != XCB_NONE;
}

xcb_render_pictformat_t CaptureLink::formatOf(std::uint8_t depth) const {
  const auto found = formats_.find(depth);
  return found == formats_.end() ? xcb_render_pictformat_t{XCB_NONE} : found->second;
}

}  // namespace tessaspaces
