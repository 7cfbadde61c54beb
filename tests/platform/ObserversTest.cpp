#include "platform/Observers.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace norvane {
namespace {

using Log = std::vector<std::string>;

class ObserversTest : public testing::Test {
 protected:
    // An observer that writes down its name and what it heard.
    Cancellation writing(const std::string& name) {
        return observers->add([this, name](int value) { log.push_back(name + std::to_string(value)); });
    }

    std::unique_ptr<Observers<int>> observers = std::make_unique<Observers<int>>();
    Log log;
};

TEST_F(ObserversTest, AreToldInTheOrderInWhichTheyCame) {
    const Cancellation a = writing("a");
    Cancellation b = writing("b");
    const Cancellation c = writing("c");
    observers->tell(1);
    b.cancel();
    observers->tell(2);
    b = writing("b");
    observers->tell(3);
    EXPECT_EQ(log, (Log{"a1", "b1", "c1", "a2", "c2", "a3", "c3", "b3"}));
}

TEST_F(ObserversTest, HearNothingMoreOnceTheyWentEvenInTheSameRound) {
    Cancellation before = writing("before");
    Cancellation itself;
    Cancellation after;
    itself = observers->add([&](int) {
        log.push_back("ends all");
        before.cancel();
        itself.cancel();
        after.cancel();
    });
    after = writing("after");
    const Cancellation last = writing("last");
    observers->tell(1);
    observers->tell(2);
    EXPECT_EQ(log, (Log{"before1", "ends all", "last1", "last2"}));
}

TEST_F(ObserversTest, WhoCameDuringARoundHearOfTheNext) {
    std::vector<Cancellation> more;
    const Cancellation inviting = observers->add([&](int) { more.push_back(writing("new")); });
    observers->tell(1);
    EXPECT_EQ(log, Log{});
    observers->tell(2);
    EXPECT_EQ(log, (Log{"new2"}));
}

TEST_F(ObserversTest, MayTellAgain) {
    const Cancellation a = observers->add([&](int value) {
        if (value < 3) observers->tell(value + 1);
    });
    const Cancellation b = writing("b");
    observers->tell(1);
    EXPECT_EQ(log, (Log{"b3", "b2", "b1"}));
}

TEST_F(ObserversTest, MayOutliveTheListAndEndIt) {
    const Cancellation ending = observers->add([&](int) { observers.reset(); });
    Cancellation after = observers->add([](int) {});
    observers->tell(1);
    EXPECT_EQ(observers, nullptr);
    after.cancel();
}

TEST_F(ObserversTest, KeepWhatTheyHoldUntilTheyHaveReturned) {
    // The subscription is all that holds the observer; ending it must not pull the ground from under the
    // call.
    Cancellation subscription;
    auto held = std::make_shared<std::string>("still here");
    const std::weak_ptr<std::string> watched = held;
    subscription = observers->add([this, &subscription, held](int) {
        subscription.cancel();
        log.push_back(*held);
    });
    held.reset();
    observers->tell(1);
    EXPECT_EQ(log, (Log{"still here"}));
    EXPECT_TRUE(watched.expired());
}

}  // namespace
}  // namespace norvane
