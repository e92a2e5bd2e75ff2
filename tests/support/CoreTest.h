#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/simulated/SimulatedPlatform.h"

namespace tessaspaces {

/// A core with a configuration folder of its own, the log at its finest level, and nothing left over from the test
/// before. Which platform it runs on is the test's business.
class LoggedTest : public testing::Test {
 protected:
  LoggedTest();
  ~LoggedTest() override;

  /// The lines logged since the last call, without their dates: "[DEBUG] SWITCH: ...".
  std::vector<std::string> takeLog();

  std::filesystem::path folder;
};

/// A core on the simulated platform.
class CoreTest : public LoggedTest {
 protected:
  ~CoreTest() override { setPlatform(nullptr); }

  /// Makes the world and hands it to the core.
  void start(std::string_view world, OperatingSystemVersion version = {27, 0});

  [[nodiscard]] SimulatedWorld& world() { return sim->world(); }
  void put(std::string_view key, long long value);

  std::unique_ptr<SimulatedPlatform> sim;
};

}  // namespace tessaspaces
