#pragma once

#include "platform/linux/Batteries.h"
#include "platform/linux/SlowReading.h"
#include "platform/PowerSources.h"

namespace norvane {

// The batteries as a list of power sources.
class LinuxPowerSources final : public PowerSources {
 public:
    // The reading outlives this.
    explicit LinuxPowerSources(SlowReading<Batteries::Answer>& batteries) : batteries_(batteries) {}

    std::optional<std::vector<PowerSourceDescription>> IOPSCopyPowerSourcesInfo(TickToken tick) override {
        return batteries_.get(tick).sources;
    }

 private:
    SlowReading<Batteries::Answer>& batteries_;
};

}  // namespace norvane
