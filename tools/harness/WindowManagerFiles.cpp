#include "harness/WindowManagerFiles.h"

#include <fmt/format.h>

namespace tessaspaces::harness {
namespace {

constexpr int boundDesktops = 4;

Launch openbox(const XServer& server, const WindowManagerOptions& options) {
  std::string keys;
  if (options.bindings == OwnBindings::direct) {
    for (int n = 1; n <= boundDesktops; ++n) {
      keys += fmt::format("<keybind key='W-{0}'><action name='GoToDesktop'><to>{0}</to></action></keybind>\n", n);
      keys += fmt::format(
          "<keybind key='W-S-{0}'><action name='SendToDesktop'><to>{0}</to><follow>no</follow></action></keybind>\n",
          n);
    }
  }
  // An empty list of keys would bring the built-in ones back, so that there is always one, out of the way.
  const auto file = server.home() / ".config/openbox/rc.xml";
  writeFile(file, fmt::format(R"(<?xml version="1.0" encoding="UTF-8"?>
<openbox_config xmlns="http://openbox.org/3.4/rc">
<focus><focusNew>yes</focusNew><followMouse>no</followMouse></focus>
<theme><name>Clearlooks</name></theme>
<desktops><number>{}</number><firstdesk>1</firstdesk><popupTime>0</popupTime></desktops>
<keyboard><keybind key="C-A-S-W-F12"><action name="Focus"/></keybind>
{}</keyboard>
<mouse><context name="Titlebar"><mousebind button="Left" action="Press"><action name="Focus"/><action name="Raise"/>
</mousebind><mousebind button="Left" action="Drag"><action name="Move"/></mousebind></context></mouse>
</openbox_config>
)",
                              options.desktops, keys));
  return {{"openbox", "--sm-disable", "--config-file", file}, {}};
}

Launch xfwm4(const XServer& server, const WindowManagerOptions& options) {
  std::string keys;
  if (options.bindings == OwnBindings::direct) {
    for (int n = 1; n <= boundDesktops; ++n) {
      keys += fmt::format(R"(<property name="&lt;Super&gt;{0}" type="string" value="workspace_{0}_key"/>)", n);
      keys += fmt::format(
          R"(<property name="&lt;Shift&gt;&lt;Super&gt;{0}" type="string" value="move_window_workspace_{0}_key"/>)", n);
    }
  }
  const auto folder = server.home() / ".config/xfce4/xfconf/xfce-perchannel-xml";
  const bool composites = options.compositing == Compositing::on;
  // "override" takes these shortcuts in place of the built-in ones, not in addition.
  writeFile(folder / "xfce4-keyboard-shortcuts.xml", fmt::format(R"(<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-keyboard-shortcuts" version="1.0"><property name="xfwm4" type="empty">
<property name="custom" type="empty"><property name="override" type="bool" value="true"/>{}</property>
</property></channel>
)",
                                                                 keys));
  writeFile(folder / "xfwm4.xml", fmt::format(R"(<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfwm4" version="1.0"><property name="general" type="empty">
<property name="workspace_count" type="int" value="{}"/><property name="use_compositing" type="bool" value="{}"/>
</property></channel>
)",
                                              options.desktops, composites));
  return {{"dbus-run-session", "--", "xfwm4", composites ? "--compositor=on" : "--compositor=off"},
          {{"XDG_CONFIG_HOME", server.home() / ".config"}}};
}

