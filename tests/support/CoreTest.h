#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/simulated/SimulatedPlatform.h"

namespace tessaspaces {

/// A core on the simulated platform: a configuration folder of its own, the log at its finest level, and
/// nothing left over from the test before.
class CoreTest : public testing::Test {
 protected:
  CoreTest();
  ~CoreTest() override;

  /// Makes the world and hands it to the core.
  void start(std::string_view world, OperatingSystemVersion version = {27, 0});

  /// The lines logged since the last call, without their dates: "[DEBUG] SWITCH: ...".
  std::vector<std::string> takeLog();

  [[nodiscard]] SimulatedWorld& world() { return sim->world(); }
  void put(std::string_view key, long long value);

  std::unique_ptr<SimulatedPlatform> sim;
  std::filesystem::path folder;
};

}  // namespace tessaspaces
