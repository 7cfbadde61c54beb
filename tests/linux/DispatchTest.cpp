#include <gtest/gtest.h>

#include <sys/resource.h>
#include <unistd.h>
#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <future>
#include <latch>
#include <set>
#include <thread>

#include "linux/RunLoop.h"
#include "platform/linux/LinuxApplication.h"
#include "platform/linux/LinuxDispatch.h"
#include "platform/linux/LinuxMonotonicClock.h"
#include "platform/linux/LinuxSerialQueue.h"
#include "platform/linux/LinuxUUIDSource.h"
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

class MainQueueTest : public testing::Test {
 protected:
    std::string told;
    LinuxMainQueue queue;
    const LinuxMonotonicClock clock;
};

TEST_F(MainQueueTest, GetsTasksOfAnotherThreadInOrderWhileOtherSourcesHaveTheirTurn) {
    constexpr std::size_t kTasks = 10'000;
    std::vector<std::size_t> arrived;
    std::function<void()> recur = [&] {
        if (told.empty()) queue.async(recur);
    };
    recur();
    const auto tell = [](gpointer what) -> gboolean {
        *static_cast<std::string*>(what) = "over";
        return G_SOURCE_REMOVE;
    };
    g_idle_add_full(G_PRIORITY_DEFAULT, tell, &told, nullptr);
    std::thread sender([&] {
        for (std::size_t number = 0; number < kTasks; ++number)
            queue.async([&arrived, number] { arrived.push_back(number); });
    });
    EXPECT_TRUE(runUntil([&] { return arrived.size() >= kTasks && !told.empty(); }));
    sender.join();
    EXPECT_EQ(std::adjacent_find(arrived.begin(), arrived.end(), std::greater_equal<>()), arrived.end());
}

TEST_F(MainQueueTest, RunsDelayedTasksByDeadlineUnlessTheyAreCancelled) {
    Cancellation outliving = std::make_unique<LinuxMainQueue>()->after(1h, [] {});
    outliving.cancel();
    const auto start = clock.now();
    const auto late = queue.after(40ms, [&] {
        told += "c";
        EXPECT_GE(clock.now() - start, 40ms);
    });
    auto bySibling = queue.after(11ms, [&] { told += "sibling"; });
    Cancellation first = queue.after(-1s, [&] {
        first.cancel();
        bySibling.cancel();
        told += "ab";
    });
    const auto never = queue.after(std::chrono::nanoseconds::max(), [&] { told += "never"; });
    static_cast<void>(queue.after(1ms, [&] { told += "destroyed"; }));
    EXPECT_TRUE(runUntil([&] { return told.size() >= 3; }));
    EXPECT_EQ(told, "abc");
}

TEST_F(MainQueueTest, DropsEverythingOnceClosedEvenTheRestOfTheTurn) {
    const auto witness = std::make_shared<int>();
    const auto delayed = queue.after(0ns, [this, witness] { told += "delayed"; });
    queue.async([&] {
        queue.close();
        told += "closed";
    });
    queue.async([this, witness] { told += "same turn"; });
    EXPECT_TRUE(runUntil([&] { return !told.empty(); }));
    queue.async([this, witness] { told += "later"; });
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
    EXPECT_EQ(told, "closed");
    EXPECT_EQ(witness.use_count(), 1);
}

TEST(RepeatingDeadline, TurnsMissedFiringsIntoOneAndStaysOnItsGrid) {
    using Time = std::chrono::nanoseconds;
    const auto next = [](Time interval, Time firedAt) {
        RepeatingDeadline deadline(MonotonicInstant(1h), interval);
        deadline.fire(MonotonicInstant(1h + firedAt));
        return deadline.next() - MonotonicInstant(1h);
    };
    EXPECT_EQ(next(10ms, 10ms), 20ms);
    EXPECT_EQ(next(10ms, 57ms), 60ms) << "after a sleep";
    EXPECT_EQ(next(0ms, 5ns), 6ns);
    EXPECT_EQ(next(Time::max(), 5ns), Time::max() - 1h);
}

TEST(SerialQueue, RunsTasksInOrderAndATimerUntilItIsDestroyedWithinItsOwnTask) {
    std::vector<int> order;  // without a lock: a second thread would be seen by the thread sanitizer
    const auto witness = std::make_shared<int>();
    std::atomic<int> firings = 0;
    std::unique_ptr<RepeatingTimer> timer;
    LinuxSerialQueue queue("sampler of the machine");  // goes first, with its thread
    for (int number = 0; number < 1000; ++number)
        queue.async([&, number] { order.push_back(number); });
    queue.async([&, ours = getpriority(PRIO_PROCESS, 0)] {
        EXPECT_EQ(order.size(), 1000u);
        EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
        EXPECT_GT(getpriority(PRIO_PROCESS, 0), ours) << "it gives way";
        EXPECT_EQ(threadsNamed("sampler of the "), 1u);
        timer = queue.every(1ms, [&, witness] {
            if (++firings < 3) return;
            timer.reset();
            EXPECT_GT(witness.use_count(), 1) << "the running task is whole to its end";
        });
    });
    EXPECT_TRUE(runUntil([&] { return firings == 3 && witness.use_count() == 1; }));
}

