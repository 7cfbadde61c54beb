#include <gtest/gtest.h>

#include <sys/resource.h>
#include <unistd.h>
#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <future>
#include <latch>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "linux/RunLoop.h"
#include "platform/linux/LinuxApplication.h"
#include "platform/linux/LinuxDispatch.h"
#include "platform/linux/LinuxMonotonicClock.h"
#include "platform/linux/LinuxSerialQueue.h"
#include "platform/linux/LinuxUUIDSource.h"
#include "platform/linux/LinuxWallClock.h"
#include "platform/linux/RepeatingDeadline.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

// The number of this process' threads of that name.
std::size_t threadsNamed(const std::string& name) {
    std::size_t count = 0;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task", error)) {
        std::string found;
        if (std::getline(std::ifstream(entry.path() / "comm"), found) && found == name) ++count;
    }
    return count;
}

// Looks again and again until it holds; for states of other threads that tell nobody.
bool comesToHold(const std::function<bool()>& holds) {
    const auto end = std::chrono::steady_clock::now() + 20s;
    while (!holds()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::yield();
    }
    return true;
}

// Returns when the queue has run all that it was given before.
template <typename Queue>
void drain(Queue& queue) {
    std::promise<void> drained;
    queue.async([&] { drained.set_value(); });
    drained.get_future().wait();
}

void turn() {
    g_main_context_iteration(nullptr, FALSE);
}

class MainQueueTest : public testing::Test {
 protected:
    std::string told;
    LinuxMainQueue queue;

    // Tasks that keep coming until something is told.
    void recur() {
        if (told.empty()) queue.async([this] { recur(); });
    }
};

TEST_F(MainQueueTest, RunsTasksInTheirOrderAndTasksOfTasksInALaterTurn) {
    queue.async([&] {
        told += "a";
        queue.async([&] { told += "c"; });
    });
    queue.async([&] { told += "b"; });
    turn();
    EXPECT_EQ(told, "ab") << "one turn for many tasks";
    turn();
    EXPECT_EQ(told, "abc");
    EXPECT_FALSE(g_main_context_pending(nullptr));
}

TEST_F(MainQueueTest, LetsOtherSourcesHaveTheirTurnWhileTasksKeepComing) {
    recur();
    const auto tell = [](gpointer what) -> gboolean {
        *static_cast<std::string*>(what) = "over";
        return G_SOURCE_REMOVE;
    };
    g_idle_add_full(G_PRIORITY_DEFAULT, tell, &told, nullptr);
    EXPECT_TRUE(runUntil([&] { return !told.empty(); }));
}

TEST_F(MainQueueTest, GetsTenThousandTasksOfAnotherThreadOnceEachAndInOrder) {
    constexpr int kTasks = 10'000;
    std::vector<int> arrived;
    std::thread sender([&] {
        for (int number = 0; number < kTasks; ++number)
            queue.async([&arrived, number] { arrived.push_back(number); });
    });
    EXPECT_TRUE(runUntil([&] { return arrived.size() >= kTasks; }));
    sender.join();
    turn();
    ASSERT_EQ(arrived.size(), static_cast<std::size_t>(kTasks));
    for (int number = 0; number < kTasks; ++number)
        ASSERT_EQ(arrived[static_cast<std::size_t>(number)], number);
}

TEST_F(MainQueueTest, RunsDelayedTasksByDeadlineAndNotBeforeIt) {
    const LinuxMonotonicClock clock;
    const auto start = clock.now();
    MonotonicInstant lastRan{};
    const auto late = queue.after(40ms, [&] {
        told += "c";
        lastRan = clock.now();
    });
    const auto soon = queue.after(10ms, [&] { told += "b"; });
    const auto atOnce = queue.after(-1s, [&] { told += "a"; });
    const auto never = queue.after(std::chrono::nanoseconds::max(), [&] { told += "!"; });
    EXPECT_EQ(told, "");
    EXPECT_TRUE(runUntil([&] { return told.size() >= 3; }));
    EXPECT_EQ(told, "abc");
    EXPECT_GE(lastRan - start, 40ms);
}

