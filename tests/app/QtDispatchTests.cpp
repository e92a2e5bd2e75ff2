#include <QEventLoop>
#include <atomic>
#include <thread>

#include "app/EventWait.h"
#include "app/QtDispatch.h"
#include "base/Fatal.h"
#include "contract/ContractTest.h"
#include "platform/simulated/SimulatedPlatform.h"

namespace tessaspaces {
namespace contract {
namespace {

using namespace std::chrono_literals;

/// A world whose main thread is Qt's. The dispatch's part of the contract asks for nothing else of it.
class QtDriver final : public WorldDriver {
 public:
  Platform& platform() override { return platform_; }
  bool until(const std::function<bool()>& holds) override { return waitFor(holds); }
  void settle() override { unused(); }
  WindowID open(const ClientWindow&) override { unused(); }
  void close(WindowID) override { unused(); }
  void draw(WindowID, const Quarters&) override { unused(); }
  void resize(WindowID, int, int) override { unused(); }
  void makeSticky(WindowID) override { unused(); }
  void setFullScreen(WindowID, bool) override { unused(); }
  void focus(WindowID) override { unused(); }
  void showDesktop(int) override { unused(); }
  void setDesktopCount(int) override { unused(); }
  void movePointer(int, int) override { unused(); }
  void pressKey(KeyCombo) override { unused(); }
  void holdKey(KeyCombo) override { unused(); }
  void letKeyGo(KeyCombo) override { unused(); }
  void takeKey(KeyCombo) override { unused(); }
  void giveKeyBack(KeyCombo) override { unused(); }
  void setMonitors(const std::vector<Monitor>&) override { unused(); }
  void setLanguages(const std::vector<std::string>&) override { unused(); }
  void setAnimations(bool) override { unused(); }
  void stopWindowManager() override { unused(); }
  [[nodiscard]] bool fixedDesktops() const override { unused(); }
  [[nodiscard]] bool sharedDesktops() const override { unused(); }
  [[nodiscard]] bool tiles() const override { unused(); }

 private:
  [[noreturn]] static void unused() { fatal("the dispatch needs nothing of the world"); }

  SimulatedPlatform platform_{std::make_unique<QtDispatch>()};
};

INSTANTIATE_TEST_SUITE_P(Qt, Contract, testing::Values(Backend{"Qt", [](const std::vector<Monitor>&) {
                                                                 return std::make_unique<QtDriver>();
                                                               }}));

}  // namespace
}  // namespace contract

using namespace std::chrono_literals;

TEST(QtDispatch, ClosingFreesWhoeverWaitsForTheMainThread) {
  std::atomic<int> returned = 0;
  std::atomic<bool> ran = false;
  {
    QtDispatch dispatch;
    std::atomic<int> waiting = 0;
    dispatch.background([&] {
      ++waiting;
      dispatch.sync([&] { ran = true; });
      ++returned;
    });
    dispatch.background([&] {
      ++waiting;
      dispatch.sleep(1h);
      EXPECT_TRUE(dispatch.isEnding()) << "or whoever waits takes it that nothing came";
      ++returned;
    });
    while (waiting < 2) std::this_thread::yield();
  }
  EXPECT_EQ(returned, 2);
  EXPECT_FALSE(ran);
}

TEST(QtDispatch, AJobThatTurnsTheLoopDoesNotHoldUpTheOthers) {
  QtDispatch dispatch;
  QEventLoop alert;
  std::string order;
  bool done = false;
  dispatch.async([&] {
    order += "a";
    alert.exec();
    order += "c";
    done = true;
  });
  dispatch.async([&] {
    order += "b";
    alert.quit();
  });
  EXPECT_TRUE(waitFor([&] { return done; }));
  EXPECT_EQ(order, "abc");
}

}  // namespace tessaspaces