TEST(SerialQueue, FinishesTheRunningTaskAndDropsTheOthersWhenDestroyed) {
    std::latch began(1);
    std::latch goOn(1);
    const auto witness = std::make_shared<int>();
    std::atomic<int> finished = 0;
    auto* const queue = new LinuxSerialQueue("busy");
    auto ended = queue->every(1ms, [&] {
        began.count_down();
        goOn.wait();
        ++finished;
    });
    queue->async([witness] { FAIL(); });
    began.wait();
    ended.reset();  // from another thread, without waiting for its firing
    std::thread destroyer([&] { delete queue; });
    // The destruction has begun once what comes is dropped at once; it cannot end before the task does.
    const auto probe = std::make_shared<int>();
    EXPECT_TRUE(runUntil([&] {
        const auto before = probe.use_count();
        queue->async([probe] {});
        return probe.use_count() == before;
    }));
    goOn.count_down();
    destroyer.join();
    EXPECT_EQ(finished, 1);
    EXPECT_EQ(probe.use_count() + witness.use_count(), 2);
    auto* const shortLived = new LinuxSerialQueue("short-lived");
    shortLived->async([shortLived, probe] { delete shortLived; });
    EXPECT_TRUE(runUntil([&] { return probe.use_count() == 1; })) << "destroyed by its own task";
}

TEST(BackgroundQueue, LetsNoStuckTaskHoldUpAnotherAndEndsItsThreadsAfterThem) {
    const LinuxMonotonicClock clock;
    LinuxBackgroundQueue queue(1ms);
    std::latch all(8);
    for (int task = 0; task < 8; ++task)
        queue.async([&] { all.arrive_and_wait(); });
    std::atomic<int> ran = 0;
    queue.asyncAfter(40ms, [&, start = clock.now()] {
        EXPECT_EQ(++ran, 2);
        EXPECT_GE(clock.now() - start, 40ms);
    });
    queue.asyncAfter(10ms, [&] {
        EXPECT_EQ(++ran, 1);
        EXPECT_EQ(threadsNamed("background time"), 1u);
    });
    EXPECT_TRUE(runUntil(
        [&] { return ran == 2 && threadsNamed("background") + threadsNamed("background time") == 0; }));
}

TEST(Dispatch, GoesAwayUnderAStuckTaskThatStillUsesItsQueues) {
    std::latch began(1);
    std::promise<void> goOn;
    const auto witness = std::make_shared<int>();
    auto dispatch = std::make_unique<LinuxDispatch>();
    const auto never = [witness] { FAIL(); };
    dispatch->backgroundQueue().async([&main = dispatch->mainQueue(),
                                       &background = dispatch->backgroundQueue(), &began, never,
                                       mayGoOn = goOn.get_future().share()] {
        began.count_down();
        mayGoOn.wait();
        main.async(never);
        background.async(never);
        background.asyncAfter(0ns, never);
    });
    began.wait();
    dispatch->backgroundQueue().asyncAfter(1h, never);
    dispatch.reset();
    goOn.set_value();
    EXPECT_TRUE(runUntil([&] { return witness.use_count() == 2; })) << "held by this test alone";
}

TEST(Application, EndsWithSuccessWhenTerminatedOrOnASignalAndBearsAReaderThatWentAway) {
    for (const int signal : {0, SIGTERM, SIGINT}) {
        LinuxMainQueue queue;
        LinuxApplication application(queue);
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        close(ends[0]);
        EXPECT_EQ(write(ends[1], "x", 1), -1);
        close(ends[1]);
        queue.async([&] { signal == 0 ? application.terminate() : static_cast<void>(raise(signal)); });
        if (signal == 0) queue.async([] { FAIL() << "too late"; });
        EXPECT_EQ(application.run(), EXIT_SUCCESS);
        raise(signal);  // one more while the process is ending does no harm
    }
}

TEST(UUIDs, AreOfVersion4AndNeverRepeatWithOrWithoutRandomness) {
    LinuxUUIDSource random;
    LinuxUUIDSource without([](std::span<std::uint8_t>) { return false; });
    std::set<std::array<std::uint8_t, 16>> seen;
    for (int round = 0; round < 1000; ++round) {
        for (const UUID& uuid : {random.next(), without.next()})
            EXPECT_TRUE(uuid.bytes[6] >> 4 == 4 && uuid.bytes[8] >> 6 == 2 && seen.insert(uuid.bytes).second);
    }
}

}  // namespace
}  // namespace norvane
