#include "platform/linux/TickCounters.h"

#include <array>

namespace norvane {

namespace {

constexpr std::array kCounters{&CPUTicks::user, &CPUTicks::system, &CPUTicks::idle, &CPUTicks::nice};

}  // namespace

void TickCounters::feed(const CPUTicks& now, std::uint64_t restartDrop) {
    for (const auto counter : kCounters) {
        if (marks_.*counter > now.*counter && marks_.*counter - now.*counter > restartDrop) {
            marks_ = now;
            return;
        }
    }
    for (const auto counter : kCounters) {
        if (now.*counter <= marks_.*counter) continue;
        sums_.*counter += now.*counter - marks_.*counter;
        marks_.*counter = now.*counter;
    }
}

}  // namespace norvane
