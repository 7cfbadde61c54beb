#pragma once

#include <climits>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/Platform.h"

// What the operations of the platform answer when they go wrong: nothing, and what is malformed, huge or out
// of any range.
namespace norvane {

// An operation's answers that may be none; each kind of fault begins with that.
template <typename Answer>
using Answers = std::vector<std::optional<Answer>>;
using Services = std::vector<RegistryEntry>;

inline constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
inline constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
inline constexpr std::uint64_t kAllOnes = std::numeric_limits<std::uint64_t>::max();
inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInfinity = std::numeric_limits<double>::infinity();
inline constexpr std::size_t kMany = 4'000;

// Much of what is no UTF-8.
inline std::string hugeText() {
    return std::string(std::size_t{1} << 16, '\xFF');
}

inline Answers<ProcessorInfo> processorFaults() {
    return {std::nullopt,
            ProcessorInfo(),
            ProcessorInfo{SIZE_MAX, {}},
            ProcessorInfo{8, std::vector<std::int32_t>(32, -1)},
            ProcessorInfo{8, std::vector<std::int32_t>(32, INT_MAX)},
            ProcessorInfo{8, {1, 2, 3}},
            ProcessorInfo{kMany, std::vector<std::int32_t>(4 * kMany, 1)}};
}
inline Answers<VMStatistics64> memoryFaults() {
    return {std::nullopt, VMStatistics64(),
            VMStatistics64{kAllOnes, kAllOnes, kAllOnes, kAllOnes, kAllOnes, kAllOnes, kAllOnes}};
}
inline Answers<std::int64_t> numberFaults() {
    return {std::nullopt, 0, -1, kMost, kLeast};
}

// What a property can be that should be a number.
inline std::vector<PropertyValue> oddValues() {
    return {0, -1, kMost, kLeast, kNaN, kInfinity, 90.5, true, hugeText(), PropertyDictionary()};
}
inline PropertyDictionary allOf(const std::vector<const char*>& names, const PropertyValue& value) {
    PropertyDictionary properties;
    for (const char* const name : names)
        properties.set(name, value);
    return properties;
}
// One service with this property alone, a dictionary in which each of the names has the value.
inline Services serviceWith(const char* property, const std::vector<const char*>& names,
                            const PropertyValue& value) {
    return {RegistryEntry({{property, allOf(names, value)}})};
}
// What every kind of service can answer.
inline Answers<Services> silentServices() {
    return {std::nullopt, Services(), Services(kMany, RegistryEntry::unreadable()),
            Services(kMany, RegistryEntry(PropertyDictionary()))};
}
inline Answers<Services> serviceFaults(const char* property, const std::vector<const char*>& names) {
    auto faults = silentServices();
    faults.push_back(Services{RegistryEntry({{property, hugeText()}})});
    for (const PropertyValue& value : oddValues())
        faults.push_back(serviceWith(property, names, value));
    return faults;
}
inline Answers<Services> batteryFaults() {
    auto faults = silentServices();
    for (const PropertyValue& value : oddValues()) {
        faults.push_back(Services{RegistryEntry(
            allOf({"DesignCapacity", "AppleRawMaxCapacity", "AppleRawCurrentCapacity", "MaxCapacity",
                   "CurrentCapacity", "CycleCount", "Temperature", "ExternalConnected", "IsCharging"},
                  value))});
    }
    return faults;
}
inline Answers<std::vector<PowerSourceDescription>> powerSourceFaults() {
    using Sources = std::vector<PowerSourceDescription>;
    Answers<Sources> faults{std::nullopt, Sources(), Sources(kMany, std::nullopt)};
    for (const PropertyValue& value : oddValues()) {
        faults.push_back(Sources{
            allOf({"Is Charged", "Time to Empty", "Time to Full Charge", "BatteryHealthCondition"}, value)});
    }
    return faults;
}
inline Answers<std::vector<VolumeURL>> volumeFaults() {
    using URLs = std::vector<VolumeURL>;
    const auto root = [](std::optional<std::int64_t> total, std::int64_t available) {
        return URLs{{"/", VolumeResourceValues{hugeText(), total, available, {}, true, {}}}};
    };
    return {std::nullopt,       URLs(),         URLs(kMany, {"/", std::nullopt}),
            root({}, 9),        root(0, 0),     root(-1, -1),
            root(kMost, kMost), root(kMost, -1)};
}

inline Answers<DefaultsValue> preferenceFaults() {
    return {std::nullopt, "perhaps", hugeText(), 0.0, -1.0, 0x1p63, kNaN, -kInfinity};
}

// What becomes of a notification that was handed in.
struct Delivery {
    bool isHealthy = true;
    bool isCompleted = false;
    std::optional<std::string> error{};
};

}  // namespace norvane
