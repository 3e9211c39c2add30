#include "marlune/desktop/services/run_loop.h"

#include <poll.h>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>

#include "support/teardown_cycles.h"

namespace marlune {
namespace {

bool isReadable(int descriptor, int milliseconds) {
  pollfd polled{descriptor, POLLIN, 0};
  return poll(&polled, 1, milliseconds) == 1;
}

// Waits until a thread's runAndWait has reached the loop.
void waitForWork(RunLoop& loop) { ASSERT_TRUE(loop.waitFor(60)); }

TEST(RunLoopTest, RunsWorkInTheOrderInWhichItFallsDue) {
  RunLoop loop;
  std::string order;
  loop.postAfter(3600, [&] { order += '-'; });
  EXPECT_EQ(loop.runPending(), 0u);
  EXPECT_FALSE(loop.waitFor(0));
  EXPECT_GT(loop.secondsUntilNext().value_or(0), 3000.0);

  loop.postAfter(0.02, [&] { order += 'd'; });
  loop.postAfter(0.01, [&] { order += 'c'; });
  loop.post([&] { order += 'a'; });
  loop.postAfter(-1, [&] { order += 'b'; });  // not earlier than work posted before
  EXPECT_EQ(loop.secondsUntilNext(), 0.0);
  while (order.size() < 4) {
    EXPECT_TRUE(loop.waitFor(60));
    loop.runPending();
  }
  EXPECT_EQ(order, "abcd");
}

TEST(RunLoopTest, WorkThatPostsItselfAgainDoesNotKeepThePump) {
  RunLoop loop;
  int runs = 0;
  std::function<void()> again = [&] {
    ++runs;
    loop.post(again);
  };
  loop.post(again);
  EXPECT_EQ(loop.runPending(), 1u);
  EXPECT_EQ(loop.runPending(), 1u);
  EXPECT_EQ(runs, 2);
}

TEST(RunLoopTest, RunsUntilStoppedAndNoFurther) {
  RunLoop loop;
  int runs = 0;
  loop.stop();
  loop.run();  // a stop before run counts
  loop.post([&] {
    ++runs;
    loop.stop();
  });
  loop.post([&] { ++runs; });
  loop.run();
  EXPECT_EQ(runs, 1);
  std::thread stopper([&] { loop.post([&] { loop.stop(); }); });
  loop.run();
  stopper.join();
  EXPECT_EQ(runs, 2);
}

TEST(RunLoopTest, AnotherThreadWaitsForItsWorkInTheLoop) {
  RunLoop loop;
  bool ran = false;
  auto answer = std::async(std::launch::async, [&] {
    EXPECT_FALSE(loop.isCurrent());
    return loop.runAndWait([&] { ran = loop.isCurrent(); });
  });
  waitForWork(loop);
  loop.runPending();
  EXPECT_TRUE(answer.get());
  EXPECT_TRUE(ran);
}

TEST(RunLoopTest, TheMainThreadWaitsForNobody) {
  RunLoop loop;
  bool ran = false;
  loop.post([] { FAIL() << "work behind ran first"; });
  EXPECT_TRUE(loop.runAndWait([&] { EXPECT_TRUE(loop.runAndWait([&] { ran = true; })); }));
  EXPECT_TRUE(ran);
  loop.end();
}

TEST(RunLoopTest, ThrowsWhereTheWorkCameFrom) {
  RunLoop loop;
  auto answer = std::async(
      std::launch::async, [&] { loop.runAndWait([] { throw std::runtime_error("waited for"); }); });
  waitForWork(loop);
  EXPECT_EQ(loop.runPending(), 1u);
  EXPECT_THROW(answer.get(), std::runtime_error);

  bool ran = false;
  loop.post([] { throw std::logic_error("posted"); });
  loop.post([&] { ran = true; });
  EXPECT_THROW(loop.runPending(), std::logic_error);
  EXPECT_EQ(loop.runPending(), 1u);
  EXPECT_TRUE(ran);
}

TEST(RunLoopTest, ItsDescriptorIsReadableWhileThereIsSomethingToRun) {
  RunLoop loop;
  loop.post([] {});  // before the descriptor exists
  const int descriptor = loop.fileDescriptor();
  ASSERT_GE(descriptor, 0);
  EXPECT_TRUE(isReadable(descriptor, 0));
  loop.runPending();
  EXPECT_FALSE(isReadable(descriptor, 0));

  loop.postAfter(3600, [] {});
  EXPECT_FALSE(isReadable(descriptor, 0));
  loop.postAfter(0.01, [] {});
  EXPECT_TRUE(isReadable(descriptor, 60000));
  EXPECT_EQ(loop.runPending(), 1u);
  EXPECT_FALSE(isReadable(descriptor, 0));

  std::thread poster([&] { loop.post([] {}); });
  EXPECT_TRUE(isReadable(descriptor, 60000));
  poster.join();
  loop.end();
  EXPECT_FALSE(isReadable(descriptor, 0));
}

TEST(RunLoopTest, EndingReleasesWhoWaitsAndDropsTheWork) {
  RunLoop loop;
  const auto held = std::make_shared<int>();
  loop.postAfter(3600, [held] {});
  auto answer = std::async(std::launch::async,
                           [&] { return loop.runAndWait([] { FAIL() << "given up, yet run"; }); });
  waitForWork(loop);
  loop.end();
  EXPECT_FALSE(answer.get());
  EXPECT_EQ(held.use_count(), 1);

  loop.post([held] { FAIL() << "posted after the end, yet run"; });
  EXPECT_EQ(held.use_count(), 1);
  EXPECT_EQ(loop.runPending(), 0u);
  loop.run();  // returns
  auto late = std::async(std::launch::async, [&] { return loop.runAndWait([] {}); });
  EXPECT_FALSE(late.get());
}

TEST(RunLoopTest, ARefusalGivesUpWhatOneWorkerWaitsForAndNothingElse) {
  RunLoop loop;
  int runs = 0;
  bool pending = true, refused = true, accepted = false;
  std::promise<void> isRefused, mayAskAgain;
  std::thread worker([&] {
    pending = loop.runAndWait([] { FAIL() << "given up, yet run"; });
    refused = loop.runAndWait([] { FAIL() << "refused, yet run"; });
    isRefused.set_value();
    mayAskAgain.get_future().wait();
    accepted = loop.runAndWait([&] { ++runs; });
  });
  waitForWork(loop);
  loop.post([&] { ++runs; });
  auto other = std::async(std::launch::async, [&] { return loop.runAndWait([&] { ++runs; }); });
  {
    const RunLoop::Refusal refusal(loop, worker.get_id());
    isRefused.get_future().wait();
  }
  while (runs < 2) loop.runPending();
  EXPECT_TRUE(other.get());
  mayAskAgain.set_value();  // as a later thread with the same id would
  waitForWork(loop);
  loop.runPending();
  worker.join();
  EXPECT_FALSE(pending);
  EXPECT_FALSE(refused);
  EXPECT_TRUE(accepted);
  EXPECT_EQ(runs, 3);
}

TEST(RunLoopTest, InAChildTheLoopHasEnded) {
  auto loop = std::make_unique<RunLoop>();
  std::thread worker([&] { loop->runAndWait([] {}); });
  waitForWork(*loop);
  const pid_t child = ::fork();
  if (child == 0) {
    ::alarm(60);  // ends a child that waits for ever
    bool hasRun = false;
    const auto work = [&] { hasRun = true; };
    bool isEnded = !loop->isCurrent() && !loop->runAndWait(work);
    loop->post(work);
    isEnded = isEnded && loop->runPending() == 0 && !loop->waitFor(1000) && !hasRun;
    loop->run();
    loop.reset();
    ::_exit(isEnded ? 0 : 1);
  }
  int status = -1;
  ::waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  loop->runPending();
  worker.join();
}

TEST(RunLoopTest, NoTeardownMeetsItsNotificationInADeadlock) {
  const auto counts = runTeardownCycles(3000, /*seed=*/20240518);
  EXPECT_EQ(counts.cycles, 3000u);
  EXPECT_GT(counts.notifications, 0u);
  EXPECT_EQ(counts.wrongAnswers, 0u);
  EXPECT_EQ(counts.left, 0u);
}

}  // namespace
}  // namespace marlune
