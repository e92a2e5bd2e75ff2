#include "GridStage.h"

#include <fmt/format.h>

#include <array>

namespace tessaspaces::bench {

using namespace harness;

namespace {

constexpr int rows = 4;
constexpr std::array<std::uint32_t, 6> colours{0x3D6B8E, 0x8E5B3D, 0x4E7D52, 0x7A4E7D, 0x8A7A3B, 0x3B7F8A};

SessionOptions optionsOf(const GridStage::Size& size) {
  return {.manager = Manager::openbox,
          .desktops = {.desktops = size.desktops},
          .screen = {.width = size.width, .height = size.height}};
}

}  // namespace

GridStage::GridStage(Size size, bool zoom)
    : session(optionsOf(size)), overview(session, rows, size.desktops > 4 ? 4 : 2) {
  openWindows(size);
  session.program.start({{"tessaspaces.transition.gridZoom", zoom ? "true" : "false"},
                         {"tessaspaces.grid.columns", size.desktops > 4 ? "4" : "2"},
                         {"tessaspaces.grid.rows", std::to_string(rows)}});
  showAllDesktops(size.desktops);
}

void GridStage::openWindows(const Size& size) {
  for (int i = 0; i < size.windows; ++i) {
    const int desktop = i % size.desktops;
    const int place = i / size.desktops;
    const Rectangle frame{size.width / 20 + place * size.width / 12, size.height / 20 + place * size.height / 14,
                          size.width * 2 / 5, size.height * 2 / 5};
    const auto colour = [&](int shift) { return colours.at(static_cast<std::size_t>(i + shift) % colours.size()); };
    const xcb_window_t window =
        session.client.open({.title = fmt::format("Window {}", i + 1), .frame = frame, .desktop = desktop});
    session.client.draw(window, {colour(0), colour(1), colour(2), colour(3)});
  }
}

void GridStage::showAllDesktops(int desktops) {
  for (int i = 1; i <= desktops; ++i) {
    const int desktop = i % desktops;
    session.probe.switchTo(desktop);
    if (!session.probe.waitForDesktop(desktop)) throw Failure("the window manager does not switch");
    // A window that asks behind all others has been drawn when they have.
    const xcb_window_t last = session.client.open({.title = "last", .frame = {0, 0, 40, 40}, .desktop = desktop});
    session.client.close(last);
    session.probe.waitFor([&] { return !session.probe.manages(last); });
  }
}

}  // namespace tessaspaces::bench
