#include <chrono>

#include "MachineInput.h"
#include "platform/linux/Batteries.h"
#include "Property.h"

namespace norvane {
namespace {

// The property, which if it is there is a whole number within these bounds.
std::optional<std::int64_t> numberWithin(const PropertyDictionary& properties, std::string_view name,
                                         std::int64_t least, std::int64_t most) {
    const PropertyValue* const value = properties.find(name);
    if (value == nullptr) return std::nullopt;
    const auto number = value->wholeNumber();
    require(number.has_value(), "a count is a whole number");
    require(*number >= least && *number <= most, "a count is within its bounds");
    return number;
}

bool isBoolean(const PropertyDictionary& properties, std::string_view name) {
    const PropertyValue* const value = properties.find(name);
    return value != nullptr && value->boolean().has_value();
}

void checkService(const PropertyDictionary& service) {
    constexpr std::int64_t kMost = INT64_MAX;
    require(numberWithin(service, "AppleRawMaxCapacity", 0, kMost).has_value(), "the capacity is there");
    require(numberWithin(service, "AppleRawCurrentCapacity", 0, kMost).has_value(), "so is what is left");
    numberWithin(service, "DesignCapacity", 0, kMost);
    const auto current = numberWithin(service, "CurrentCapacity", 0, 1000);
    const auto most = numberWithin(service, "MaxCapacity", 1000, 1000);
    require(current.has_value() == most.has_value(), "the pair is there or it is not");
    numberWithin(service, "CycleCount", 1, kMost);
    numberWithin(service, "Temperature", -4000, 12000);
    require(isBoolean(service, "IsCharging"), "a battery is charged or not");
    require(service.find("ExternalConnected") == nullptr || isBoolean(service, "ExternalConnected"),
            "so is external power");
}

void checkSource(const PropertyDictionary& source, bool isFirst) {
    require(isBoolean(source, "Is Charged"), "a source is full or not");
    const auto toEmpty = numberWithin(source, "Time to Empty", -1, 24 * 60);
    const auto toFull = numberWithin(source, "Time to Full Charge", -1, 20 * 60);
    require(toEmpty && toFull, "both times are there");
    require(*toEmpty == -1 || *toFull == -1, "nothing becomes full and empty");
    require(!isFirst || (*toEmpty == -1 && *toFull == -1), "one reading tells no time");
    const std::string* const health = source.find("BatteryHealthCondition")->text();
    require(health != nullptr && (*health == "Normal" || *health == "Service Recommended"),
            "a battery is in order or not");
}

}  // namespace

void check(std::string_view text) {
    MachineInput machine(text);
    MonotonicInstant now{std::chrono::hours(1)};
    Batteries batteries(machine.root(), [&now] { return now; });
    bool isFirst = true;
    for (const int seconds : {0, 5, 30, -40}) {  // the last: a clock that steps back
        now += std::chrono::seconds(seconds);
        const Batteries::Answer answer = batteries.read();
        require(answer.services.size() == answer.sources.size() && answer.services.size() <= 1,
                "one service and one source, or neither");
        require(answer.services.empty() || answer.hasSupplies, "a battery is a supply");
        for (const RegistryEntry& service : answer.services)
            checkService(*service.IORegistryEntryCreateCFProperties());
        for (const PowerSourceDescription& source : answer.sources)
            checkSource(*source, isFirst);
        isFirst = false;
        machine.goOn();
    }
}

}  // namespace norvane
