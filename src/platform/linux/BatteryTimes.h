#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/Battery.h"
#include "platform/MonotonicInstant.h"

namespace norvane {

// How long the batteries last and how long they take to charge, from what they hold and a smoothed rate. The
// kernel's own estimates are not used: some drivers give minutes where seconds are meant. For one thread.
class BatteryTimes {
 public:
    static constexpr std::int64_t kUnknown = -1;

    // In whole minutes. Unknown while the rate is, while the batteries do not do what is asked about, and
    // where the answer would be beyond belief.
    struct Minutes {
        std::int64_t toEmpty = kUnknown;
        std::int64_t toFull = kUnknown;

        bool operator==(const Minutes&) const = default;
    };

    // Takes the batteries as they were read at `now`; at least one.
    Minutes update(const std::vector<Battery>& batteries, std::optional<bool> isExternalPowerConnected,
                   MonotonicInstant now);

    // The next batteries are others.
    void forget() { situation_.reset(); }

 private:
    // A rate holds only as long as this is the same.
    struct Situation {
        std::vector<std::pair<std::string, std::string>> statuses;  // by battery
        std::optional<bool> isExternalPowerConnected;

        bool operator==(const Situation&) const = default;
    };

    void smooth(double power, MonotonicInstant now);

    std::optional<Situation> situation_;
    // Of the present situation:
    int samples_ = 0;
    MonotonicInstant firstSample_;
    MonotonicInstant lastSample_;
    double power_ = 0;  // µW
};

}  // namespace norvane
