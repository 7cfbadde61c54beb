#include "platform/linux/ReadBehind.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <atomic>
#include <future>
#include <optional>
#include <stdexcept>
#include <thread>
#include <vector>

#include "FakeSystemCalls.h"
#include "platform/linux/SlowReading.h"
#include "platform/linux/ThreadLane.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using Nanoseconds = std::chrono::nanoseconds;

// A source whose lane works when the test says so, and which counts its answers from 1.
struct Source {
    std::optional<Task> posted;
    bool isDue = true;
    bool fails = false;
    int answers = 0;
};

struct ManualLane final : public Lane {
    explicit ManualLane(std::shared_ptr<Source> of) : source(std::move(of)) {}
    bool post(Task task) override {
        EXPECT_FALSE(source->posted) << "one request at a time";
        source->posted.emplace(std::move(task));
        return true;
    }
    std::shared_ptr<Source> source;
};

// Grants time: the test says what happens meanwhile.
class ScriptedWaiter final : public LaneWaiter {
 public:
    std::vector<Nanoseconds> granted;
    bool areAllIn = false;
    std::function<void(Nanoseconds budget)> meanwhile = [](Nanoseconds) {};

    void arrived() override {}
    void wait(const std::function<bool()>& allIn, Nanoseconds budget) override {
        EXPECT_FALSE(allIn()) << "waited for nothing";
        granted.push_back(budget);
        meanwhile(budget);
        areAllIn = allIn();
    }
};

class ReadBehindTest : public testing::Test {
 protected:
    using Reading = SlowReading<int>;

    // A request that was never worked on holds its source, which holds the request.
    void TearDown() override {
        for (const auto& source : {a, b, c})
            source->posted.reset();
    }

    FakeSystemCalls system;
    std::shared_ptr<ScriptedWaiter> waiter = std::make_shared<ScriptedWaiter>();
    std::optional<ReadBehind> readBehind{std::in_place, waiter, system.calls.now};
    Nanoseconds workTime{0};
    std::shared_ptr<Source> a = std::make_shared<Source>();
    std::shared_ptr<Source> b = std::make_shared<Source>();
    std::shared_ptr<Source> c = std::make_shared<Source>();

    std::unique_ptr<Reading> readingOf(const std::shared_ptr<Source>& source,
                                       ReadBehind::AskedBy askedBy = nullptr) {
        const auto read = [this, source] {
            if (source->fails) throw std::runtime_error("no memory");
            system.advance(workTime);
            return ++source->answers;
        };
        return std::make_unique<Reading>(*readBehind, std::make_unique<ManualLane>(source), askedBy, read, 0,
                                         [source](int, MonotonicInstant) { return source->isDue; });
    }

    // The lane does its work and takes this long, if it has any.
    void finish(const std::shared_ptr<Source>& source, Nanoseconds time) {
        workTime = time;
        if (auto task = std::exchange(source->posted, std::nullopt)) (*task)();
    }
};

TEST_F(ReadBehindTest, QuickSourcesAnswerWithinTheTickThatAskedWhateverElseIsStuck) {
    const auto first = readingOf(a);
    const auto second = readingOf(b);
    const auto stuck = readingOf(c);
    waiter->meanwhile = [&](Nanoseconds budget) {
        EXPECT_TRUE(a->posted && b->posted && c->posted) << "all are asked before anyone waits";
        finish(a, 10ms);
        finish(b, 1ms);
        if (waiter->granted.size() == 1) system.advance(budget);
    };
    for (int tick = 1; tick <= 5; ++tick) {
        const TickToken token{static_cast<std::uint64_t>(tick)};
        for (const int question : {1, 2})
            EXPECT_EQ(first->get(token), tick) << question;
        EXPECT_EQ(second->get(token), tick);
        EXPECT_EQ(stuck->get(token), 0);
    }
    EXPECT_EQ(waiter->granted, std::vector<Nanoseconds>(5, 45ms)) << "one wait in each tick";
    waiter->meanwhile = [&](Nanoseconds) { finish(a, 1ms); };
    EXPECT_EQ(first->get(TickToken::none()), 6) << "outside a tick each question has its own request";
    EXPECT_EQ(first->get(TickToken::none()), 7);
    EXPECT_EQ(waiter->granted.size(), 7u);
}

TEST_F(ReadBehindTest, ASlowSourceAnswersLaterAndIsNotWaitedForUntilItIsQuickAgain) {
    const auto slow = readingOf(a);
    waiter->meanwhile = [&](Nanoseconds budget) { system.advance(budget); };
    EXPECT_EQ(slow->get({1}), 0) << "the neutral value before the first answer";
    EXPECT_EQ(slow->get({2}), 0);
    EXPECT_EQ(waiter->granted.size(), 1u) << "what is still busy is not asked again";
    finish(a, 200ms);
    EXPECT_EQ(slow->get({3}), 1) << "the finished answer, while a new request is on its way";
    EXPECT_TRUE(a->posted);
    EXPECT_EQ(waiter->granted.size(), 1u);
    finish(a, 45ms);
    waiter->meanwhile = [&](Nanoseconds) { finish(a, 1ms); };
    EXPECT_EQ(slow->get({4}), 3);
    EXPECT_EQ(waiter->granted.size(), 2u) << "quick again, so waited for again";
}

