#include "harness/Program.h"

#include <fmt/format.h>

#include <cstdlib>

#include "base/KeyCombo.h"

namespace tessaspaces::harness {
namespace {

constexpr std::string_view registered = "HOTKEY: registered";

std::filesystem::path builtAt(const char* variable, const char* place) {
  const char* elsewhere = std::getenv(variable);
  return elsewhere != nullptr ? std::filesystem::path(elsewhere)
                              : std::filesystem::path(TESSASPACES_BINARY_DIR) / place;
}

}  // namespace

std::filesystem::path Program::binary() {
  return builtAt("TESSASPACES_PROGRAM", "src/app/tessaspaces");
}

std::filesystem::path Program::controlBinary() {
  return builtAt("TESSASPACES_CTL", "src/ctl/tessactl");
}

Program::Program(const XServer& server) : server_(&server) {}

void Program::set(const Setting& setting) const {
  const Result result = control({"config", "set", setting.first, setting.second});
  if (result.status != 0) {
    throw Failure(fmt::format("tessactl config set {} {}: {}", setting.first, setting.second, result.output));
  }
}

void Program::start(const std::vector<Setting>& settings) {
  set({"tessaspaces.logLevel", "3"});
  set({"tessaspaces.transition.style", "3"});
  for (const Setting& setting : settings) set(setting);
  const std::size_t from = logEnd();
  process_ = server_->start({binary(), "--platform", "x11"});
  if (!waitForLog(registered, from)) {
    throw Failure(fmt::format("the program registered no hot keys\nIts log:\n{}\nIts output:\n{}", log(), output()));
  }
}

Process Program::startAnother() const {
  return server_->start({binary(), "--platform", "x11"});
}

void Program::configure(const std::vector<Setting>& settings) {
  bool answered = false;
  const auto setAndAwait = [&](const Setting& setting) {
    const std::size_t from = logEnd();
    set(setting);
    answered = waitForLog(registered, from);
    if (!answered) throw Failure("the running program did not take " + setting.first + ":\n" + log());
  };
  for (const Setting& setting : settings) {
    if (setting.first.starts_with("tessaspaces.hotkey.")) {
      setAndAwait(setting);
    } else {
      set(setting);
      answered = false;
    }
  }
  if (answered) return;
  marker_ = !marker_;
  setAndAwait({"tessaspaces.hotkey.explode.modifiers", std::to_string(marker_ ? KeyCombo::allModifiers : 0xA00U)});
}

Result Program::control(std::vector<std::string> arguments) const {
  arguments.insert(arguments.begin(), controlBinary());
  return server_->run(std::move(arguments));
}

}  // namespace tessaspaces::harness
