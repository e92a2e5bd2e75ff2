#include "contract/ContractTest.h"

namespace tessaspaces::contract {

using testing::ElementsAre;

TEST_P(Contract, TheSessionIsFitForTheProgram) {
  start();
  std::set<SessionFact> facts;
  for (const auto& finding : platform().examineSession()) {
    EXPECT_TRUE(facts.insert(finding.fact).second) << "one finding for each";
    EXPECT_TRUE(finding.ok) << finding.detail;
    if (finding.fact == SessionFact::windowManager) {
      EXPECT_EQ(finding.detail, server().windowManagerName());
    }
  }
  EXPECT_THAT(facts, testing::SizeIs(4));
  EXPECT_TRUE(platform().permissions().hasAccessibility());
  EXPECT_TRUE(platform().permissions().hasScreenRecording());
  platform().permissions().request(false);
  EXPECT_EQ(platform().operatingSystemVersion(), (OperatingSystemVersion{27, 0}));
  EXPECT_GT(platform().processID(), 0);
  EXPECT_FALSE(platform().preferences().legacyValue("LumoPOC.gridRows").has_value());
}

TEST_P(Contract, LanguagesComeMostWantedFirst) {
  start();
  driver->setLanguages({"de-AT", "pt-BR", "en"});
  EXPECT_THAT(platform().preferences().preferredLanguages(), ElementsAre("de-AT", "pt-BR", "en"));
}

TEST_P(Contract, WhoWantsNoAnimationsSaysSo) {
  start();
  EXPECT_FALSE(platform().preferences().reduceMotion()) << "nobody said anything";
  for (const bool wanted : {false, true, false}) {
    driver->setAnimations(wanted);
    EXPECT_EQ(platform().preferences().reduceMotion(), !wanted);
  }
}

TEST_P(Contract, LaunchAtLoginIsTurnedOnAndOff) {
  start();
  auto& item = platform().loginItem();
  EXPECT_FALSE(item.isRegistered());
  for (const bool registered : {true, true, false, false, true}) {
    EXPECT_EQ(item.setRegistered(registered), std::nullopt);
    EXPECT_EQ(item.isRegistered(), registered);
  }
}

}  // namespace tessaspaces::contract
