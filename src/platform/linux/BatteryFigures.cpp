#include "platform/linux/BatteryFigures.h"

#include <algorithm>
#include <cmath>

#include "platform/WholeNumber.h"

namespace norvane {

namespace {

using Figures = Battery::Figures;
using Figure = std::optional<double>;

bool isAnythingKnown(const Figures& figures) {
    return figures.full || figures.fullDesign || figures.now;
}

// Over the batteries that tell any capacity at all. A sum that lacks a part of one of them would be wrong,
// above all beside another sum that has it.
template <typename Unit, typename Part>
Figure sum(const std::vector<Battery>& batteries, Unit unit, Part part) {
    Figure total;
    for (const Battery& battery : batteries) {
        if (!isAnythingKnown(battery.charges()) && !isAnythingKnown(battery.energies())) continue;
        const Figure value = part((battery.*unit)(), battery);
        if (!value) return std::nullopt;
        total = total.value_or(0) + *value;
    }
    return total;
}

std::int64_t milliampereHours(double microampereHours) {
    return wholeNumber(std::round(microampereHours / 1000));
}

Figure sumOfCharges(const std::vector<Battery>& batteries, Figure Figures::*figure) {
    return sum(batteries, &Battery::charges,
               [figure](const Figures& figures, const Battery&) { return figures.*figure; });
}

// The pair whose ratio is the percentage. Half a per cent is added, since who cuts 29.0 / 100.0 * 100.0 to a
// whole number gets 28; with it each of 0 to 100 comes out as it went in.
std::int64_t currentOfThousand(int percent) {
    return std::min(1000, 10 * percent + 5);
}

bool isHeldAtItsLimit(const Battery& battery) {
    const auto limit = battery.chargeControlEndThreshold;
    const auto percent = chargePercent({battery});
    // Charging stops up to a per cent below the limit, and does not start again there.
    return battery.status == "Not charging" && limit && *limit >= 1 && *limit <= 100 && percent &&
           *percent >= *limit - 1;
}

}  // namespace

std::optional<int> chargePercent(const std::vector<Battery>& batteries) {
    if (batteries.size() == 1 && batteries.front().capacity) {
        return static_cast<int>(*batteries.front().capacity);
    }
    // In the unit that they tell themselves, so that no voltage, which need not be the same, comes in.
    const bool allTellCharges = std::all_of(batteries.begin(), batteries.end(),
                                            [](const Battery& battery) { return battery.charge.full > 0; });

    double full = 0;
    double remaining = 0;
    int known = 0;
    double unsizedPercent = 0;  // the sum over batteries of unknown size
    int unsized = 0;
    for (const Battery& battery : batteries) {
        const Figures figures = allTellCharges ? battery.charges() : battery.energies();
        if (figures.full && figures.remaining) {
            full += *figures.full;
            remaining += *figures.remaining;
            ++known;
        } else if (battery.capacity) {
            unsizedPercent += static_cast<double>(*battery.capacity);
            ++unsized;
        }
    }
    if (known + unsized == 0) return std::nullopt;
    // One of unknown size counts as one of mean size.
    const double size = known > 0 ? full / known : 100;
    const double percent =
        (100 * remaining + size * unsizedPercent) / (full + size * static_cast<double>(unsized));
    return static_cast<int>(std::clamp(percent, 0.0, 100.0));
}

Figure remainingEnergy(const std::vector<Battery>& batteries) {
    return sum(batteries, &Battery::energies,
               [](const Figures& figures, const Battery&) { return figures.remaining; });
}

Figure missingEnergy(const std::vector<Battery>& batteries) {
    return sum(batteries, &Battery::energies, [](const Figures& figures, const Battery& battery) -> Figure {
        if (!figures.full || !figures.remaining) return std::nullopt;
        const auto limit = battery.chargeControlEndThreshold;
        const double share = limit && *limit >= 1 && *limit <= 99 ? static_cast<double>(*limit) / 100 : 1;
        return std::max(0.0, *figures.full * share - *figures.remaining);
    });
}

bool isCharged(const std::vector<Battery>& batteries, std::optional<bool> isExternalPowerConnected) {
    return std::all_of(batteries.begin(), batteries.end(), [&](const Battery& battery) {
        return battery.status == "Full" ||
               (isExternalPowerConnected.value_or(false) && isHeldAtItsLimit(battery));
    });
}

PropertyDictionary batteryProperties(const std::vector<Battery>& batteries,
                                     std::optional<bool> isExternalPowerConnected) {
    PropertyDictionary properties;
    // Present without data, too: their reader would take the pair below for milliampere-hours.
    properties.set("AppleRawMaxCapacity",
                   milliampereHours(sumOfCharges(batteries, &Figures::full).value_or(0)));
    properties.set("AppleRawCurrentCapacity",
                   milliampereHours(sumOfCharges(batteries, &Figures::now).value_or(0)));
    if (const auto design = sumOfCharges(batteries, &Figures::fullDesign)) {
        properties.set("DesignCapacity", milliampereHours(*design));
    }
    if (const auto percent = chargePercent(batteries)) {
        properties.set("CurrentCapacity", currentOfThousand(*percent));
        properties.set("MaxCapacity", 1000);
    }

    std::int64_t cycles = 0;
    std::optional<std::int64_t> temperature;
    bool isCharging = false;
    for (const Battery& battery : batteries) {
        cycles = std::max(cycles, battery.cycleCount.value_or(0));
        // What is outside is no temperature, such as the -273.1 °C of a sensor that says 0 K.
        if (battery.temp && *battery.temp >= -400 && *battery.temp <= 1200) {
            temperature = std::max(temperature.value_or(*battery.temp), *battery.temp);
        }
        isCharging = isCharging || battery.status == "Charging";
    }
    if (cycles > 0) properties.set("CycleCount", cycles);
    if (temperature) properties.set("Temperature", *temperature * 10);
    if (isExternalPowerConnected) properties.set("ExternalConnected", *isExternalPowerConnected);
    properties.set("IsCharging", isCharging);
    return properties;
}

}  // namespace norvane
