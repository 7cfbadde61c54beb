#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/NvidiaFunctions.h"
#include "platform/MonotonicInstant.h"

namespace norvane {

// How busy NVIDIA's devices are. An open library keeps a device awake, so it is opened and closed again for
// each reading, which may take a second, and a device that has nothing to do is left alone for a while, so
// that it can fall asleep.
class NvidiaManagement {
 public:
    using Load = std::function<std::optional<NvidiaFunctions>()>;
    // By PCI slot, "0000:01:00.0".
    using Percents = std::map<std::string, unsigned>;

    // After this many readings of 0 in a row a device is left alone; its 0 stands meanwhile. So it is after
    // each further 0.
    static constexpr unsigned kZeroesInARow = 5;
    static constexpr std::chrono::seconds kPause{30};
    // A missing library is looked for again this often: it comes with the driver or not at all.
    static constexpr std::chrono::minutes kLookAgain{10};

    // `load` finds the library; it may be empty, which is as good as a missing one.
    NvidiaManagement(Load load, std::function<MonotonicInstant()> now);

    // Of these devices, all awake; those without a number are missing. Of a device that is not among them,
    // nothing is remembered. Without any device, the library is not touched.
    Percents read(const std::vector<std::string>& slots);

 private:
    struct Idling {
        unsigned zeroes = 0;
        MonotonicInstant pauseEnds{};
    };

    bool isPaused(const std::string& slot, MonotonicInstant now) const;
    void keepInMind(const std::string& slot, std::optional<unsigned> percent, MonotonicInstant now);
    const NvidiaFunctions* functions(MonotonicInstant now);

    Load load_;
    std::function<MonotonicInstant()> now_;
    std::optional<NvidiaFunctions> functions_;
    std::optional<MonotonicInstant> missedAt_;  // when the library was looked for in vain
    std::map<std::string, Idling> idling_;
};

}  // namespace norvane
