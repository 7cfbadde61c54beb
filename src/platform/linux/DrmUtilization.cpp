#include "platform/linux/DrmUtilization.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "platform/linux/Saturated.h"

namespace norvane {

namespace {

// What all clients together had one engine do. Floating-point, since sums of foreign counters may be huge.
struct Work {
    std::optional<double> nanoseconds;
    std::optional<double> cycles;
    double totalCycles = 0;
    double capacity = 1;

    // A counter that went back, as after a reset of the device, has not moved.
    void add(const DrmEngine& before, const DrmEngine& now) {
        const auto moved = [](const auto& from, const auto& to) {
            return static_cast<double>(saturatedDifference(*to, *from));
        };
        if (before.busyNanoseconds && now.busyNanoseconds) {
            nanoseconds = nanoseconds.value_or(0) + moved(before.busyNanoseconds, now.busyNanoseconds);
        } else if (before.busyCycles && now.busyCycles && before.totalCycles && now.totalCycles) {
            cycles = cycles.value_or(0) + moved(before.busyCycles, now.busyCycles);
            // The same clock for all; who was looked at last saw it go furthest.
            totalCycles = std::max(totalCycles, moved(before.totalCycles, now.totalCycles));
        }
        capacity = std::max(capacity, static_cast<double>(now.capacity));
    }

    std::optional<double> percent(std::chrono::duration<double, std::nano> elapsed) const {
        double share = 0;
        if (nanoseconds && elapsed.count() > 0) {
            share = *nanoseconds / elapsed.count();
        } else if (cycles && totalCycles > 0) {
            share = *cycles / totalCycles;
        } else {
            return std::nullopt;
        }
        return std::clamp(share / capacity * 100, 0.0, 100.0);
    }
};

std::map<std::string, Work> workBetween(const DrmClientEngines& before, const DrmClientEngines& now) {
    std::map<std::string, Work> works;
    for (const auto& [client, engines] : now) {
        const auto known = before.find(client);
        if (known == before.end()) continue;
        for (const auto& [name, engine] : engines) {
            const auto engineBefore = known->second.find(name);
            if (engineBefore != known->second.end()) works[name].add(engineBefore->second, engine);
        }
    }
    return works;
}

}  // namespace

std::optional<double> DrmUtilization::percent(DrmClientEngines clients, MonotonicInstant at) {
    const std::optional<Look> last = std::exchange(last_, Look{std::move(clients), at});
    if (!last) return std::nullopt;
    std::optional<double> busiest;
    for (const auto& [name, work] : workBetween(last->clients, last_->clients)) {
        const auto percent = work.percent(at - last->at);
        if (percent) busiest = std::max(busiest.value_or(0), *percent);
    }
    return busiest;
}

}  // namespace norvane
