#pragma once

#include <benchmark/benchmark.h>

#include <time.h>

#include <chrono>
#include <functional>
#include <string>
#include <utility>

namespace norvane {

// Registers a benchmark that takes its times itself, as the functions below do.
inline void registerMeasured(const std::string& name, int iterations, int repetitions,
                             std::function<void(benchmark::State&)> body) {
    benchmark::RegisterBenchmark(name.c_str(), std::move(body))
        ->Unit(benchmark::kMicrosecond)
        ->UseManualTime()
        ->Iterations(iterations)
        ->Repetitions(repetitions);
}

// Runs a benchmark whose every iteration has parts that are not measured, before and after the one that is.
template <typename Prepare, typename Work, typename CleanUp>
void measure(benchmark::State& state, Prepare&& prepare, Work&& work, CleanUp&& cleanUp) {
    for ([[maybe_unused]] auto _ : state) {
        prepare();
        const auto begin = std::chrono::steady_clock::now();
        work();
        const auto end = std::chrono::steady_clock::now();
        state.SetIterationTime(std::chrono::duration<double>(end - begin).count());
        cleanUp();
    }
}

// The same for work on this thread alone, by its processor time: whoever else is busy does not count.
template <typename Prepare, typename Work>
void measureThreadTime(benchmark::State& state, Prepare&& prepare, Work&& work) {
    const auto spent = [] {
        timespec time{};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
    };
    for ([[maybe_unused]] auto _ : state) {
        prepare();
        const double before = spent();
        work();
        state.SetIterationTime(spent() - before);
    }
}

// What the work costs this process' threads together, however long they wait for one another.
template <typename Work>
void measureProcessorTime(benchmark::State& state, Work&& work) {
    const auto spent = [] {
        timespec time{};
        ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
    };
    for ([[maybe_unused]] auto _ : state) {
        const double before = spent();
        work();
        state.SetIterationTime(spent() - before);
    }
}

}  // namespace norvane
