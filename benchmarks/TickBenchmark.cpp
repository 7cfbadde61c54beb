#include <benchmark/benchmark.h>

#include <malloc.h>

#include <cstddef>
#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "AllocationCount.h"
#include "BareLoop.h"
#include "FrameBenchmarks.h"
#include "LiveSampler.h"
#include "MachineBenchmarks.h"
#include "Measured.h"
#include "MedianReporter.h"
#include "ViewBenchmarks.h"

namespace norvane {
namespace {

// A tick may cost half as much again as merely reading its files.
constexpr double kMostTimesTheLoop = 1.5;
constexpr double kMostAllocationsOfLightTicks = 0;

// Short repetitions, and many: all benchmarks take turns in random order, so that a machine that becomes
// slower for a while becomes it for all of them. A repetition has as many ticks as lie between two readings
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

const char* verdict(bool isWithin) {
    return isWithin ? "ok" : "OVER";
}

// Whether the pair keeps its bound; says so.
bool judgePair(const MedianReporter& figures, const std::string& name) {
    const auto tick = figures.medianTime(name + ": tick");
    const auto loop = figures.medianTime(name + ": bare loop");
    if (!tick || !loop || *loop <= 0) {
        std::printf("%-12s not measured\n", name.c_str());
        return false;
    }
    const double ratio = *tick / *loop;
    const bool isWithin = ratio <= kMostTimesTheLoop;
    std::printf("%-12s tick %.1f us, bare loop %.1f us, ratio %.2f, bound %.2f: %s\n", name.c_str(),
                *tick / 1000, *loop / 1000, ratio, kMostTimesTheLoop, verdict(isWithin));
    return isWithin;
}

bool judgeAllocations(const MedianReporter& figures, const std::string& name, std::optional<double> bound) {
    const auto most = figures.largestCount(name + ": tick", kAllocations);
    if (!most) {
        std::printf("%-12s allocations not measured\n", name.c_str());
        return false;
    }
    if (!bound) {
        std::printf("%-12s allocations a tick %.0f, no bound\n", name.c_str(), *most);
        return true;
    }
    const bool isWithin = *most <= *bound;
    std::printf("%-12s allocations a tick %.0f, bound %.0f: %s\n", name.c_str(), *most, *bound,
                verdict(isWithin));
    return isWithin;
}

// Whether what counts the allocations sees one.
bool countsAllocations() {
    const std::size_t before = allocationsOnThisThread();
    auto something = std::make_unique<int>(1);
    benchmark::DoNotOptimize(something);
    return allocationsOnThisThread() == before + 1;
}

// By itself the allocator decides from size to size, and from run to run, what it gives back to the kernel in
// between; getting it anew costs as much as the work that is measured.
void keepMemory() {
    constexpr int kBytes = 64 << 20;
    ::mallopt(M_MMAP_THRESHOLD, kBytes);
    ::mallopt(M_TRIM_THRESHOLD, kBytes);
}

int run(int argumentCount, char** arguments) {
    keepMemory();
    // The random order is the default here; what the user says comes later and wins.
    std::string shuffled = "--benchmark_enable_random_interleaving=true";
    std::vector<char*> all(arguments, arguments + argumentCount);
    all.insert(all.begin() + 1, shuffled.data());
    int count = static_cast<int>(all.size());
    all.push_back(nullptr);
    benchmark::Initialize(&count, all.data());
    if (benchmark::ReportUnrecognizedArguments(count, all.data())) return 2;

    addPair("light tick", BareLoop::Half::light);
    addPair("full tick", BareLoop::Half::full);
    registerMachineBenchmarks();
    registerViewBenchmarks();
    registerFrameBenchmarks();
    MedianReporter figures;
    benchmark::RunSpecifiedBenchmarks(&figures);
    benchmark::Shutdown();

    std::printf("\n");
    bool areWithin = countsAllocations();
    if (!areWithin) std::printf("allocations are not counted\n");
    areWithin &= judgePair(figures, "light tick");
    areWithin &= judgePair(figures, "full tick");
    areWithin &= judgeAllocations(figures, "light tick", kMostAllocationsOfLightTicks);
    areWithin &= judgeAllocations(figures, "full tick", std::nullopt);
    areWithin &= judgeMachineBenchmarks(figures);
    areWithin &= judgeFrameBenchmarks(figures);
    return areWithin ? 0 : 1;
}

}  // namespace
}  // namespace norvane

int main(int argumentCount, char** arguments) {
    return norvane::run(argumentCount, arguments);
}
