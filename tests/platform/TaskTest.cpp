#include "platform/Task.h"

#include <gtest/gtest.h>

#include <array>
#include <optional>

namespace norvane {
namespace {

struct Counts {
    int calls = 0;
    int alive = 0;
};

// Counts how many of it there are, and its calls. A moved-from one still counts until it is destroyed.
class Counted {
 public:
    explicit Counted(Counts& counts) : counts_(counts) { ++counts_.alive; }
    Counted(Counted&& other) noexcept : counts_(other.counts_) { ++counts_.alive; }
    Counted(const Counted&) = delete;
    Counted& operator=(Counted&&) = delete;
    ~Counted() { --counts_.alive; }

    void operator()() const { ++counts_.calls; }

 private:
    Counts& counts_;
};

TEST(Task, CallsAnyNumberOfTimesAndDestroysOnce) {
    Counts counts;
    {
        Task task = Counted(counts);
        EXPECT_EQ(counts.alive, 1);
        for (int i = 0; i < 1000; ++i) {
            task();
        }
    }
    EXPECT_EQ(counts.calls, 1000);
    EXPECT_EQ(counts.alive, 0);
}

TEST(Task, HandsItsCallableOnWhenItMoves) {
    Counts first;
    Counts second;
    std::optional<Task> from = Counted(first);
    Task to = std::move(*from);
    EXPECT_FALSE(*from);
    EXPECT_EQ(first.alive, 1);

    Task another = Counted(second);
    another = std::move(to);  // what it had goes away at once
    EXPECT_EQ(second.alive, 0);
    EXPECT_EQ(first.alive, 1);
    from.reset();
    another();
    EXPECT_EQ(first.calls, 1);

    Task& itself = another;
    another = std::move(itself);
    another();
    EXPECT_EQ(first.calls, 2);

    another = Task();
    EXPECT_FALSE(another);
    EXPECT_EQ(first.alive, 0);
}

TEST(Task, TakesWhatOnlyMovesAndWhatFillsItToTheBrim) {
    int got = 0;
    Task owning = [&got, value = std::make_unique<int>(7)] { got = *value; };
    owning();
    EXPECT_EQ(got, 7);

    std::array<std::byte, Task::kCapacity - sizeof(int*)> ballast{};
    ballast.back() = std::byte{9};
    Task brim = [&got, ballast] { got = std::to_integer<int>(ballast.back()); };
    Task moved = std::move(brim);
    moved();
    EXPECT_EQ(got, 9);
}

}  // namespace
}  // namespace norvane
