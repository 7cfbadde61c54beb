#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

#include "insight/Combination.h"
#include "insight/SystemStatusText.h"
#include "insight/VerbalStabiliser.h"

namespace norvane {
namespace {

// The verdict by its own statement: each condition with its sentence, the earlier one winning.
TEST(SystemStatusText, NamesTheMostSeriousThingFirstInEveryCombination) {
    SystemSnapshot now{};
    for (unsigned number = 0;; ++number) {
        Combination combination(number);
        now.thermalLevel =
            combination.of("fsc", {ThermalLevel::fair, ThermalLevel::serious, ThermalLevel::critical});
        now.isOnBattery = combination.flag();
        now.batteryPercentage = combination.of("lm", {15, 16});
        now.memoryPressure = combination.of("345", {3, 4, 5});
        now.isGPUSaturated = combination.flag();
        const bool isCritical = combination.flag(), isLowPower = combination.flag();
        if (combination.isBeyondLast()) break;
        const std::pair<bool, const char*> verdicts[] = {
            {now.thermalLevel == ThermalLevel::serious, "System temperature is elevated."},
            {now.thermalLevel == ThermalLevel::critical, "Thermal limit reached."},
            {now.isOnBattery && now.batteryPercentage == 15, "Battery is running low."},
            {now.memoryPressure >= 4, "Critical memory exhaustion."},
            {isCritical && now.isGPUSaturated, "Critical resource saturation."},
            {isCritical, "Critical processor load."},
            {isLowPower, "Low Power Mode is active."},
            {true, "System is operating optimally"}};
        const auto* first = std::find_if(std::begin(verdicts), std::end(verdicts),
                                         [](const auto& verdict) { return verdict.first; });
        const auto state = isCritical ? ComponentState::critical : ComponentState::normal;
        EXPECT_TRUE(systemStatusText(&now, state, isLowPower).starts_with(first->second))
            << first->second << " at " << combination.state();
        EXPECT_EQ(systemStatusText(nullptr, state, isLowPower), "Initializing system telemetry...");
    }
}

// One letter, one text: what each update computes, and what is on screen after it.
TEST(VerbalStabiliser, LetsATextThroughThatThreeUpdatesInARowHaveProducedAndTheLiveOneBeforeThat) {
    for (const auto& [updates, wanted] : {std::pair<std::string, std::string>{"AAAA", "AAAA"},
                                          {"BABABABA", "AAAAAAAA"},
                                          {"BCBCBCBC", "AAAAAAAA"},
                                          {"BBABBB", "AAAAAB"},
                                          {"BBCBB", "AAAAA"},
                                          {"BBBBCCC", "AABBBBC"}}) {
        VerbalStabiliser stabiliser;
        stabiliser.appear("A");
        std::string displayed = "A";
        for (const char letter : updates) {
            const bool hasChanged = stabiliser.update(std::string(1, letter));
            displayed += stabiliser.displayed("live");
            EXPECT_EQ(hasChanged, displayed.back() != displayed.end()[-2]) << updates << " at " << displayed;
        }
        EXPECT_EQ(displayed, 'A' + wanted) << updates;
    }
    VerbalStabiliser unfixed;
    for (const char* want : {"live", "live", "B"}) {
        unfixed.update("B");
        EXPECT_EQ(unfixed.displayed("live"), want);
    }
}

}  // namespace
}  // namespace norvane