TEST_F(MainQueueTest, RunsNoDelayedTaskThatWasCancelledOrWhoseCancellationWentAway) {
    Cancellation outliving;
    {
        LinuxMainQueue gone;
        outliving = gone.after(1h, [] {});
    }
    outliving.cancel();

    auto cancelled = queue.after(1ms, [&] { told += "cancelled "; });
    {
        const auto destroyed = queue.after(1ms, [&] { told += "destroyed "; });
    }
    auto bySibling = queue.after(3ms, [&] { told += "sibling "; });
    const auto first = queue.after(2ms, [&] { bySibling.cancel(); });
    auto itself = Cancellation();
    itself = queue.after(4ms, [&] {
        itself.cancel();
        told += "itself ";
    });
    bool isOver = false;
    const auto last = queue.after(20ms, [&] { isOver = true; });
    cancelled.cancel();
    EXPECT_TRUE(runUntil([&] { return isOver; }));
    EXPECT_EQ(told, "itself ");
}

TEST_F(MainQueueTest, DropsEverythingOnceClosedEvenTheRestOfTheTurn) {
    const auto witness = std::make_shared<int>();
    const auto delayed = queue.after(0ns, [this, witness] { told += "delayed"; });
    queue.async([&] {
        queue.close();
        told += "closed";
    });
    queue.async([this, witness] { told += "same turn"; });
    turn();
    queue.async([this, witness] { told += "later"; });
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
    EXPECT_EQ(told, "closed");
    EXPECT_EQ(witness.use_count(), 1);
}

TEST(RepeatingDeadline, TurnsMissedFiringsIntoOneAndStaysOnItsGrid) {
    using std::chrono::nanoseconds;
    const auto next = [](nanoseconds interval, nanoseconds firedAt) {
        const MonotonicInstant start{1h};
        RepeatingDeadline deadline(start, interval);
        deadline.fire(start + firedAt);
        return deadline.next() - start;
    };
    EXPECT_EQ(next(10ms, 9ms), 10ms) << "a little late";
    EXPECT_EQ(next(10ms, 10ms), 20ms);
    EXPECT_EQ(next(10ms, 57ms), 60ms) << "after a sleep";
    EXPECT_EQ(next(10ms, -5ms), 10ms) << "before its time";
    EXPECT_EQ(next(0ms, 5ns), 6ns);
    EXPECT_EQ(next(nanoseconds::max(), 5ns), nanoseconds::max() - 1h);
}

TEST(SerialQueue, RunsTasksOneAfterAnotherOnAThreadWithItsLabelThatGivesWay) {
    LinuxSerialQueue queue("sampler of the machine");
    std::atomic<int> inside = 0;
    std::vector<int> order;
    for (int number = 0; number < 1000; ++number) {
        queue.async([&, number] {
            EXPECT_EQ(inside.fetch_add(1), 0);
            order.push_back(number);
            inside.fetch_sub(1);
        });
    }
    int niceness = 0;
    queue.async([&] { niceness = getpriority(PRIO_PROCESS, 0); });
    drain(queue);
    ASSERT_EQ(order.size(), 1000u);
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
    EXPECT_GT(niceness, getpriority(PRIO_PROCESS, 0));
    EXPECT_EQ(threadsNamed("sampler of the "), 1u);
}

TEST(SerialQueue, FiresATimerAtOnceAndThenOnItsGridWithMissedFiringsAsOne) {
    constexpr auto kInterval = 20ms;
    const LinuxMonotonicClock clock;
    LinuxSerialQueue queue("timer");
    std::vector<MonotonicInstant> firings;
    std::promise<void> fiveMore;
    const auto before = clock.now();
    const auto timer = queue.every(kInterval, [&] {
        firings.push_back(clock.now());
        // The first one keeps the queue busy for several intervals.
        while (firings.size() == 1 && clock.now() < before + 5 * kInterval)
            std::this_thread::yield();
        if (firings.size() == 6) fiveMore.set_value();
    });
    const auto after = clock.now();
    fiveMore.get_future().wait();
    drain(queue);

    // The second stands for all that were missed; each later one is in an interval of its own.
    EXPECT_GE(firings[1], before + 5 * kInterval);
    for (std::size_t index = 2; index < firings.size(); ++index)
        EXPECT_GT((firings[index] - before) / kInterval, (firings[index - 1] - after) / kInterval) << index;
}

