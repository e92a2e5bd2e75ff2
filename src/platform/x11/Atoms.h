#pragma once

#include "platform/x11/Xcb.h"

namespace tessaspaces {

class Channel;

// Every atom that this platform uses: member name and X name.
#define TESSASPACES_ATOMS(X)                                 \
  X(utf8String, "UTF8_STRING")                               \
  X(manager, "MANAGER")                                      \
  X(edid, "EDID")                                            \
  X(wmState, "WM_STATE")                                     \
  X(netSupportingWmCheck, "_NET_SUPPORTING_WM_CHECK")        \
  X(netNumberOfDesktops, "_NET_NUMBER_OF_DESKTOPS")          \
  X(netCurrentDesktop, "_NET_CURRENT_DESKTOP")               \
  X(netDesktopNames, "_NET_DESKTOP_NAMES")                   \
  X(netDesktopViewport, "_NET_DESKTOP_VIEWPORT")             \
  X(netDesktopLayout, "_NET_DESKTOP_LAYOUT")                 \
  X(netWorkarea, "_NET_WORKAREA")                            \
  X(netActiveWindow, "_NET_ACTIVE_WINDOW")                   \
  X(netClientList, "_NET_CLIENT_LIST")                       \
  X(netClientListStacking, "_NET_CLIENT_LIST_STACKING")      \
  X(netFrameExtents, "_NET_FRAME_EXTENTS")                   \
  X(netWmDesktop, "_NET_WM_DESKTOP")                         \
  X(netWmName, "_NET_WM_NAME")                               \
  X(netWmPid, "_NET_WM_PID")                                 \
  X(netWmIcon, "_NET_WM_ICON")                               \
  X(netWmStrut, "_NET_WM_STRUT")                             \
  X(netWmStrutPartial, "_NET_WM_STRUT_PARTIAL")              \
  X(netWmState, "_NET_WM_STATE")                             \
  X(netWmStateHidden, "_NET_WM_STATE_HIDDEN")                \
  X(netWmStateSticky, "_NET_WM_STATE_STICKY")                \
  X(netWmStateMaximizedHorz, "_NET_WM_STATE_MAXIMIZED_HORZ") \
  X(netWmStateMaximizedVert, "_NET_WM_STATE_MAXIMIZED_VERT") \
  X(netWmStateFullscreen, "_NET_WM_STATE_FULLSCREEN")        \
  X(netMoveresizeWindow, "_NET_MOVERESIZE_WINDOW")           \
  X(netCloseWindow, "_NET_CLOSE_WINDOW")                     \
  X(netWmWindowType, "_NET_WM_WINDOW_TYPE")                  \
  X(typeNormal, "_NET_WM_WINDOW_TYPE_NORMAL")                \
  X(typeDialog, "_NET_WM_WINDOW_TYPE_DIALOG")                \
  X(typeUtility, "_NET_WM_WINDOW_TYPE_UTILITY")              \
  X(typeDesktop, "_NET_WM_WINDOW_TYPE_DESKTOP")              \
  X(typeDock, "_NET_WM_WINDOW_TYPE_DOCK")                    \
  X(typeToolbar, "_NET_WM_WINDOW_TYPE_TOOLBAR")              \
  X(typeMenu, "_NET_WM_WINDOW_TYPE_MENU")                    \
  X(typeSplash, "_NET_WM_WINDOW_TYPE_SPLASH")                \
  X(typeDropdownMenu, "_NET_WM_WINDOW_TYPE_DROPDOWN_MENU")   \
  X(typePopupMenu, "_NET_WM_WINDOW_TYPE_POPUP_MENU")         \
  X(typeTooltip, "_NET_WM_WINDOW_TYPE_TOOLTIP")              \
  X(typeNotification, "_NET_WM_WINDOW_TYPE_NOTIFICATION")    \
  X(typeCombo, "_NET_WM_WINDOW_TYPE_COMBO")                  \
  X(typeDnd, "_NET_WM_WINDOW_TYPE_DND")                      \
  X(xsettingsSettings, "_XSETTINGS_SETTINGS")                \
  X(i3SocketPath, "I3_SOCKET_PATH")                          \
  X(i3Pid, "I3_PID")

struct Atoms {
#define TESSASPACES_ATOM_MEMBER(member, name) xcb_atom_t member = XCB_ATOM_NONE;
  TESSASPACES_ATOMS(TESSASPACES_ATOM_MEMBER)
#undef TESSASPACES_ATOM_MEMBER
  /// "_NET_DESKTOP_LAYOUT_S" and the screen's number.
  xcb_atom_t netDesktopLayoutSelection = XCB_ATOM_NONE;
  /// "_XSETTINGS_S" and the screen's number.
  xcb_atom_t xsettingsSelection = XCB_ATOM_NONE;

  /// Interns all of them in one round trip.
  static Atoms intern(Channel& channel, int screenNumber);
};

}  // namespace tessaspaces
