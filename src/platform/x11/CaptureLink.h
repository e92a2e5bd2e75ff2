#pragma once

#include <xcb/render.h>

#include <cstdint>
#include <map>
#include <memory>

#include "platform/x11/Channel.h"
#include "platform/x11/Connection.h"

namespace tessaspaces {

/// The connection that window pictures go over. One of its own: no key press ever stands in its queue behind a
/// window's repainting, and with it goes all that the server keeps for it. Main thread.
class CaptureLink {
 public:
  /// Null when the server is gone or lacks an extension that previews need. A few round trips.
  static std::unique_ptr<CaptureLink> open(Connection& connection);

  [[nodiscard]] Channel& channel() { return channel_; }
  [[nodiscard]] xcb_window_t root() const { return root_; }
  [[nodiscard]] std::uint8_t rootDepth() const { return rootDepth_; }
  [[nodiscard]] const Atoms& atoms() const { return atoms_; }

  /// How a drawable of this depth holds colours; 0 for a depth that holds none.
  [[nodiscard]] xcb_render_pictformat_t formatOf(std::uint8_t depth) const;
  /// Depth 32, 0xAARRGGBB, premultiplied: an Image's pixels.
  [[nodiscard]] xcb_render_pictformat_t imageFormat() const { return imageFormat_; }
  /// Depth 24, 0x..RRGGBB: the same without alpha.
  [[nodiscard]] xcb_render_pictformat_t opaqueFormat() const { return opaqueFormat_; }

  /// Events by their code.
  [[nodiscard]] std::uint8_t damageEvent() const { return damageEvent_; }
  [[nodiscard]] std::uint8_t selectionEvent() const { return selectionEvent_; }

  /// Shared memory can be handed to the server: it has the extension and is on this machine.
  [[nodiscard]] bool sharesMemory() const { return sharesMemory_; }
  /// It cannot after all.
  void doNotShareMemory() { sharesMemory_ = false; }

  // Atoms of this connection alone.
  [[nodiscard]] xcb_atom_t compositorSelection() const { return compositorSelection_; }
  [[nodiscard]] xcb_atom_t xfceDesktopSelection() const { return xfceDesktopSelection_; }
  [[nodiscard]] xcb_atom_t rootPixmap() const { return rootPixmap_; }
  [[nodiscard]] xcb_atom_t esetrootPixmap() const { return esetrootPixmap_; }

 private:
  CaptureLink(XcbConnectionRef connection, Connection& main);
  /// False when an extension is missing.
  bool setUp(int screenNumber);
  bool findExtensions();
  bool readFormats(const xcb_render_query_pict_formats_reply_t& reply, int screenNumber);

  Channel channel_;
  const Atoms& atoms_;
  xcb_window_t root_;
  std::uint8_t rootDepth_;
  std::map<std::uint8_t, xcb_render_pictformat_t> formats_;
  xcb_render_pictformat_t imageFormat_ = XCB_NONE;
  xcb_render_pictformat_t opaqueFormat_ = XCB_NONE;
  std::uint8_t damageEvent_ = 0;
  std::uint8_t selectionEvent_ = 0;
  bool sharesMemory_ = false;
  xcb_atom_t compositorSelection_ = XCB_ATOM_NONE;
  xcb_atom_t xfceDesktopSelection_ = XCB_ATOM_NONE;
  xcb_atom_t rootPixmap_ = XCB_ATOM_NONE;
  xcb_atom_t esetrootPixmap_ = XCB_ATOM_NONE;
};

}  // namespace tessaspaces