TEST(SerialQueue, EndsATimerThatIsDestroyedWithinItsOwnTask) {
    LinuxSerialQueue queue("timer");
    const auto witness = std::make_shared<int>();
    std::atomic<int> firings = 0;
    std::promise<void> ended;
    std::unique_ptr<RepeatingTimer> timer;
    queue.async([&] {
        timer = queue.every(1ms, [&, witness] {
            if (++firings < 3) return;
            timer.reset();
            EXPECT_GT(witness.use_count(), 1) << "the running task is whole to its end";
            ended.set_value();
        });
    });
    ended.get_future().wait();
    EXPECT_TRUE(comesToHold([&] { return witness.use_count() == 1; }));
    EXPECT_EQ(firings, 3);
}

TEST(SerialQueue, EndsATimerFromAnotherThreadWithoutWaitingForItsFiring) {
    LinuxSerialQueue queue("timer");
    std::latch began(1);
    std::latch goOn(1);
    std::atomic<int> firings = 0;
    auto timer = queue.every(1ms, [&] {
        if (++firings == 1) began.count_down();
        goOn.wait();
    });
    began.wait();
    timer.reset();
    goOn.count_down();
    drain(queue);
    EXPECT_EQ(firings, 1);
}

TEST(SerialQueue, FinishesTheRunningTaskAndDropsTheOthersWhenDestroyed) {
    std::latch began(1);
    std::latch goOn(1);
    const auto witness = std::make_shared<int>();
    std::atomic<bool> isFinished = false;
    std::atomic<bool> ranMore = false;
    auto* const queue = new LinuxSerialQueue("busy");
    queue->async([&] {
        began.count_down();
        goOn.wait();
        isFinished = true;
    });
    queue->async([&, witness] { ranMore = true; });
    began.wait();
    const auto timer = queue->every(1h, [&, witness] { ranMore = true; });
    std::thread destroyer([&] { delete queue; });
    // The destruction has begun once what comes is dropped at once; it cannot end before the task does.
    const auto probe = std::make_shared<int>();
    EXPECT_TRUE(comesToHold([&] {
        const auto before = probe.use_count();
        queue->async([probe] {});
        return probe.use_count() == before;
    }));
    goOn.count_down();
    destroyer.join();
    EXPECT_TRUE(isFinished);
    EXPECT_FALSE(ranMore);
    EXPECT_EQ(probe.use_count(), 1);
    EXPECT_LE(witness.use_count(), 2) << "held at most by the timer, which outlives its queue";

    auto* const shortLived = new LinuxSerialQueue("short-lived");
    shortLived->async([shortLived, probe] { delete shortLived; });
    EXPECT_TRUE(comesToHold([&] { return probe.use_count() == 1; })) << "destroyed by its own task";
}

TEST(BackgroundQueue, LetsNoStuckTaskHoldUpAnother) {
    LinuxBackgroundQueue queue;
    std::latch goOn(1);
    std::atomic<int> stuck = 0;
    for (int task = 0; task < 8; ++task) {
        queue.async([&] {
            ++stuck;
            goOn.wait();
            --stuck;
        });
    }
    drain(queue);
    EXPECT_TRUE(comesToHold([&] { return stuck == 8; }));
    goOn.count_down();
    EXPECT_TRUE(comesToHold([&] { return stuck == 0; }));
}

TEST(BackgroundQueue, TakesIdleThreadsAgainAndEndsThemAfterAWhile) {
    {
        LinuxBackgroundQueue queue(1h);
        std::set<std::thread::id> threads;
        for (int task = 0; task < 20; ++task) {
            std::promise<std::thread::id> ran;
            queue.async([&] { ran.set_value(std::this_thread::get_id()); });
            threads.insert(ran.get_future().get());
        }
        // One, or another where a task came before the last thread had gone idle.
        EXPECT_LT(threads.size(), 10u);
    }
    LinuxBackgroundQueue queue(1ms);
    drain(queue);
    EXPECT_TRUE(comesToHold([] { return threadsNamed("background") == 0; }));
}

