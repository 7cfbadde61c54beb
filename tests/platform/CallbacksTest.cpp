#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "platform/Cancellation.h"
#include "platform/Observers.h"
#include "platform/Published.h"
#include "platform/Task.h"

namespace norvane {
namespace {

TEST(Cancellation, EndsOnceWhatItHoldsAndFirstWhatItHeldBefore) {
    std::string ended;
    std::optional<Cancellation> a{std::in_place, [&ended] { ended += 'a'; }};
    Cancellation b([&ended] { ended += 'b'; });
    b = std::move(*a);
    a.reset();
    EXPECT_EQ(ended, "b");
    Cancellation& itself = b;
    b = std::move(itself);
    EXPECT_TRUE(b);
    b.cancel();
    b.cancel();
    EXPECT_FALSE(b);
    {
        const Cancellation c([&ended] { ended += 'c'; });
    }
    EXPECT_EQ(ended, "bac");
}

TEST(Cancellation, MayBeAskedAgainOrDestroyedWhileItEnds) {
    int ends = 0;
    auto cancellation = std::make_unique<Cancellation>();
    *cancellation = Cancellation([&] {
        ++ends;
        cancellation->cancel();
        cancellation.reset();
    });
    cancellation->cancel();
    EXPECT_EQ(ends, 1);
}

class ObserversTest : public testing::Test {
 protected:
    // An observer that writes down its name and what it heard.
    Cancellation writing(const std::string& name) {
        return observers->add([this, name](int value) { log += name + std::to_string(value) + ' '; });
    }

    std::unique_ptr<Observers<int>> observers = std::make_unique<Observers<int>>();
    std::string log;
};

TEST_F(ObserversTest, AreToldInTheirOrderAndNothingMoreOnceTheyWentEvenInTheSameRound) {
    Cancellation before = writing("before");
    Cancellation itself, after;
    itself = observers->add([&](int) {
        before.cancel();
        itself.cancel();
        after.cancel();
    });
    after = writing("after");
    const Cancellation last = writing("last");
    const Cancellation veryLast = writing("very last");
    observers->tell(1);
    before = writing("again");
    observers->tell(2);
    EXPECT_EQ(log, "before1 last1 very last1 last2 very last2 again2 ");
}

TEST_F(ObserversTest, WhoCameDuringARoundHearOfTheNext) {
    std::vector<Cancellation> more;
    const Cancellation inviting = observers->add([&](int) { more.push_back(writing("new")); });
    observers->tell(1);
    EXPECT_EQ(log, "");
    observers->tell(2);
    EXPECT_EQ(log, "new2 ");
}

TEST_F(ObserversTest, MayTellAgainAndOutliveTheListAndEndIt) {
    const Cancellation a = observers->add([&](int value) {
        if (value < 3) observers->tell(value + 1);
    });
    Cancellation b = writing("b");
    observers->tell(1);
    EXPECT_EQ(log, "b3 b2 b1 ");
    const Cancellation ending = observers->add([&](int) { observers.reset(); });
    observers->tell(3);
    EXPECT_EQ(observers, nullptr);
    b.cancel();
}

// The subscription is all that holds the observer; ending it must not pull the ground from under the call.
TEST_F(ObserversTest, KeepWhatTheyHoldUntilTheyHaveReturned) {
    Cancellation subscription;
    auto held = std::make_shared<std::string>("still here");
    const std::weak_ptr<std::string> watched = held;
    subscription = observers->add([this, &subscription, held](int) {
        subscription.cancel();
        log += *held;
    });
    held.reset();
    observers->tell(1);
    EXPECT_EQ(log, "still here");
    EXPECT_TRUE(watched.expired());
}

// The old value reads the new one as it goes: with the lock still held, this would never end.
TEST(Published, LetsGoOfTheOldValueOutsideOfItsLock) {
    Published<std::shared_ptr<const int>> published;
    int readAtTheEnd = 0;
    published.set(std::shared_ptr<const int>(new int(1), [&](const int* gone) {
        readAtTheEnd = *published.get();
        delete gone;
    }));
    published.set(std::make_shared<const int>(2));
    EXPECT_EQ(readAtTheEnd, 2);
}

TEST(Published, IsReadWholeAndInOrderByAnotherThread) {
    using Pair = std::pair<int, int>;
    constexpr int kWrites = 20'000;
    Published<std::shared_ptr<const Pair>> published(std::make_shared<const Pair>());
    std::atomic<bool> isReading = false;
    int faults = 0;
    std::thread reader([&] {
        // Comes late, misses most, and must end on the last one.
        for (int last = 0; last < kWrites;) {
            const std::shared_ptr<const Pair> now = published.get();
            faults += now->second != 2 * now->first || now->first < last ? 1 : 0;
            last = now->first;
            isReading = true;
        }
    });
    while (!isReading)
        std::this_thread::yield();
    for (int i = 1; i <= kWrites; ++i)
        published.set(std::make_shared<const Pair>(i, 2 * i));
    reader.join();
    EXPECT_EQ(faults, 0);
}

TEST(Task, HandsItsCallableOnWhenItMovesAndDestroysItOnce) {
    int calls = 0;
    const auto first = std::make_shared<int>();
    const auto second = std::make_shared<int>();
    // What is held by a constant is copied by a move, so that whatever is left behind counts until it is
    // destroyed.
    const auto counting = [&calls](const std::shared_ptr<int> held) { return [&calls, held] { ++calls; }; };
    std::optional<Task> from = counting(first);
    Task to = std::move(*from);
    EXPECT_FALSE(*from);
    Task another = counting(second);
    another = std::move(to);  // what it had goes away at once
    EXPECT_EQ(second.use_count(), 1);
    from.reset();
    Task& itself = another;
    another = std::move(itself);
    another();
    another();
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(first.use_count(), 2);
    another = Task();
    EXPECT_FALSE(another);
    EXPECT_EQ(first.use_count(), 1);
}

TEST(Task, TakesWhatOnlyMovesAndFillsItToTheBrim) {
    int got = 0;
    std::array<std::byte, Task::kCapacity - sizeof(int*) - sizeof(std::unique_ptr<int>)> ballast{};
    ballast.back() = std::byte{9};
    Task brim = [&got, owned = std::make_unique<int>(7), ballast] {
        got = *owned + std::to_integer<int>(ballast.back());
    };
    Task moved = std::move(brim);
    moved();
    EXPECT_EQ(got, 16);
}

}  // namespace
}  // namespace norvane
