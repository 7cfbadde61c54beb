#pragma once

#include <benchmark/benchmark.h>

#include <chrono>

namespace norvane {

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

}  // namespace norvane
