#include "platform/linux/ReadBehind.h"

#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <vector>

#include "FakeSystemCalls.h"
#include "platform/linux/SlowReading.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using Nanoseconds = std::chrono::nanoseconds;

// A lane whose task runs when the test says so.
class ManualLane final : public Lane {
 public:
    using Slot = std::shared_ptr<std::optional<Task>>;
    explicit ManualLane(Slot slot) : slot_(std::move(slot)) {}
    bool post(Task task) override {
        EXPECT_FALSE(*slot_) << "one request at a time";
        slot_->emplace(std::move(task));
        return true;
    }

 private:
    Slot slot_;
};

// Grants time: the test says what happens meanwhile.
class ScriptedWaiter final : public LaneWaiter {
 public:
    std::vector<Nanoseconds> granted;
    std::function<void(Nanoseconds budget)> meanwhile = [](Nanoseconds) {};

    void arrived() override {}
    void wait(const std::function<bool()>& allIn, Nanoseconds budget) override {
        EXPECT_FALSE(allIn()) << "waited for nothing";
        granted.push_back(budget);
        meanwhile(budget);
    }
};

class ReadBehindTest : public testing::Test {
 protected:
    // A source that counts its answers from 1.
    struct Source {
        ManualLane::Slot slot = std::make_shared<std::optional<Task>>();
        std::shared_ptr<bool> isDue = std::make_shared<bool>(true);
        std::shared_ptr<int> answers = std::make_shared<int>(0);
        std::unique_ptr<SlowReading<int>> reading;

        bool isPosted() const { return slot->has_value(); }
    };

    Source makeSource(ReadBehind::AskedBy askedBy = nullptr) {
        Source source;
        source.reading = std::make_unique<SlowReading<int>>(
            readBehind, std::make_unique<ManualLane>(source.slot), askedBy,
            [this, answers = source.answers] {
                system.advance(workTime);
                return ++*answers;
            },
            0, [isDue = source.isDue](int, MonotonicInstant) { return *isDue; });
        return source;
    }

    // The lane does its work and takes this long.
    void finish(Source& source, Nanoseconds time) {
        ASSERT_TRUE(source.isPosted());
        workTime = time;
        Task task = std::move(**source.slot);
        source.slot->reset();
        task();
    }

    FakeSystemCalls system;
    std::shared_ptr<ScriptedWaiter> waiter = std::make_shared<ScriptedWaiter>();
    ReadBehind readBehind{waiter, system.calls.now};
    Nanoseconds workTime{0};
};

TEST_F(ReadBehindTest, QuickSourcesAnswerWithinTheTickThatAsked) {
    Source a = makeSource();
    Source b = makeSource();
    waiter->meanwhile = [&](Nanoseconds) {
        EXPECT_TRUE(a.isPosted() && b.isPosted()) << "all are asked before anyone waits";
        finish(a, 10ms);
        finish(b, 1ms);
    };
    EXPECT_EQ(a.reading->get({1}), 1);
    EXPECT_EQ(b.reading->get({1}), 1);
    EXPECT_EQ(waiter->granted, std::vector<Nanoseconds>{45ms}) << "one wait for both";
    EXPECT_EQ(a.reading->get({1}), 1) << "one question in a tick";
    EXPECT_EQ(a.reading->get({2}), 2);
}

TEST_F(ReadBehindTest, ASlowSourceAnswersLaterAndIsNotWaitedForUntilItIsQuickAgain) {
    Source a = makeSource();
    waiter->meanwhile = [&](Nanoseconds budget) { system.advance(budget); };
    EXPECT_EQ(a.reading->get({1}), 0) << "the neutral value before the first answer";
    EXPECT_EQ(a.reading->get({2}), 0);
    EXPECT_EQ(waiter->granted.size(), 1u) << "what is still busy is not asked again";

    finish(a, 200ms);
    EXPECT_EQ(a.reading->get({3}), 1) << "the finished answer, while a new request is on its way";
    EXPECT_TRUE(a.isPosted());
    EXPECT_EQ(waiter->granted.size(), 1u);

    finish(a, 45ms);
    waiter->meanwhile = [&](Nanoseconds) { finish(a, 1ms); };
    EXPECT_EQ(a.reading->get({4}), 3);
    EXPECT_EQ(waiter->granted.size(), 2u) << "quick again, so waited for again";
}

TEST_F(ReadBehindTest, AStuckSourceTakesNothingElseWithIt) {
    Source stuck = makeSource();
    Source quick = makeSource();
    waiter->meanwhile = [&](Nanoseconds budget) {
        finish(quick, 1ms);
        if (stuck.isPosted()) system.advance(budget - 1ms);
    };
    for (std::uint64_t tick = 1; tick <= 5; ++tick) {
        EXPECT_EQ(stuck.reading->get({tick}), 0);
        EXPECT_EQ(quick.reading->get({tick}), static_cast<int>(tick));
    }
    EXPECT_EQ(waiter->granted.size(), 5u);
}

