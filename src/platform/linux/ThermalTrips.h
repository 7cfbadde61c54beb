#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace norvane {

// A temperature in thousandths of a degree Celsius, as the kernel gives it.
using MilliCelsius = std::int64_t;

// A sensor that says something else is broken, asleep or no thermometer.
constexpr bool isPlausibleTemperature(MilliCelsius temperature) {
    return temperature >= -20'000 && temperature <= 150'000;
}

// The temperatures at which a thermal zone acts ("Generic Thermal Sysfs driver How To"), each the lowest of
// its kind.
class ThermalTrips {
 public:
    // Kinds that only start a fan are ignored; so are temperatures below 40 °C and above 150 °C, which are
    // what firmware leaves in trips that it never sets up.
    void add(std::string_view type, MilliCelsius temperature);

    bool empty() const { return !passive_ && !hot_ && !critical_; }

    // 0 to 3 for a zone at this temperature. `isLimited` says whether the zone is at the same time slowing
    // the processors down; it is asked only where the answer turns on it.
    template <typename IsLimited>
    int level(MilliCelsius temperature, IsLimited&& isLimited) const {
        if ((hot_ && temperature >= *hot_) || (critical_ && temperature >= *critical_ - 5'000)) return 3;
        if (passive_ && temperature >= *passive_ + 5'000) return 2;
        if (passive_ && temperature >= *passive_ && isLimited()) return 2;
        if (passive_ && temperature >= *passive_ - 5'000) return 1;
        if (critical_ && temperature >= *critical_ - 15'000) return 1;
        return 0;
    }

 private:
    std::optional<MilliCelsius> passive_;
    std::optional<MilliCelsius> hot_;
    std::optional<MilliCelsius> critical_;
};

}  // namespace norvane
