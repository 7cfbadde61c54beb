#include "insight/MemoryInsight.h"

#include <gtest/gtest.h>

#include <cmath>

#include "insight/Combination.h"
#include "insight/HealthySnapshot.h"
#include "insight/InsightTable.h"

namespace norvane {
namespace {

TEST(MemoryPressureTier, IsRaisedToAWarningByMuchSwapOrMuchCompression) {
    struct Case {
        std::int64_t memoryPressure;
        double swapUsedGB, compressedMemoryGB, totalMemoryGB;
        std::int64_t tier;
    };
    SystemSnapshot now = healthySnapshot();
    for (const Case& c : {
             Case{1, 0, 0, 10, 1},
             Case{3, 0, 0, 10, 3},
             Case{1, 1.0, 0, 10, 1},
             Case{1, std::nextafter(1.0, 2), 0, 10, 2},
             Case{1, 0, 4, 10, 1},  // 0.4 to the last bit
             Case{1, 0, std::nextafter(4.0, 5), 10, 2},
             Case{-1, 1.5, 0, 10, 2},
             Case{3, 1.5, 5, 10, 3},
             Case{1, 0, 5, 0, 1},  // no total, no ratio
             Case{1, 0, -5, -10, 1},
             Case{1, 1.5, 5, 0, 2},
         }) {
        now.memoryPressure = c.memoryPressure;
        now.swapUsedGB = c.swapUsedGB;
        now.compressedMemoryGB = c.compressedMemoryGB;
        now.totalMemoryGB = c.totalMemoryGB;
        EXPECT_EQ(memoryPressureTier(&now), c.tier) << c.memoryPressure << ' ' << c.swapUsedGB << ' '
                                                    << c.compressedMemoryGB << ' ' << c.totalMemoryGB;
    }
    EXPECT_EQ(memoryPressureTier(nullptr), 1);
}

TEST(MemoryInsight, SaysTheSentenceOfEveryCombination) {
    // The kernel's level, what raises it (nothing, swap, compression); swap high, thrashing, highly
    // compressed, caching.
    InsightTable table({
        {{"4. ....", "[01235]. 11.."}, "Critical memory load.", "The system is severely"},
        {{"[01235]. 10..", "[235]. 0...", "[01][sc] 0..."},
         "Elevated memory pressure.",
         "Physical RAM is full. macOS is"},
        {{"[01]n 0.1."}, "Memory is highly utilized.", "macOS is actively compressing"},
        {{"1n 0.01"}, "Operating optimally.", "macOS is efficiently utilizing"},
        {{"1n 0.00", "0n 0.0."}, "Memory is healthy.", "Application demand is"},
    });
    SystemSnapshot now = healthySnapshot();
    now.totalMemoryGB = 10;
    for (unsigned number = 0;; ++number) {
        Combination combination(number);
        now.memoryPressure = combination.letter("012345") - '0';
        const char raising = combination.letter("nsc");
        now.swapUsedGB = raising == 's' ? 1.5 : 1;
        now.compressedMemoryGB = raising == 'c' ? 4.5 : 4;
        now.isMemorySwapHigh = combination.flag();
        now.isMemoryThrashing = combination.flag();
        now.isMemoryHighlyCompressed = combination.flag();
        now.isMemoryCachingActive = combination.flag();
        if (combination.isBeyondLast()) break;
        table.expect(combination.state(),
                     [&](InsightVerbosity verbosity) { return memoryInsightText(&now, verbosity); });
    }
    table.expectAllReached();
    EXPECT_EQ(memoryInsightText(nullptr, InsightVerbosity::detailed), "Memory status unavailable.");
}

}  // namespace
}  // namespace norvane
