#include "telemetry/BatteryReader.h"

#include <cmath>
#include <string_view>
#include <utility>

#include "platform/Utf8.h"
#include "platform/WholeNumber.h"
#include "telemetry/BatteryMinutes.h"

namespace norvane {
namespace {

constexpr const char* kNoPowerSource = "—";
constexpr const char* kFullyCharged = "Fully Charged";
constexpr const char* kEstimating = "Estimating…";

// Anything that reads as a number; a fraction is cut off.
std::optional<double> numberIn(const PropertyValue* value) {
    const auto number = value != nullptr ? value->number() : std::nullopt;
    return number && std::isfinite(*number) ? number : std::nullopt;
}
std::optional<std::int64_t> integerIn(const PropertyValue* value) {
    if (value == nullptr) return std::nullopt;
    if (const auto whole = value->wholeNumber()) return whole;
    const auto number = numberIn(value);
    return number ? std::optional(wholeNumber(*number)) : std::nullopt;
}

// A number by its truth, a Boolean as it is; anything else is false.
bool truthIn(const PropertyValue* value) {
    if (value == nullptr) return false;
    if (const auto number = value->number()) return *number != 0;
    return value->boolean().value_or(false);
}

}  // namespace

CachedBattery BatteryReader::refreshBattery(TickToken tick) {
    const RegistryReading registry = readBatteryRegistry(tick);
    PowerReading power = readBatteryPower(tick);
    return {
        .designmAh = registry.designmAh,
        .maxmAh = registry.maxmAh,
        .currentmAh = registry.currentmAh,
        .cycleCount = registry.cycleCount,
        .temperatureC = registry.temperatureC,
        .condition = std::move(power.condition),
        .isOnBattery = registry.isOnBattery,
        .percentage = power.percentage,
        .timeRemaining = batteryTimeRemaining(tick, registry.isOnBattery, power.percentage),
        .isCharging = power.isCharging,
        .hasBattery = power.hasBattery,
    };
}

BatteryReader::RegistryReading BatteryReader::readBatteryRegistry(TickToken tick) {
    const auto services = registry_.IOServiceGetMatchingServices(RegistryService::AppleSmartBattery, tick);
    if (!services || services->empty()) return {};
    const auto property = [&battery = services->front()](std::string_view name) {
        return battery.IORegistryEntryCreateCFProperty(name);
    };
    // The gauge's own figure rather than the one that is rounded for display.
    const auto capacity = [&property](std::string_view raw, std::string_view rounded) {
        const auto own = integerIn(property(raw));
        return own ? own : integerIn(property(rounded));
    };

    RegistryReading reading;
    reading.designmAh = integerIn(property("DesignCapacity"));
    reading.maxmAh = capacity("AppleRawMaxCapacity", "MaxCapacity");
    reading.currentmAh = capacity("AppleRawCurrentCapacity", "CurrentCapacity");
    reading.cycleCount = integerIn(property("CycleCount"));
    if (const auto hundredths = numberIn(property("Temperature"))) reading.temperatureC = *hundredths / 100.0;
    reading.isOnBattery = !truthIn(property("ExternalConnected"));
    return reading;
}

BatteryReader::PowerReading BatteryReader::readBatteryPower(TickToken tick) {
    const auto services = registry_.IOServiceGetMatchingServices(RegistryService::AppleSmartBattery, tick);
    if (!services || services->empty()) return {};
    const RegistryEntry& battery = services->front();

    PowerReading reading;
    reading.hasBattery = true;
    const auto current = integerIn(battery.IORegistryEntryCreateCFProperty("CurrentCapacity"));
    const auto max = integerIn(battery.IORegistryEntryCreateCFProperty("MaxCapacity"));
    if (current && max && *max >= 1) {
        // Cut, not rounded: 100 percent is full.
        reading.percentage = wholeNumber(static_cast<double>(*current) / static_cast<double>(*max) * 100.0);
    }
    const PropertyValue* const charging = battery.IORegistryEntryCreateCFProperty("IsCharging");
    reading.isCharging = charging == nullptr || charging->boolean().value_or(true);

    if (const auto description = firstDescription(tick)) {
        const PropertyValue* const property = description->find("BatteryHealthCondition");
        const std::string* const condition = property != nullptr ? property->text() : nullptr;
        if (condition != nullptr && !condition->empty()) reading.condition = repairedUtf8(*condition);
    }
    return reading;
}

std::string BatteryReader::batteryTimeRemaining(TickToken tick, bool isOnBattery, std::int64_t percentage) {
    const auto description = firstDescription(tick);
    if (!description) return kNoPowerSource;
    const PropertyValue* const charged = description->find("Is Charged");
    const bool isCharged = charged != nullptr && charged->boolean().value_or(false);
    if (!isOnBattery && (percentage >= 100 || isCharged)) return kFullyCharged;

    const PropertyValue* const time =
        description->find(isOnBattery ? "Time to Empty" : "Time to Full Charge");
    const auto minutes = time != nullptr ? time->wholeNumber() : std::nullopt;
    if (!minutes || *minutes == -1) return kEstimating;
    return isOnBattery ? formatBatteryMinutes(*minutes) + " remaining"
                       : "Full in " + formatBatteryMinutes(*minutes);
}

PowerSourceDescription BatteryReader::firstDescription(TickToken tick) {
    auto sources = powerSources_.IOPSCopyPowerSourcesInfo(tick);
    if (!sources) return std::nullopt;
    for (PowerSourceDescription& description : *sources) {
        if (description) return std::move(description);
    }
    return std::nullopt;
}

}  // namespace norvane
