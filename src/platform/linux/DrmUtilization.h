#pragma once

#include <optional>

#include "platform/linux/DrmEngine.h"
#include "platform/MonotonicInstant.h"

namespace norvane {

// How busy a graphics device was between two looks at its clients.
class DrmUtilization {
 public:
    // Percent, 0 to 100, since the last call: that of the busiest engine, which all clients share. None where
    // no client was there both times, as at the first call. `at` is when the counters were read.
    std::optional<double> percent(DrmClientEngines clients, MonotonicInstant at);

 private:
    struct Look {
        DrmClientEngines clients;
        MonotonicInstant at;
    };

    std::optional<Look> last_;
};

}  // namespace norvane
