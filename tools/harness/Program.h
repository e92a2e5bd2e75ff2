#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "harness/XServer.h"

namespace tessaspaces::harness {

/// A settings key and its value as tessactl takes it: {"tessaspaces.grid.columns", "4"}.
using Setting = std::pair<std::string, std::string>;

/// The program itself, as it was built beside this code (or as TESSASPACES_PROGRAM and TESSASPACES_CTL say), in
/// the home of a server. It logs everything (level 3) and switches without transitions.
class Program {
 public:
  explicit Program(const XServer& server);

  /// Starts it and waits until its hot keys are registered; throws when that does not happen. `settings` are
  /// written before the start, on top of what stands in the file.
  void start(const std::vector<Setting>& settings = {});
  /// Starts one more copy, which is not waited for.
  [[nodiscard]] Process startAnother() const;
  /// Changes settings of the running program through tessactl and waits until it has read them. The sign is that
  /// it registers its hot keys once more, so that a hot key is changed last where none is among `settings`; a hot
  /// key that is must really change.
  void configure(const std::vector<Setting>& settings);
  /// Ends it by SIGTERM. The exit status; nothing when it did not listen.
  std::optional<int> stop() { return process_.terminate(); }
  [[nodiscard]] bool running() { return process_.running(); }
  [[nodiscard]] pid_t pid() const { return process_.pid(); }

  /// Runs tessactl beside the program.
  Result control(std::vector<std::string> arguments) const;

  [[nodiscard]] std::string log() const { return readFile(logFile()); }
  /// Where the log ends now: what comes later is found from here.
  [[nodiscard]] std::size_t logEnd() const { return log().size(); }
  bool waitForLog(std::string_view text, std::size_t from = 0, Milliseconds timeout = patience) const {
    return waitForText(logFile(), text, from, timeout, &process_);
  }
  [[nodiscard]] std::filesystem::path logFile() const { return folder() / "tessaspaces.log"; }
  [[nodiscard]] std::filesystem::path settingsFile() const { return folder() / "config.json"; }
  /// What it wrote on standard output and standard error.
  [[nodiscard]] std::string output() const { return process_.output(); }

  [[nodiscard]] static std::filesystem::path binary();
  [[nodiscard]] static std::filesystem::path controlBinary();

 private:
  void set(const Setting& setting) const;
  [[nodiscard]] std::filesystem::path folder() const { return server_->home() / ".config/tessaspaces"; }

  const XServer* server_;
  Process process_;
  bool marker_ = false;
};

}  // namespace tessaspaces::harness
