#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "telemetry/ComponentState.h"
#include "telemetry/Deadband.h"
#include "telemetry/ImpactState.h"
#include "telemetry/StateDebouncer.h"
#include "telemetry/SustainedMetric.h"
#include "telemetry/ThermalLevel.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

TEST(Deadband, ChangesOnlyAtOrBeyondAThreshold) {
    struct Step {
        double value;
        bool want;
    };
    Deadband rising(63, 57);
    for (const Step& s : {Step{62.9, false},
                          {63, true},
                          {58, true},
                          {NAN, true},
                          {57, false},
                          {57.1, false},
                          {NAN, false},
                          {INFINITY, true},
                          {-INFINITY, false}}) {
        EXPECT_EQ(rising.update(s.value), s.want) << s.value;
        EXPECT_EQ(rising.isActive(), s.want);
    }
    Deadband falling(10, 12);
    for (const Step& s : {Step{11, false}, {10, true}, {11, true}, {12, false}, {11, false}}) {
        EXPECT_EQ(falling.updateFalling(s.value), s.want) << s.value;
    }
    Deadband same(5, 5);
    EXPECT_TRUE(same.update(5)) << "where thresholds coincide, on wins";
}

template <typename State>
struct Seen {
    std::chrono::milliseconds at;
    State state;
    State want;
};

template <typename State>
void expectSequence(const char* name, const std::vector<Seen<State>>& sequence) {
    StateDebouncer<State> debouncer;
    for (const auto& seen : sequence) {
        EXPECT_EQ(debouncer.update(seen.state, WallInstant(seen.at)), seen.want)
            << name << " at " << seen.at.count() << " ms";
        EXPECT_EQ(debouncer.candidateState().has_value(), debouncer.candidateSince().has_value());
        EXPECT_NE(debouncer.candidateState(), std::optional(debouncer.currentState()));
    }
}

TEST(StateDebouncer, LetsAWorseningThroughAfterFiveSecondsAndARecoveryAfterTen) {
    constexpr auto N = ComponentState::normal;
    constexpr auto C = ComponentState::critical;
    expectSequence<ComponentState>(
        "up and down",
        {{0ms, C, N}, {4900ms, C, N}, {5000ms, C, C}, {6000ms, N, C}, {15900ms, N, C}, {16000ms, N, N}});
    expectSequence<ComponentState>("a return wipes the candidate",
                                   {{0s, C, N}, {4s, N, N}, {5s, C, N}, {9s, C, N}, {10s, C, C}});
    expectSequence<ComponentState>("a clock that steps back only delays",
                                   {{100s, C, N}, {50s, C, N}, {104s, C, N}, {105s, C, C}});
}

TEST(StateDebouncer, TimesEachCandidateAloneWhateverTheStep) {
    constexpr auto L = ImpactState::low;
    constexpr auto M = ImpactState::moderate;
    constexpr auto H = ImpactState::high;
    expectSequence<ImpactState>("another candidate restarts",
                                {{0s, M, L}, {4s, H, L}, {8s, H, L}, {9s, H, H}});
    expectSequence<ImpactState>(
        "two recoveries",
        {{0s, H, L}, {5s, H, H}, {6s, M, H}, {16s, M, M}, {17s, L, M}, {26s, L, M}, {27s, L, L}});
    expectSequence<ImpactState>("two steps cost as one", {{0s, H, L}, {5s, H, H}, {6s, L, H}, {16s, L, L}});
}

TEST(SustainedMetric, IsTheMeanOfTheLastSamples) {
    SustainedMetric<double> metric(3);
    metric.append(10);
    EXPECT_EQ(metric.mean(), 10);
    for (const double sample : {20.0, 30.0, 40.0})
        metric.append(sample);
    EXPECT_EQ(metric.mean(), 30);
}

TEST(States, ComeFromRawValuesInRangeOnly) {
    EXPECT_EQ(componentStateFromRaw(1), ComponentState::critical);
    EXPECT_EQ(impactStateFromRaw(2), ImpactState::high);
    for (const int odd : {-1, 3}) {
        EXPECT_EQ(componentStateFromRaw(odd), std::nullopt) << odd;
        EXPECT_EQ(impactStateFromRaw(odd), std::nullopt) << odd;
    }
    EXPECT_EQ(thermalLevelOf(3), ThermalLevel::critical);
    for (const int odd : {4, -1})
        EXPECT_EQ(thermalLevelOf(odd), ThermalLevel::nominal) << odd;
    EXPECT_EQ(fromRawText<ThermalLevel>("serious"), ThermalLevel::serious);
    EXPECT_EQ(rawTextOf(ThermalLevel::serious), "serious");
    EXPECT_EQ(fromRawText<ThermalLevel>("Serious"), std::nullopt);
}

}  // namespace
}  // namespace norvane
