#include "insight/CPUInsight.h"

#include <gtest/gtest.h>

#include "insight/Combination.h"
#include "insight/HealthySnapshot.h"
#include "insight/InsightTable.h"

namespace norvane {
namespace {

TEST(CPUInsight, SaysTheSentenceOfEveryCombination) {
    // Critical, GPU and P cores saturated; idle, moderate load, GPU active.
    InsightTable table({
        {{"11. ..."}, "Critical system load.", "Both CPU and GPU are nearly"},
        {{"101 ..."}, "Critical CPU load.", "Performance cores are pinned"},
        {{"100 ..."}, "Critical CPU load.", "The processor is fully"},
        {{"0.. 1.."}, "System is resting.", "The processor has vast idle"},
        {{"0.. 01."}, "CPU is under moderate load.", "Sustained usage indicates"},
        {{"0.. 001"}, "Normal CPU activity.", "However, noticeable graphics"},
        {{"0.. 000"}, "CPU is operating efficiently.", "Compute demand is low and the"},
    });
    SystemSnapshot now = healthySnapshot();
    for (unsigned number = 0;; ++number) {
        Combination combination(number);
        now.cpuState = combination.flag() ? ComponentState::critical : ComponentState::normal;
        now.isGPUSaturated = combination.flag();
        now.isPCoreSaturated = combination.flag();
        now.isSystemIdle = combination.flag();
        now.isCPUModerateLoad = combination.flag();
        now.isGPUActive = combination.flag();
        // Raw figures say nothing.
        now.cpuUsagePercent = combination.flag() ? 100 : 0;
        if (combination.isBeyondLast()) break;
        table.expect(combination.state().substr(0, 6),
                     [&](InsightVerbosity verbosity) { return cpuInsightText(&now, verbosity); });
    }
    table.expectAllReached();
    EXPECT_EQ(cpuInsightText(nullptr, InsightVerbosity::detailed), "CPU status unavailable.");
}

}  // namespace
}  // namespace norvane