TEST_F(ReadBehindTest, ATickWaitsNoLongerThanItsBudgetInAll) {
    Source first = makeSource();
    Source second = makeSource();
    Source third = makeSource();
    *second.isDue = *third.isDue = false;
    waiter->meanwhile = [&](Nanoseconds) { finish(first, 30ms); };
    EXPECT_EQ(first.reading->get({1}), 1);

    *second.isDue = *third.isDue = true;
    waiter->meanwhile = [&](Nanoseconds budget) { system.advance(budget); };
    EXPECT_EQ(second.reading->get({1}), 0);
    EXPECT_EQ(third.reading->get({1}), 0);
    EXPECT_EQ(waiter->granted, (std::vector<Nanoseconds>{45ms, 15ms}));
    EXPECT_TRUE(third.isPosted()) << "asked, though there is no time left to wait";
}

TEST_F(ReadBehindTest, ATickAsksBeforehandForAllThatItIsGoingToRead) {
    Source always = makeSource();
    Source volumes = makeSource(&TickReads::volumes);
    Source battery = makeSource(&TickReads::battery);
    waiter->meanwhile = [&](Nanoseconds) {
        if (always.isPosted()) finish(always, 1ms);
        if (volumes.isPosted()) finish(volumes, 1ms);
        if (battery.isPosted()) finish(battery, 1ms);
    };
    const TickToken reading{1, {.volumes = true}};
    EXPECT_EQ(always.reading->get(reading), 1);
    EXPECT_EQ(*volumes.answers, 1) << "together with what every tick reads";
    EXPECT_EQ(volumes.reading->get(reading), 1) << "and not once more";
    EXPECT_EQ(waiter->granted.size(), 1u);

    EXPECT_EQ(always.reading->get({2}), 2);
    EXPECT_EQ(*volumes.answers, 1) << "a tick that does not read them asks for nothing";
    EXPECT_EQ(battery.reading->get({2}), 1) << "what was not announced is asked when it is wanted";
    EXPECT_EQ(battery.reading->get({3}), 2) << "also as the first question of a tick";
    EXPECT_EQ(always.reading->get({3}), 3);
}

TEST_F(ReadBehindTest, WhatIsReadSeldomIsAskedOnceAheadAndNotWaitedFor) {
    Source volumes = makeSource(&TickReads::volumes);
    Source always = makeSource();
    volumes.reading->askAhead();
    waiter->meanwhile = [&](Nanoseconds) { finish(always, 1ms); };
    EXPECT_EQ(always.reading->get({1}), 1);
    ASSERT_TRUE(volumes.isPosted());
    EXPECT_EQ(waiter->granted.size(), 1u);
    EXPECT_EQ(always.reading->get({2}), 2) << "the other one goes on without it";

    finish(volumes, 250ms);
    EXPECT_EQ(always.reading->get({3}), 3);
    EXPECT_FALSE(volumes.isPosted()) << "once";
    waiter->meanwhile = [&](Nanoseconds) { finish(always, 1ms); };
    const TickToken reading{4, {.volumes = true}};
    EXPECT_EQ(always.reading->get(reading), 4);
    EXPECT_EQ(volumes.reading->get(reading), 1) << "the answer from ahead, where the new one is too slow";
}

TEST_F(ReadBehindTest, OutsideATickEachQuestionHasItsOwnRequestAndBudget) {
    Source a = makeSource();
    Source b = makeSource();
    waiter->meanwhile = [&](Nanoseconds) { finish(a, 30ms); };
    EXPECT_EQ(a.reading->get(TickToken::none()), 1);
    EXPECT_EQ(a.reading->get(TickToken::none()), 2);
    EXPECT_EQ(waiter->granted, (std::vector<Nanoseconds>{45ms, 45ms}));
    EXPECT_FALSE(b.isPosted());
}

TEST_F(ReadBehindTest, ASourceThatIsNotDueIsLeftAsleep) {
    Source a = makeSource();
    *a.isDue = false;
    EXPECT_EQ(a.reading->get({1}), 0);
    EXPECT_FALSE(a.isPosted());
    EXPECT_TRUE(waiter->granted.empty());
}

TEST_F(ReadBehindTest, AFailedReadingLeavesTheLastAnswer) {
    auto slot = std::make_shared<std::optional<Task>>();
    SlowReading<int> reading(
        readBehind, std::make_unique<ManualLane>(slot), nullptr,
        []() -> int { throw std::runtime_error("no memory"); }, 7,
        [](int, MonotonicInstant) { return true; });
    waiter->meanwhile = [&](Nanoseconds) {
        Task task = std::move(**slot);
        slot->reset();
        task();
    };
    EXPECT_EQ(reading.get({1}), 7);
    EXPECT_EQ(reading.get({2}), 7);
    EXPECT_EQ(waiter->granted.size(), 2u) << "and it is asked again";
}

TEST_F(ReadBehindTest, AnAnswerMayComeWhenEverythingElseHasGone) {
    ManualLane::Slot slot;
    auto answered = std::make_shared<bool>(false);
    {
        ReadBehind gone(waiter, system.calls.now);
        slot = std::make_shared<std::optional<Task>>();
        SlowReading<int> reading(
            gone, std::make_unique<ManualLane>(slot), nullptr,
            [answered] {
                *answered = true;
                return 1;
            },
            0, [](int, MonotonicInstant) { return true; });
        reading.get({1});
    }
    (**slot)();
    EXPECT_TRUE(*answered);
}

}  // namespace
}  // namespace norvane
