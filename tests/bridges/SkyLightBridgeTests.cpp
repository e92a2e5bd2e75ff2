#include <gmock/gmock.h>

#include "bridges/SkyLightBridge.h"
#include "support/CoreTest.h"

namespace tessaspaces {
namespace {

using testing::ElementsAre;

class SkyLightBridge : public CoreTest {};

TEST_F(SkyLightBridge, SwitchesInThreeStepsAndStopsAtTheFirstThatIsNotTaken) {
  struct Case {
    std::set<Operation> unavailable;
    bool handedOver;
    std::vector<std::string> asked;
  };
  const std::string show = "bridgedShowSpaces([2])";
  const std::string set = "bridgedSetCurrentSpace(left, 2)";
  const std::string hide = "bridgedHideSpaces([])";
  const std::vector<Case> cases{{{}, true, {show, set, hide}},
                                {{Operation::bridgedShowSpaces}, false, {show}},
                                {{Operation::bridgedSetCurrentSpace}, false, {show, set}},
                                {{Operation::bridgedHideSpaces}, false, {show, set, hide}}};
  for (const auto& [unavailable, handedOver, asked] : cases) {
    start("left 960x1080 | A* B");
    world().editFaults([&, missing = unavailable](SimulatedFaults& faults) { faults.unavailable = missing; });
    world().clearCalls();
    EXPECT_EQ(SLS::bridgedSwitchSpace("left", 2, {}), handedOver);
    EXPECT_EQ(world().calls(), asked);
  }
}

}  // namespace
}  // namespace tessaspaces
