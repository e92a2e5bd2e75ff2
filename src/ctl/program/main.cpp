#include <csignal>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "ctl/Arguments.h"
#include "ctl/Commands.h"
#include "platform/Platform.h"
#include "platform/loop/RunLoop.h"
#include "platform/simulated/SimulatedPlatform.h"
#ifdef TESSASPACES_HAS_X11
#include "platform/x11/X11Platform.h"
#endif

namespace {

using namespace tessaspaces;

/// What `--platform simulated` shows: enough to try every command on a machine without an X server.
constexpr const char* sampleWorld =
    "left 1920x1080 | Mail* [Inbox] Web [Browser] Code [Editor Terminal] / Notes Music [Player] Chat ; "
    "right 1280x1024 | Plan* Draw";

std::unique_ptr<Platform> open(const std::string& name, std::string* error) {
  if (name == "simulated") return SimulatedPlatform::fromText(sampleWorld, error);
#ifdef TESSASPACES_HAS_X11
  if (name == "x11") return X11Platform::open(std::make_unique<RunLoop>(), error, X11Events::ignored);
#endif
  *error = "there is no platform '" + name + "' in this build";
  return nullptr;
}

}  // namespace

int main(int argc, char** argv) {
  // A launcher may have left it ignored, and then no child tells how it ended.
  std::signal(SIGCHLD, SIG_DFL);
  const auto line = ctl::parseArguments(std::vector<std::string>(argv + 1, argv + argc));
  std::unique_ptr<Platform> system;
  if (ctl::needsPlatform(line.request)) {
    std::string error;
    system = open(line.platform, &error);
    if (!system) {
      std::cerr << "tessactl: " << error << '\n';
      return static_cast<int>(ctl::ExitCode::noPlatform);
    }
    setPlatform(system.get());
  }
  const auto code = ctl::run(line.request, std::cout, std::cerr);
  system.reset();  // what goes on in the background ends on the platform that it began on
  setPlatform(nullptr);
  return static_cast<int>(code);
}
