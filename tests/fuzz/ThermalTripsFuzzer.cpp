#include <algorithm>
#include <array>

#include "platform/linux/KernelText.h"
#include "platform/linux/ThermalTrips.h"
#include "Property.h"

namespace norvane {

// Each line is a trip: its kind and its temperature.
void check(std::string_view text) {
    ThermalTrips trips;
    bool isAnyGiven = false;
    while (!text.empty()) {
        std::string_view line = takeLine(text);
        const std::string_view type = takeWord(line);
        const auto temperature = parseSignedNumber(line);
        if (!temperature) continue;
        trips.add(type, *temperature);
        isAnyGiven = true;
    }
    require(isAnyGiven || trips.empty(), "there is no trip without its file");

    int before = 0;
    int beforeLimited = 0;
    for (MilliCelsius temperature = -25'000; temperature <= 155'000; temperature += 500) {
        const int level = trips.level(temperature, [] { return false; });
        const int limited = trips.level(temperature, [] { return true; });
        require(level >= 0 && limited <= 3, "levels are 0 to 3");
        require(level >= before && limited >= beforeLimited, "hotter is never a lower level");
        require(limited >= level, "slowing down is never a lower level");
        require(temperature >= 25'000 || limited == 0, "what is cool is nominal");
        require(level == 0 || !trips.empty(), "a zone without trips is nominal");
        before = level;
        beforeLimited = limited;
    }
    for (const MilliCelsius temperature : {INT64_MIN, INT64_MAX}) {
        const int level = trips.level(temperature, [] { return false; });
        require(level >= 0 && level <= 3, "no temperature is beyond them");
        require(!isPlausibleTemperature(temperature), "the extremes are implausible");
    }
}

}  // namespace norvane
