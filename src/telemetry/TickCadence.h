#pragma once

#include <cstdint>

namespace norvane {

// What one tick owes: the slow readings come at a fraction of the ticks, and none of the dashboard's while it
// is hidden.
struct TickCadence {
    // Everything that only an open dashboard shows, and the snapshot.
    bool isFull = false;
    // Slow; once a minute also while nobody looks, so that an opening begins with a figure that is not old.
    // Once, however many reasons there are.
    bool readsBattery = false;
    // GPU utilisation and disk rates.
    bool readsGPUAndDisk = false;
    bool readsVolumes = false;

    bool operator==(const TickCadence&) const = default;
};

// For the tick that makes `tickCount` (1 for the first). `isForced` is the first one of an opening.
constexpr TickCadence cadenceOf(std::uint64_t tickCount, bool isVisible, bool isForced) {
    const bool isFirst = tickCount == 1;
    const bool isFull = isVisible || isForced;
    const bool isThird = isFull && (isFirst || isForced || tickCount % 3 == 0);
    const bool isThirtieth = isFull && (isFirst || isForced || tickCount % 30 == 0);
    const bool isHiddenMinute = !isVisible && tickCount % 60 == 0;
    return {.isFull = isFull,
            .readsBattery = isFirst || isHiddenMinute || isThird,
            .readsGPUAndDisk = isThird,
            .readsVolumes = isThirtieth};
}

}  // namespace norvane
