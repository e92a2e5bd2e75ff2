#pragma once

#include "harness/Client.h"
#include "harness/Input.h"
#include "harness/Probe.h"
#include "harness/Program.h"
#include "harness/WindowManager.h"
#include "harness/XServer.h"

namespace tessaspaces::harness {

struct SessionOptions {
  Manager manager = Manager::openbox;
  WindowManagerOptions desktops;
  XServerOptions screen{.width = 1280, .height = 800};
};

/// A whole desktop to try the program in: server, window manager, onlooker, input, an application, and the
/// program, which `program.start()` starts. Members go in reverse order, so that the program ends first.
struct Session {
  explicit Session(SessionOptions options = {})
      : server(options.screen),
        windowManager(server, options.manager, options.desktops),
        probe(server),
        keyboard(server),
        pointer(server),
        client(server),
        program(server) {
    pointer.moveTo(options.screen.width / 4, options.screen.height / 2);
  }

  XServer server;
  WindowManager windowManager;
  Probe probe;
  Keyboard keyboard;
  Pointer pointer;
  Client client;
  Program program;
};

/// The keys of this program's default settings.
inline constexpr std::uint32_t controlOption = KeyCombo::control | KeyCombo::option;
inline constexpr KeyCombo leftKey{123, controlOption};
inline constexpr KeyCombo rightKey{124, controlOption};
inline constexpr KeyCombo downKey{125, controlOption};
inline constexpr KeyCombo upKey{126, controlOption};
/// Goes to desktop `number`, 1 to 10.
constexpr KeyCombo directKey(int number) {
  return {KeyCombo::digitKeyCodes.at(static_cast<std::size_t>(number) - 1), controlOption};
}

}  // namespace tessaspaces::harness
