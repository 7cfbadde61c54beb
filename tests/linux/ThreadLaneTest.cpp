#include "platform/linux/ThreadLane.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <atomic>
#include <future>
#include <memory>
#include <optional>
#include <thread>

#include "platform/linux/BlockingLaneWaiter.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

TEST(ThreadLane, RunsTasksOnOneThreadOfItsOwnThatTakesNoSignals) {
    ThreadLane lane("test");
    std::thread::id threads[2];
    for (std::thread::id& thread : threads) {
        const auto done = std::make_shared<std::promise<std::pair<std::thread::id, bool>>>();
        ASSERT_TRUE(lane.post([done] {
            sigset_t mask;
            pthread_sigmask(SIG_SETMASK, nullptr, &mask);
            done->set_value({std::this_thread::get_id(), sigismember(&mask, SIGTERM) == 1});
        }));
        const auto [id, isBlocked] = done->get_future().get();
        thread = id;
        EXPECT_TRUE(isBlocked);
    }
    EXPECT_EQ(threads[0], threads[1]);
    EXPECT_NE(threads[0], std::this_thread::get_id());
}

// What a stuck source shares with its test.
struct Stuck {
    std::promise<void> begun;
    std::promise<void> released;
    std::promise<void> ended;
    std::atomic<bool> ranWaiting{false};
};

TEST(ThreadLane, GoesAwayWithoutWaitingForAStuckTaskAndDropsTheNext) {
    const auto stuck = std::make_shared<Stuck>();
    auto lane = std::make_optional<ThreadLane>("test");
    ASSERT_TRUE(lane->post([stuck] {
        stuck->begun.set_value();
        stuck->released.get_future().wait();
        stuck->ended.set_value();
    }));
    stuck->begun.get_future().wait();
    EXPECT_TRUE(lane->post([stuck] { stuck->ranWaiting = true; })) << "one may wait";
    EXPECT_FALSE(lane->post([] {})) << "but not two";

    lane.reset();
    stuck->released.set_value();
    stuck->ended.get_future().wait();
    EXPECT_FALSE(stuck->ranWaiting);
}

TEST(BlockingLaneWaiter, WakesUpWhenAllIsIn) {
    BlockingLaneWaiter waiter;
    std::atomic<bool> isIn{false};
    std::thread other([&] {
        isIn = true;
        waiter.arrived();
    });
    waiter.wait([&] { return isIn.load(); }, 1h);
    EXPECT_TRUE(isIn);
    other.join();
}

TEST(BlockingLaneWaiter, GivesUpAtTheEndOfTheBudget) {
    BlockingLaneWaiter waiter;
    waiter.wait([] { return false; }, 1ms);
    SUCCEED() << "it came back";
}

}  // namespace
}  // namespace norvane
