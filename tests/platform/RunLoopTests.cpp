#include <gmock/gmock.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <condition_variable>
#include <mutex>

#include "platform/loop/RunLoop.h"

namespace tessaspaces {
namespace {

using namespace std::chrono_literals;

// Only ever reached when something is broken.
TimePoint patience(const RunLoop& loop) {
  return loop.now() + 20s;
}

TEST(RunLoop, BackgroundJobsRunBesideOneAnotherAndReachTheMainThread) {
  RunLoop loop;
  std::mutex mutex;  // guards together
  std::condition_variable met;
  std::size_t together = 0;
  int done = 0;
  for (std::size_t i = 0; i < WorkerPool::maxThreads; ++i) {
    loop.background([&] {
      std::unique_lock lock(mutex);
      ++together;
      met.notify_all();
      met.wait(lock, [&] { return together == WorkerPool::maxThreads; });
      lock.unlock();
      loop.sync([&] {
        EXPECT_TRUE(loop.isMainThread());
        ++done;
      });
    });
  }
  EXPECT_TRUE(loop.runUntil([&] { return done == int{WorkerPool::maxThreads}; }, patience(loop)));
}

TEST(RunLoop, EndsWithAJobThatStillNeedsTheMainThread) {
  std::atomic<bool> served = false;
  {
    RunLoop loop;
    std::atomic<bool> running = false;
    loop.background([&] {
      running = true;
      loop.async([] {});
      loop.sync([&] { served = true; });
    });
    EXPECT_TRUE(loop.runUntil([&] { return running.load(); }, patience(loop)));
  }
  EXPECT_TRUE(served);
}

TEST(RunLoop, WatchesAndTimersEndWithTheirRegistrationEvenFromInside) {
  RunLoop loop;
  std::array<int, 2> pipe{};
  ASSERT_EQ(::pipe(pipe.data()), 0);
  int reads = 0;
  RegistrationRef watch;
  watch = loop.watch(pipe[0], [&] {
    ++reads;
    watch.reset();  // what is unread would call again for ever
  });
  ASSERT_EQ(::write(pipe[1], "x", 1), 1);

  int ticks = 0;
  RegistrationRef timer;
  timer = loop.every(1ms, [&] {
    if (++ticks == 3) timer.reset();
  });
  std::vector<int> order;
  loop.after(20ms, [&] { order.push_back(2); });
  loop.after(1ms, [&] { order.push_back(1); });
  loop.async([&] { order.push_back(0); });
  EXPECT_TRUE(loop.runUntil([&] { return order.size() == 3 && ticks == 3; }, patience(loop)));
  EXPECT_THAT(order, testing::ElementsAre(0, 1, 2));
  EXPECT_EQ(reads, 1);
  EXPECT_EQ(ticks, 3);
  ::close(pipe[0]);
  ::close(pipe[1]);
}

TEST(RunLoop, QuitCountsWhenItComesFirst) {
  RunLoop loop;
  loop.quit();
  loop.run();
  loop.background([&] { loop.quit(); });
  loop.run();
  EXPECT_FALSE(loop.runUntil([] { return false; }, loop.now()));
}

}  // namespace
}  // namespace tessaspaces
