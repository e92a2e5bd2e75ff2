#include "demo/Scene.h"

#include <fmt/format.h>

#include "demo/Samples.h"

namespace tessaspaces::demo {
namespace {

/// A terminal that shows its desktop's place in the grid.
std::vector<std::string> terminal(int desktop, const std::string& title) {
  std::string text;
  for (int other = 0; other < desktops; ++other) {
    text += fmt::format("{}{:>3} {}", other == desktop ? "\\033[1;33m" : "\\033[0;37m", other + 1,
                        (other + 1) % columns == 0 ? "\\n\\n" : "");
  }
  return {"xterm",
          "-T",
          title,
          "-geometry",
          fmt::format("44x14+{}+{}", 140 + desktop * 60, 120 + desktop * 30),
          "-bg",
          "#1d2430",
          "-fg",
          "#d8dee9",
          "-fa",
          "DejaVu Sans Mono",
          "-fs",
          "13",
          "-e",
          "sh",
          "-c",
          fmt::format("printf '\\033[?25l\\n\\033[1;36m  {}\\n\\n{}\\033[0m'; exec cat", title, text)};
}

/// What happens on a desktop that is not shown nobody sees.
void show(harness::Session& session, int desktop) {
  session.probe.switchTo(desktop);
  if (!session.probe.waitForDesktop(desktop)) throw harness::Failure("the window manager does not switch");
}

void openSample(harness::Session& session, int number, int desktop, harness::Rectangle frame) {
  const Sample made = sample(number, frame.width, frame.height);
  const xcb_window_t window = session.client.open({.title = made.title,
                                                   .instance = made.className,
                                                   .className = made.className,
                                                   .frame = frame,
                                                   .colour = 0xFFFFFF,
                                                   .desktop = desktop});
  made.picture.putInto(session.client.connection(), window);
}

}  // namespace

Scene::Scene(harness::Session& session) {
  const auto& screen = session.client.connection().screen();
  landscape(screen.width_in_pixels, screen.height_in_pixels).makeWallpaper(session.client.connection());
  const bool terminals = harness::findProgram("xterm").has_value();
  for (int desktop = 0; desktop < desktops; ++desktop) {
    show(session, desktop);
    // Not on every desktop the same number, and not at the same places.
    for (int i = 0; i <= desktop % 3; ++i) {
      const int number = desktop * 3 + i;
      openSample(
          session, number, desktop,
          {90 + (number * 310) % 900, 70 + (number * 170) % 420, 620 + number % 3 * 130, 420 + number % 2 * 110});
    }
    if (!terminals) continue;
    const std::string title = fmt::format("Desktop {}", desktop + 1);
    programs_.push_back(session.server.start(terminal(desktop, title)));
    if (!session.probe.waitFor([&] { return session.probe.findWindow(title).has_value(); })) {
      throw harness::Failure("xterm does not come up:\n" + programs_.back().output());
    }
  }
  show(session, 0);
}

void crowd(harness::Session& session, int many, int windows) {
  const auto& screen = session.client.connection().screen();
  landscape(screen.width_in_pixels, screen.height_in_pixels).makeWallpaper(session.client.connection());
  for (int desktop = 0; desktop < many; ++desktop) {
    show(session, desktop);
    for (int number = desktop; number < windows; number += many) {
      const int place = number / many;
      openSample(session, number + place, desktop,
                 {60 + (place * 330 + desktop * 90) % 1080, 50 + (place * 190 + desktop * 60) % 520,
                  560 + number % 4 * 70, 360 + number % 3 * 70});
    }
  }
  show(session, 0);
}

}  // namespace tessaspaces::demo
