#include "scenario/ShownJson.h"

#include <chrono>
#include <cmath>

#include "scenario/Durations.h"

namespace norvane {

Json shownJson(double value) {
    constexpr double kPlaces = 1e4;
    constexpr double kNoPlacesFrom = 1e11;  // beyond, a double has hardly any
    if (std::isnan(value)) return "nan";
    if (std::isinf(value)) return value > 0 ? "inf" : "-inf";
    if (std::abs(value) >= kNoPlacesFrom) return value;
    return std::round(value * kPlaces) / kPlaces + 0.0;  // and no negative zero
}

Json shownJson(bool value) {
    return value;
}

Json shownJson(std::int64_t value) {
    return value;
}

Json shownJson(const std::string& value) {
    return value;
}

Json shownJson(ComponentState value) {
    return value == ComponentState::critical ? "critical" : "normal";
}

Json shownJson(ImpactState value) {
    switch (value) {
        case ImpactState::low:
            return "low";
        case ImpactState::moderate:
            return "moderate";
        case ImpactState::high:
            return "high";
    }
    return {};
}

Json shownJson(ThermalLevel value) {
    return rawTextOf(value);
}

Json shownJson(WallInstant value) {
    using namespace std::chrono;
    const auto since = value.time_since_epoch();
    const auto day = floor<days>(since);
    const year_month_day date{sys_days(day)};
    const auto twoDigits = [](unsigned number) {
        return std::string(number < 10 ? "0" : "") + std::to_string(number);
    };
    return std::to_string(static_cast<int>(date.year())) + '-' +
           twoDigits(static_cast<unsigned>(date.month())) + '-' +
           twoDigits(static_cast<unsigned>(date.day())) + 'T' + elapsedText(since - day) + 'Z';
}

Json shownJson(const DiskSnapshot& value) {
    return {{"name", value.name},
            {"usedGB", shownJson(value.usedGB)},
            {"totalGB", shownJson(value.totalGB)},
            {"isExternal", value.isExternal},
            {"isBootVolume", value.isBootVolume},
            {"availableForImportantUsage", shownJson(value.availableForImportantUsage)}};
}

}  // namespace norvane
