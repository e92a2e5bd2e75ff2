#include "demo/Scene.h"

#include <fmt/format.h>

#include <array>

namespace tessaspaces::demo {
namespace {

constexpr std::array<std::uint32_t, 5> colours{0x3D6B8E, 0x8E5B3D, 0x4E7D52, 0x7A4E7D, 0x8A7A3B};

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

}  // namespace

Scene::Scene(harness::Session& session) {
  if (harness::findProgram("xsetroot")) session.server.run({"xsetroot", "-solid", "#2b3440"});
  const bool terminals = harness::findProgram("xterm").has_value();
  for (int desktop = 0; desktop < desktops; ++desktop) {
    session.probe.switchTo(desktop);
    if (!session.probe.waitForDesktop(desktop)) throw harness::Failure("the window manager does not switch");
    session.client.open({.title = fmt::format("Notes {}", desktop + 1),
                         .instance = "notes",
                         .className = "Notes",
                         .frame = {980 - desktop * 40, 520 - desktop * 20, 560, 360},
                         .colour = colours.at(static_cast<std::size_t>(desktop) % colours.size()),
                         .desktop = desktop});
    if (!terminals) continue;
    const std::string title = fmt::format("Desktop {}", desktop + 1);
    programs_.push_back(session.server.start(terminal(desktop, title)));
    if (!session.probe.waitFor([&] { return session.probe.findWindow(title).has_value(); })) {
      throw harness::Failure("xterm does not come up:\n" + programs_.back().output());
    }
  }
  session.probe.switchTo(0);
  session.probe.waitForDesktop(0);
}

}  // namespace tessaspaces::demo