Launch i3(const XServer& server, const WindowManagerOptions& options) {
  std::string text =
      "font pango:monospace 8\nfocus_follows_mouse no\nmouse_warping none\n"
      "workspace_layout default\nfocus_on_window_activation focus\n";
  constexpr int mostDesktops = 16;  // more than the harness opens at first, for windows on desktops to come
  for (int n = 1; n <= mostDesktops; ++n) {
    if (static_cast<std::size_t>(n) <= options.monitors.size()) {
      text += fmt::format("workspace {} output {}\n", n, options.monitors[static_cast<std::size_t>(n) - 1]);
    }
    text += fmt::format("assign [window_role=\"^desktop-{0}$\"] workspace number {0}\n", n);
  }
  if (options.bindings == OwnBindings::direct) {
    for (int n = 1; n <= boundDesktops; ++n) {
      text += fmt::format("bindsym Mod4+{0} workspace number {0}\n", n);
      text += fmt::format("bindsym Mod4+Shift+{0} move container to workspace number {0}\n", n);
    }
  }
  const auto file = server.home() / ".config/i3/config";
  writeFile(file, text);
  return {{"i3", "-c", file}, {}};
}

Launch icewm(const XServer& server, const WindowManagerOptions& options) {
  const auto folder = server.home() / ".icewm";
  std::string preferences = "ShowTaskBar=0\nShowSplash=0\nShowAbout=0\nFocusMode=1\n";
  std::string workspaces;
  for (int n = 1; n <= options.desktops; ++n) workspaces += fmt::format("{}\"{}\"", n == 1 ? "" : ", ", n);
  preferences += "WorkspaceNames=" + workspaces + "\n";
  for (const char* key : {"WorkspacePrev", "WorkspaceNext", "WorkspaceLast", "WorkspacePrevTakeWin",
                          "WorkspaceNextTakeWin", "WorkspaceLastTakeWin", "AddressBar"}) {
    preferences += fmt::format("KeySys{}=\"\"\n", key);
  }
  for (int n = 1; n <= 12; ++n) {
    const bool bound = options.bindings == OwnBindings::direct && n <= boundDesktops;
    preferences += fmt::format("KeySysWorkspace{0}=\"{1}\"\nKeySysWorkspace{0}TakeWin=\"{2}\"\n", n,
                               bound ? fmt::format("Super+{}", n) : "", bound ? fmt::format("Super+Shift+{}", n) : "");
  }
  writeFile(folder / "preferences", preferences);
  writeFile(folder / "keys", "");
  return {{"icewm"}, {{"ICEWM_PRIVCFG", folder}}};
}

Launch metacity(const XServer& server, const WindowManagerOptions& options) {
  std::string text = "[org/gnome/desktop/wm/keybindings]\n";
  for (const char* key : {"left", "right", "up", "down"}) {
    text += fmt::format("switch-to-workspace-{0}=@as []\nmove-to-workspace-{0}=@as []\n", key);
  }
  for (const char* key : {"switch-panels", "switch-panels-backward", "activate-window-menu"})
    text += fmt::format("{}=@as []\n", key);
  for (int n = 1; n <= boundDesktops && options.bindings == OwnBindings::direct; ++n) {
    text += fmt::format("switch-to-workspace-{0}=['<Super>{0}']\nmove-to-workspace-{0}=['<Super><Shift>{0}']\n", n);
  }
  text += fmt::format("[org/gnome/desktop/wm/preferences]\nnum-workspaces={}\n", options.desktops);
  text += "[org/gnome/mutter]\ndynamic-workspaces=false\n";
  writeFile(server.home() / ".config/glib-2.0/settings/keyfile", text);
  return {{"dbus-run-session", "--", "metacity", "--no-composite"},
          {{"GSETTINGS_BACKEND", "keyfile"}, {"XDG_CONFIG_HOME", server.home() / ".config"}}};
}

}  // namespace

Launch prepareWindowManager(const XServer& server, Manager manager, const WindowManagerOptions& options) {
  switch (manager) {
    case Manager::openbox: return openbox(server, options);
    case Manager::xfwm4: return xfwm4(server, options);
    case Manager::i3: return i3(server, options);
    case Manager::icewm: return icewm(server, options);
    case Manager::metacity: return metacity(server, options);
    case Manager::none: break;
  }
  return {};
}

}  // namespace tessaspaces::harness