TEST_F(ReadBehindTest, ATickWaitsNoLongerThanItsBudgetInAllAndOnlyForWhatIsDue) {
    const auto first = readingOf(a);
    const auto second = readingOf(b);
    b->isDue = false;
    waiter->meanwhile = [&](Nanoseconds) { finish(a, 30ms); };
    EXPECT_EQ(second->get({1}), 0);
    EXPECT_FALSE(b->posted);
    EXPECT_EQ(first->get({1}), 1);
    const auto third = readingOf(c);
    b->isDue = true;
    waiter->meanwhile = [&](Nanoseconds budget) { system.advance(budget); };
    EXPECT_EQ(second->get({1}), 0);
    EXPECT_EQ(third->get({1}), 0);
    EXPECT_EQ(waiter->granted, (std::vector<Nanoseconds>{45ms, 15ms}));
    EXPECT_TRUE(c->posted) << "asked, though there is no time left to wait";
}

TEST_F(ReadBehindTest, ATickAsksBeforehandForAllThatItIsGoingToRead) {
    const auto always = readingOf(a);
    const auto volumes = readingOf(b, &TickReads::volumes);
    const auto battery = readingOf(c, &TickReads::battery);
    waiter->meanwhile = [&](Nanoseconds) {
        for (const auto& source : {a, b, c})
            finish(source, 1ms);
    };
    const TickToken reading{1, {.volumes = true}};
    EXPECT_EQ(always->get(reading), 1);
    EXPECT_EQ(b->answers, 1) << "together with what every tick reads";
    EXPECT_EQ(volumes->get(reading), 1) << "and not once more";
    EXPECT_EQ(waiter->granted.size(), 1u);
    EXPECT_EQ(always->get({2}), 2);
    EXPECT_EQ(b->answers, 1) << "a tick that does not read them asks for nothing";
    EXPECT_EQ(battery->get({2}), 1) << "what was not announced is asked when it is wanted";
    EXPECT_EQ(battery->get({3}), 2) << "also as the first question of a tick";
}

TEST_F(ReadBehindTest, WhatIsReadSeldomIsAskedOnceAheadAndNotWaitedFor) {
    const auto volumes = readingOf(b, &TickReads::volumes);
    const auto always = readingOf(a);
    volumes->askAhead();
    waiter->meanwhile = [&](Nanoseconds) { finish(a, 1ms); };
    EXPECT_EQ(always->get({1}), 1);
    EXPECT_TRUE(waiter->areAllIn) << "but for what is asked ahead";
    ASSERT_TRUE(b->posted);
    finish(b, 250ms);
    EXPECT_EQ(always->get({2}), 2);
    EXPECT_FALSE(b->posted) << "once";
    EXPECT_EQ(volumes->get({3, {.volumes = true}}), 1)
        << "the answer from ahead, where the new one is too slow";
}

TEST_F(ReadBehindTest, AFailedReadingLeavesTheLastAnswerAndALateOneHarmsNobody) {
    auto failing = readingOf(a);
    waiter->meanwhile = [&](Nanoseconds) { finish(a, 1ms); };
    EXPECT_EQ(failing->get({1}), 1);
    a->fails = true;
    EXPECT_EQ(failing->get({2}), 1);
    EXPECT_EQ(failing->get({3}), 1);
    EXPECT_EQ(waiter->granted.size(), 3u) << "and it is asked again";
    waiter->meanwhile = [](Nanoseconds) {};
    failing->get({4});
    failing.reset();
    readBehind.reset();
    a->fails = false;
    finish(a, 1ms);
    EXPECT_EQ(a->answers, 2) << "when everything else has gone";
}

TEST(ThreadLane, RunsOnAThreadThatTakesNoSignalsAndGoesAwayWithoutWaitingForAStuckTask) {
    // What a stuck source shares with its test.
    struct Stuck {
        std::promise<bool> begun;
        std::promise<void> released;
        std::promise<void> ended;
        std::atomic<bool> ranWaiting{false};
    };
    const auto stuck = std::make_shared<Stuck>();
    auto lane = std::make_optional<ThreadLane>("test");
    ASSERT_TRUE(lane->post([stuck, test = std::this_thread::get_id()] {
        sigset_t mask;
        pthread_sigmask(SIG_SETMASK, nullptr, &mask);
        stuck->begun.set_value(sigismember(&mask, SIGTERM) == 1 && std::this_thread::get_id() != test);
        stuck->released.get_future().wait();
        stuck->ended.set_value();
    }));
    EXPECT_TRUE(stuck->begun.get_future().get());
    EXPECT_TRUE(lane->post([stuck] { stuck->ranWaiting = true; })) << "one may wait";
    EXPECT_FALSE(lane->post([] {})) << "but not two";
    lane.reset();
    stuck->released.set_value();
    stuck->ended.get_future().wait();
    EXPECT_FALSE(stuck->ranWaiting);
}

}  // namespace
}  // namespace norvane