TEST(BackgroundQueue, RunsDelayedTasksByDeadlineWithOneThreadThatEndsWithThem) {
    const LinuxMonotonicClock clock;
    LinuxBackgroundQueue queue;
    std::promise<MonotonicInstant> early;
    std::promise<MonotonicInstant> late;
    std::size_t timekeepers = 0;
    const auto start = clock.now();
    queue.asyncAfter(60ms, [&] { late.set_value(clock.now()); });
    queue.asyncAfter(10ms, [&] {
        timekeepers = threadsNamed("background time");
        early.set_value(clock.now());
    });
    EXPECT_GE(early.get_future().get() - start, 10ms);
    EXPECT_EQ(timekeepers, 1u);
    EXPECT_GE(late.get_future().get() - start, 60ms);
    EXPECT_TRUE(comesToHold([] { return threadsNamed("background time") == 0; }));
}

TEST(Dispatch, GoesAwayUnderAStuckTaskThatStillUsesItsQueues) {
    std::promise<void> began;
    std::promise<void> goOn;
    const auto witness = std::make_shared<int>();
    auto dispatch = std::make_unique<LinuxDispatch>();
    LinuxMainQueue& mainQueue = dispatch->mainQueue();
    LinuxBackgroundQueue& backgroundQueue = dispatch->backgroundQueue();
    const auto never = [witness] { FAIL(); };
    backgroundQueue.async([&, never, mayGoOn = goOn.get_future().share()] {
        began.set_value();
        mayGoOn.wait();
        mainQueue.async(never);
        backgroundQueue.async(never);
        backgroundQueue.asyncAfter(0ns, never);
    });
    began.get_future().wait();
    backgroundQueue.asyncAfter(1h, never);
    dispatch.reset();
    goOn.set_value();
    EXPECT_TRUE(comesToHold([&] { return witness.use_count() == 2; })) << "held by this test alone";
}

TEST_F(MainQueueTest, LetsAnApplicationRunUntilTerminatedAndEndWithSuccess) {
    LinuxApplication application(queue);
    queue.async([&] {
        application.terminate();
        told += "terminated";
    });
    queue.async([&] { told += " too late"; });
    EXPECT_EQ(application.run(), EXIT_SUCCESS);
    EXPECT_EQ(told, "terminated");
}

TEST(Application, EndsOnASignalAndIgnoresAReaderThatWentAway) {
    for (const int signal : {SIGTERM, SIGINT}) {
        LinuxMainQueue queue;
        LinuxApplication application(queue);
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        close(ends[0]);
        EXPECT_EQ(write(ends[1], "x", 1), -1);
        close(ends[1]);
        queue.async([signal] { raise(signal); });
        EXPECT_EQ(application.run(), EXIT_SUCCESS);
        // One more while the process is ending does no harm.
        raise(signal);
    }
}

TEST(WallClock, AgreesWithTheLibrarysOwn) {
    const auto now = LinuxWallClock().now().time_since_epoch();
    EXPECT_LT(std::chrono::abs(std::chrono::system_clock::now().time_since_epoch() - now), 1min);
}

TEST(UUIDs, AreOfVersion4AndNeverRepeatWithOrWithoutRandomness) {
    LinuxUUIDSource random;
    LinuxUUIDSource without([](std::span<std::uint8_t>) { return false; });
    std::set<std::array<std::uint8_t, 16>> seen;
    for (int round = 0; round < 1000; ++round) {
        for (const UUID& uuid : {random.next(), without.next()}) {
            EXPECT_EQ(uuid.bytes[6] >> 4, 4);
            EXPECT_EQ(uuid.bytes[8] >> 6, 2);
            EXPECT_TRUE(seen.insert(uuid.bytes).second);
        }
    }
}

}  // namespace
}  // namespace norvane
