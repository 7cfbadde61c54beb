#include "platform/Published.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace norvane {
namespace {

TEST(Published, TellsOfEveryWriteAfterItWasStored) {
    Published<int> published(7);
    EXPECT_EQ(published.get(), 7);
    std::vector<std::pair<int, int>> heardAndStored;
    const Cancellation observer =
        published.observe([&](int heard) { heardAndStored.emplace_back(heard, published.get()); });
    published.set(8);
    published.set(8);
    published.set(9);
    EXPECT_EQ(heardAndStored, (std::vector<std::pair<int, int>>{{8, 8}, {8, 8}, {9, 9}}));
}

TEST(Published, LetsGoOfTheOldValueOutsideOfItsLock) {
    // The old value reads the new one as it goes: with the lock still held, this would never end.
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
    struct Snapshot {
        int number;
        int twice;
    };
    constexpr int kWrites = 20'000;
    Published<std::shared_ptr<const Snapshot>> published(std::make_shared<const Snapshot>());
    std::atomic<bool> isReading = false;
    std::atomic<int> faults = 0;
    std::thread reader([&] {
        // Comes late, misses most, and must end on the last one.
        for (int last = 0; last < kWrites;) {
            const std::shared_ptr<const Snapshot> now = published.get();
            if (now->twice != 2 * now->number || now->number < last) ++faults;
            last = now->number;
            isReading = true;
        }
    });
    while (!isReading) {
        std::this_thread::yield();
    }
    for (int i = 1; i <= kWrites; ++i) {
        published.set(std::make_shared<const Snapshot>(Snapshot{i, 2 * i}));
    }
    reader.join();
    EXPECT_EQ(faults, 0);
}

}  // namespace
}  // namespace norvane
