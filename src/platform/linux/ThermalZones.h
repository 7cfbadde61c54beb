#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/KeptFile.h"
#include "platform/linux/RootFolder.h"
#include "platform/linux/ThermalTrips.h"
#include "platform/MonotonicInstant.h"

namespace norvane {

// How hot the machine is by its own standards: its thermal zones against the temperatures at which they act,
// the time that Intel processors spent throttled, and where no zone is of use, the processor's own sensors.
// No temperature is too hot in itself, since some processors are made to run at 95 °C.
//
// Reading a zone may ask an embedded controller and take seconds, so this belongs on a lane.
class ThermalZones {
 public:
    struct Answer {
        // 0 nominal, 1 fair, 2 serious, 3 critical.
        int level = 0;
        // Whether this machine has anything to read at all, as most virtual machines have not.
        bool hasSources = false;
        std::optional<MonotonicInstant> readAt;
    };

    // What the machine has is looked for at the first reading, whenever something has gone, and this often.
    static constexpr std::chrono::seconds kLookAgain{60};

    ThermalZones(RootFolder root, std::function<MonotonicInstant()> now);

    Answer read();

    // Whether reading again may give another answer; a machine without sources is not woken up for them.
    static bool isDue(const Answer& newest, MonotonicInstant now);

 private:
    // A device that slows a processor or its graphics down.
    struct LimitingDevice {
        KeptFile curState;
        std::int64_t maxState;
    };
    struct Zone {
        KeptFile temp;
        ThermalTrips trips;
        std::vector<LimitingDevice> limitingDevices;
    };
    // A processor package, asked through one of its processors.
    struct Package {
        std::int64_t id;
        KeptFile throttledTime;
        struct Reading {
            std::uint64_t milliseconds;
            MonotonicInstant at;
        };
        std::optional<Reading> last;
    };
    struct CoreSensor {
        KeptFile input;
        MilliCelsius crit;
    };

    void look();
    std::optional<Zone> lookAtZone(const std::string& folder) const;
    void lookForPackages();
    void lookForCoreSensors();

    int zoneLevel(Zone& zone, MilliCelsius temperature);
    int packageLevel(Package& package);
    int coreSensorLevel(CoreSensor& sensor);
    // The text of a file that was there when we looked; if it has gone, we look again next time.
    std::optional<std::string_view> readFound(KeptFile& file);

    RootFolder root_;
    std::function<MonotonicInstant()> now_;
    std::optional<MonotonicInstant> lookedAt_;
    bool somethingHasGone_ = false;
    std::vector<Zone> zones_;
    std::vector<Package> packages_;
    std::vector<CoreSensor> coreSensors_;
};

}  // namespace norvane
