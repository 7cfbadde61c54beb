#include "platform/Cancellation.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <vector>

namespace norvane {
namespace {

TEST(Cancellation, EndsOnceHoweverOftenItIsAsked) {
    int ends = 0;
    {
        Cancellation cancellation([&ends] { ++ends; });
        EXPECT_TRUE(cancellation);
        cancellation.cancel();
        EXPECT_FALSE(cancellation);
        cancellation.cancel();
        EXPECT_EQ(ends, 1);
    }
    EXPECT_EQ(ends, 1);
    Cancellation().cancel();
}

TEST(Cancellation, MovesItsDutyAndEndsWhatItHeldBefore) {
    std::vector<char> ended;
    std::optional<Cancellation> a{std::in_place, [&ended] { ended.push_back('a'); }};
    Cancellation b([&ended] { ended.push_back('b'); });
    b = std::move(*a);
    EXPECT_EQ(ended, (std::vector{'b'}));
    a.reset();
    EXPECT_EQ(ended, (std::vector{'b'}));

    Cancellation& itself = b;
    b = std::move(itself);
    EXPECT_TRUE(b);
    b.cancel();
    EXPECT_EQ(ended, (std::vector{'b', 'a'}));
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
    EXPECT_EQ(cancellation, nullptr);
}

}  // namespace
}  // namespace norvane
