#include <chrono>

#include "MachineInput.h"
#include "platform/linux/ThermalZones.h"
#include "Property.h"

namespace norvane {

void check(std::string_view text) {
    MachineInput machine(text);
    MonotonicInstant now{std::chrono::hours(1)};
    ThermalZones zones(machine.root(), [&now] { return now; });
    for (const int seconds : {0, 3, 3, 70, -100}) {  // the last: a clock that steps back
        now += std::chrono::seconds(seconds);
        const ThermalZones::Answer answer = zones.read();
        require(answer.level >= 0 && answer.level <= 3, "levels are 0 to 3");
        require(answer.hasSources || answer.level == 0, "a machine that tells nothing is nominal");
        require(answer.readAt == now, "an answer has its time");
        machine.goOn();
    }
}

}  // namespace norvane
