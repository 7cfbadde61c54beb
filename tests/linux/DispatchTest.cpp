#include <gtest/gtest.h>

#include <sys/resource.h>
#include <unistd.h>
#include <atomic>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <future>
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

// The names of this process' threads.
std::multiset<std::string> threadNames() {
    std::multiset<std::string> names;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task", error)) {
        std::string name;
        if (std::getline(std::ifstream(entry.path() / "comm"), name)) names.insert(name);
    }
    return names;
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

TEST(MainQueue, RunsTasksInTheirOrderAndTasksOfTasksInALaterTurn) {
    LinuxMainQueue queue;
    std::string told;
    queue.async([&] {
        told += "a";
        queue.async([&] { told += "c"; });
    });
    queue.async([&] { told += "b"; });
    g_main_context_iteration(nullptr, FALSE);
    EXPECT_EQ(told, "ab");
    g_main_context_iteration(nullptr, FALSE);
    EXPECT_EQ(told, "abc");
    g_main_context_iteration(nullptr, FALSE);
    EXPECT_EQ(told, "abc");
}

struct Recurring {
    LinuxMainQueue& queue;
    const bool& isOver;
    void operator()() const {
        if (!isOver) queue.async(*this);
    }
};

TEST(MainQueue, LetsOtherSourcesHaveTheirTurnWhileTasksKeepComing) {
    LinuxMainQueue queue;
    bool isOver = false;
    queue.async(Recurring{queue, isOver});
    g_idle_add_full(
        G_PRIORITY_DEFAULT,
        [](gpointer over) -> gboolean {
            *static_cast<bool*>(over) = true;
            return G_SOURCE_REMOVE;
        },
        &isOver, nullptr);
    EXPECT_TRUE(runUntil([&] { return isOver; }));
}

TEST(MainQueue, GetsTenThousandTasksOfAnotherThreadOnceEachAndInOrder) {
    constexpr int kTasks = 10'000;
    LinuxMainQueue queue;
    std::vector<int> arrived;
    std::thread sender([&] {
        for (int number = 0; number < kTasks; ++number) {
            queue.async([&arrived, number] { arrived.push_back(number); });
        }
    });
    EXPECT_TRUE(runUntil([&] { return arrived.size() >= kTasks; }));
    sender.join();
    g_main_context_iteration(nullptr, FALSE);
    ASSERT_EQ(arrived.size(), static_cast<std::size_t>(kTasks));
    for (int number = 0; number < kTasks; ++number)
        ASSERT_EQ(arrived[static_cast<std::size_t>(number)], number);
}

TEST(MainQueue, IsWokenOnceForManyTasksAndNotAgain) {
    LinuxMainQueue queue;
    int runs = 0;
    for (int task = 0; task < 100; ++task)
        queue.async([&] { ++runs; });
    EXPECT_TRUE(g_main_context_iteration(nullptr, FALSE));
    EXPECT_EQ(runs, 100);
    EXPECT_FALSE(g_main_context_pending(nullptr));
}

