#include "TickBenchmarks.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "AllocationCount.h"
#include "BareLoop.h"
#include "LiveSampler.h"
#include "Measured.h"

namespace norvane {
namespace {

// A tick may cost half as much again as merely reading its files.
constexpr double kMostTimesTheLoop = 1.5;
constexpr double kMostAllocationsOfLightTicks = 0;

// Short repetitions, and many. A repetition has as many ticks as lie between two readings
// of the rarest source.
constexpr int kIterations = 30;
constexpr int kRepetitions = 150;

constexpr const char* kAllocations = "allocations";

void add(const std::string& name, std::function<void(benchmark::State&)> body) {
    registerMeasured(name, kIterations, kRepetitions, std::move(body));
}

void addPair(const std::string& name, BareLoop::Half half) {
    const auto loop = std::make_shared<BareLoop>(half);
    const auto sampler = std::make_shared<LiveSampler>(half == BareLoop::Half::full);
    loop->read();
    const auto nothing = [] {};
    add(name + ": bare loop", [loop, nothing](benchmark::State& state) {
        measure(
            state, nothing, [&] { loop->read(); }, nothing);
        state.counters["files"] = static_cast<double>(loop->fileCount());
    });
    add(name + ": tick", [sampler, nothing](benchmark::State& state) {
        std::size_t allocations = 0;
        const auto tick = [&] {
            const std::size_t before = allocationsOnThisThread();
            sampler->tick();
            allocations += allocationsOnThisThread() - before;
        };
        measure(state, nothing, tick, [&] { sampler->publish(); });
        // Rounded up, so that one allocation in many ticks is seen, too.
        const std::size_t aTick = (allocations + kIterations - 1) / kIterations;
        state.counters[kAllocations] = static_cast<double>(aTick);
    });
}

// Whether what counts the allocations sees one.
bool countsAllocations() {
    const std::size_t before = allocationsOnThisThread();
    auto something = std::make_unique<int>(1);
    benchmark::DoNotOptimize(something);
    return allocationsOnThisThread() == before + 1;
}

void addPairFigures(const SampleReporter& samples, const std::string& name,
                    std::optional<double> allocationsBound, FigureTable& table) {
    const std::string tick = name + ": tick";
    table.add({.what = name,
               .samples = samples.times(tick),
               .unit = "us",
               .beside = FigureTable::Beside{"reading its files", samples.times(name + ": bare loop")},
               .ratioBound = kMostTimesTheLoop});
    const auto most = samples.largestCount(tick, kAllocations);
    table.add({.what = name + ", most allocations",
               .samples = most ? std::vector{*most} : std::vector<double>(),
               .unit = "",
               .bound = allocationsBound});
}

}  // namespace

void registerTickBenchmarks() {
    addPair("light tick", BareLoop::Half::light);
    addPair("full tick", BareLoop::Half::full);
}

void addTickFigures(const SampleReporter& samples, FigureTable& table) {
    if (!countsAllocations()) table.fail("allocations are not counted");
    addPairFigures(samples, "light tick", kMostAllocationsOfLightTicks, table);
    addPairFigures(samples, "full tick", std::nullopt, table);
}

}  // namespace norvane
