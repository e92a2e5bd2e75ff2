#include <fmt/format.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "demo/GridTour.h"
#include "demo/Scene.h"
#include "demo/Tour.h"
#include "demo/Witness.h"

namespace {

using namespace tessaspaces;

constexpr std::string_view usage =
    "Usage: tessaspaces_demo [--wm openbox|xfwm4|i3|icewm|metacity] [--pictures FOLDER] [--nested]\n"
    "Shows the program at work on a server of its own. --nested opens that server in a window, to play with.\n";

struct Choice {
  harness::Manager manager = harness::Manager::openbox;
  std::filesystem::path pictures;
  bool nested = false;
};

std::optional<Choice> choose(int argc, char** argv) {
  Choice choice;
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    const bool more = i + 1 < argc;
    if (argument == "--nested") {
      choice.nested = true;
    } else if (argument == "--pictures" && more) {
      choice.pictures = std::filesystem::absolute(argv[++i]);
    } else if (argument == "--wm" && more) {
      const auto manager = harness::managerNamed(argv[++i]);
      if (!manager) return std::nullopt;
      choice.manager = *manager;
    } else {
      return std::nullopt;
    }
  }
  return choice;
}

int show(const Choice& choice) {
  harness::SessionOptions options;
  options.manager = choice.manager;
  options.desktops.desktops = demo::desktops;
  options.screen = {.width = 1920, .height = 1080};
  if (choice.nested) options.screen.kind = harness::ServerKind::nested;
  harness::Session session(options);
  fmt::print("X server {}, {}, {} desktops in {} columns\n", session.server.display(),
             session.probe.windowManager().value_or("no window manager"), demo::desktops, demo::columns);
  const demo::Scene scene(session);
  demo::Witness witness(session, choice.pictures);
  if (choice.nested) {
    session.program.start({{"tessaspaces.grid.columns", std::to_string(demo::columns)}});
    fmt::print(
        "control + option + arrows or digits change the desktop, option + shift + space opens the overview. Close the "
        "window to end.\n");
    std::fflush(stdout);
    session.server.waitForEnd();
    return EXIT_SUCCESS;
  }
  demo::tour(session, witness);
  demo::tourOfManyWindows(choice.manager, witness);
  fmt::print("\n{} of {} steps as they should be\n", witness.steps() - witness.failures(), witness.steps());
  if (witness.failures() > 0) fmt::print("\nThe program's log:\n{}", session.program.log());
  return witness.failures() == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
  const auto choice = choose(argc, argv);
  if (!choice) {
    std::fputs(usage.data(), stderr);
    return 2;
  }
  try {
    return show(*choice);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "tessaspaces_demo: %s\n", failure.what());
    return EXIT_FAILURE;
  }
}