TEST(MainQueue, RunsDelayedTasksByDeadlineAndNotBeforeIt) {
    const LinuxMonotonicClock clock;
    LinuxMainQueue queue;
    std::string told;
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

TEST(MainQueue, RunsNoDelayedTaskThatWasCancelledOrWhoseCancellationWentAway) {
    LinuxMainQueue queue;
    std::string told;
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

TEST(MainQueue, BearsCancellationsThatOutliveIt) {
    Cancellation late;
    {
        LinuxMainQueue queue;
        late = queue.after(1h, [] {});
    }
    late.cancel();
}

TEST(MainQueue, DropsEverythingOnceClosedEvenTheRestOfTheTurn) {
    LinuxMainQueue queue;
    const auto witness = std::make_shared<int>();
    std::string told;
    const auto delayed = queue.after(0ns, [&told, witness] { told += "delayed"; });
    queue.async([&] {
        queue.close();
        told += "closed";
    });
    queue.async([&told, witness] { told += "same turn"; });
    g_main_context_iteration(nullptr, FALSE);
    queue.async([&told, witness] { told += "later"; });
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
    EXPECT_EQ(told, "closed");
    EXPECT_EQ(witness.use_count(), 1);
}

TEST(RepeatingDeadline, TurnsMissedFiringsIntoOneAndStaysOnItsGrid) {
    struct Case {
        const char* name;
        std::chrono::nanoseconds interval, firedAt, next;
    };
    for (const Case& c :
         {Case{"in time", 10ms, 0ms, 10ms}, Case{"a little late", 10ms, 9ms, 10ms},
          Case{"on the next instant", 10ms, 10ms, 20ms}, Case{"after a sleep", 10ms, 57ms, 60ms},
          Case{"before its time", 10ms, -5ms, 10ms}, Case{"no interval at all", 0ms, 5ns, 6ns},
          Case{"for ever", std::chrono::nanoseconds::max(), 5ns, std::chrono::nanoseconds::max() - 1h}}) {
        const MonotonicInstant start{1h};
        RepeatingDeadline deadline(start, c.interval);
        deadline.fire(start + c.firedAt);
        EXPECT_EQ(deadline.next() - start, c.next) << c.name;
    }
}

TEST(SerialQueue, RunsTasksOneAfterAnotherInTheirOrder) {
    LinuxSerialQueue queue("serial");
    std::atomic<int> inside = 0;
    std::vector<int> order;
    std::promise<void> done;
    for (int number = 0; number < 1000; ++number) {
        queue.async([&, number] {
            EXPECT_EQ(inside.fetch_add(1), 0);
            order.push_back(number);
            inside.fetch_sub(1);
        });
    }
    queue.async([&] { done.set_value(); });
    done.get_future().wait();
    ASSERT_EQ(order.size(), 1000u);
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(SerialQueue, HasAThreadWithItsLabelThatGivesWay) {
    LinuxSerialQueue queue("sampler of the machine");
    std::promise<int> niceness;
    queue.async([&] { niceness.set_value(getpriority(PRIO_PROCESS, 0)); });
    EXPECT_GT(niceness.get_future().get(), getpriority(PRIO_PROCESS, 0));
    EXPECT_TRUE(threadNames().contains("sampler of the "));
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
    std::promise<void> drained;
    queue.async([&] { drained.set_value(); });
    drained.get_future().wait();

    // The second stands for all that were missed; each later one is in an interval of its own.
    EXPECT_GE(firings[1], before + 5 * kInterval);
    for (std::size_t index = 2; index < firings.size(); ++index) {
        const auto slot = (firings[index] - before) / kInterval;
        const auto slotBefore = (firings[index - 1] - after) / kInterval;
        EXPECT_GT(slot, slotBefore) << index;
    }
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
    std::promise<void> began;
    std::promise<void> goOn;
    std::atomic<int> firings = 0;
    auto timer = queue.every(1ms, [&, mayGoOn = goOn.get_future().share()] {
        if (++firings == 1) began.set_value();
        mayGoOn.wait();
    });
    began.get_future().wait();
    timer.reset();
    goOn.set_value();
    std::promise<void> drained;
    queue.async([&] { drained.set_value(); });
    drained.get_future().wait();
    EXPECT_EQ(firings, 1);
}

TEST(SerialQueue, FinishesTheRunningTaskAndDropsTheOthersWhenDestroyed) {
    std::promise<void> began;
    std::promise<void> goOn;
    const auto witness = std::make_shared<int>();
    std::atomic<bool> isFinished = false;
    std::atomic<bool> ranMore = false;
    auto* const queue = new LinuxSerialQueue("busy");
    queue->async([&] {
        began.set_value();
        goOn.get_future().wait();
        isFinished = true;
    });
    queue->async([&, witness] { ranMore = true; });
    began.get_future().wait();
    const auto timer = queue->every(1h, [&, witness] { ranMore = true; });
    std::thread destroyer([&] { delete queue; });
    // The destruction has begun once what comes is dropped at once; it cannot end before the task does.
    const auto probe = std::make_shared<int>();
    EXPECT_TRUE(comesToHold([&] {
        const auto before = probe.use_count();
        queue->async([probe] {});
        return probe.use_count() == before;
    }));
    goOn.set_value();
    destroyer.join();
    EXPECT_TRUE(isFinished);
    EXPECT_FALSE(ranMore);
    EXPECT_EQ(probe.use_count(), 1);
    EXPECT_LE(witness.use_count(), 2) << "held at most by the timer, which outlives its queue";
}

TEST(SerialQueue, MayBeDestroyedByItsOwnTask) {
    const auto witness = std::make_shared<int>();
    auto* const queue = new LinuxSerialQueue("short-lived");
    queue->async([queue, witness] { delete queue; });
    EXPECT_TRUE(comesToHold([&] { return witness.use_count() == 1; }));
}

TEST(BackgroundQueue, LetsNoStuckTaskHoldUpAnother) {
    LinuxBackgroundQueue queue;
    std::promise<void> goOn;
    auto mayGoOn = goOn.get_future().share();
    std::atomic<int> stuck = 0;
    for (int task = 0; task < 8; ++task) {
        queue.async([&stuck, mayGoOn] {
            ++stuck;
            mayGoOn.wait();
            --stuck;
        });
    }
    std::promise<void> ran;
    queue.async([&] { ran.set_value(); });
    ran.get_future().wait();
    EXPECT_TRUE(comesToHold([&] { return stuck == 8; }));
    goOn.set_value();
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
    std::promise<void> ran;
    queue.async([&] { ran.set_value(); });
    ran.get_future().wait();
    EXPECT_TRUE(comesToHold([] { return threadNames().count("background") == 0; }));
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
        timekeepers = threadNames().count("background time");
        early.set_value(clock.now());
    });
    EXPECT_GE(early.get_future().get() - start, 10ms);
    EXPECT_EQ(timekeepers, 1u);
    EXPECT_GE(late.get_future().get() - start, 60ms);
    EXPECT_TRUE(comesToHold([] { return threadNames().count("background time") == 0; }));
}

TEST(BackgroundQueue, RunsEachOfManyTasksOnceWhoeverSendsThem) {
    constexpr int kSenders = 4;
    constexpr int kTasks = 500;
    LinuxBackgroundQueue queue;
    std::atomic<int> runs = 0;
    std::vector<std::thread> senders;
    for (int sender = 0; sender < kSenders; ++sender) {
        senders.emplace_back([&] {
            for (int task = 0; task < kTasks; ++task) {
                if (task % 2 == 0) {
                    queue.async([&] { ++runs; });
                } else {
                    queue.asyncAfter(std::chrono::microseconds(task), [&] { ++runs; });
                }
            }
        });
    }
    for (std::thread& sender : senders)
        sender.join();
    EXPECT_TRUE(comesToHold([&] { return runs == kSenders * kTasks; }));
}

TEST(Dispatch, GoesAwayUnderAStuckTaskThatStillUsesItsQueues) {
    std::promise<void> began;
    std::promise<void> goOn;
    const auto witness = std::make_shared<int>();
    auto dispatch = std::make_unique<LinuxDispatch>();
    LinuxMainQueue& mainQueue = dispatch->mainQueue();
    LinuxBackgroundQueue& backgroundQueue = dispatch->backgroundQueue();
    backgroundQueue.async([&, witness, mayGoOn = goOn.get_future().share()] {
        began.set_value();
        mayGoOn.wait();
        mainQueue.async([witness] { FAIL(); });
        backgroundQueue.async([witness] { FAIL(); });
        backgroundQueue.asyncAfter(0ns, [witness] { FAIL(); });
    });
    began.get_future().wait();
    backgroundQueue.asyncAfter(1h, [witness] { FAIL(); });
    dispatch.reset();
    goOn.set_value();
    EXPECT_TRUE(comesToHold([&] { return witness.use_count() == 1; }));
}

TEST(Application, RunsUntilTerminatedAndEndsWithSuccess) {
    LinuxMainQueue queue;
    LinuxApplication application(queue);
    std::string told;
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

TEST(Clocks, AgreeWithTheLibrarysOwn) {
    const auto wallBefore = std::chrono::system_clock::now().time_since_epoch();
    const auto wall = LinuxWallClock().now().time_since_epoch();
    EXPECT_LE(wallBefore, wall);
    EXPECT_LE(wall, std::chrono::system_clock::now().time_since_epoch());
    const auto monotonicBefore = std::chrono::steady_clock::now().time_since_epoch();
    const auto monotonic = LinuxMonotonicClock().now().time_since_epoch();
    EXPECT_LE(monotonicBefore, monotonic);
    EXPECT_LE(monotonic, std::chrono::steady_clock::now().time_since_epoch());
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
