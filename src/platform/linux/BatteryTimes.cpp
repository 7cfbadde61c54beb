#include "platform/linux/BatteryTimes.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "platform/linux/BatteryFigures.h"

namespace norvane {

namespace {

using Seconds = std::chrono::duration<double>;

constexpr Seconds kTimeConstant{60};
constexpr std::chrono::seconds kSettling{10};
constexpr double kLeastPower = 100'000;  // µW
constexpr std::chrono::hours kLongestToEmpty{24};
constexpr std::chrono::hours kLongestToFull{20};

// Batteries share the load in turns, so the sum is what matters. None where none tells.
std::optional<double> powerOf(const std::vector<Battery>& batteries) {
    std::optional<double> total;
    for (const Battery& battery : batteries) {
        if (const auto power = battery.power()) total = total.value_or(0) + *power;
    }
    return total;
}

bool isAny(const std::vector<Battery>& batteries, std::string_view status) {
    return std::any_of(batteries.begin(), batteries.end(),
                       [&](const Battery& battery) { return battery.status == status; });
}

std::int64_t minutes(std::optional<double> energy, double power, std::chrono::minutes longest) {
    if (!energy) return BatteryTimes::kUnknown;
    const double result = *energy / power * 60;
    return result <= static_cast<double>(longest.count()) ? static_cast<std::int64_t>(result)
                                                          : BatteryTimes::kUnknown;
}

}  // namespace

BatteryTimes::Minutes BatteryTimes::update(const std::vector<Battery>& batteries,
                                           std::optional<bool> isExternalPowerConnected,
                                           MonotonicInstant now) {
    Situation situation{{}, isExternalPowerConnected};
    for (const Battery& battery : batteries)
        situation.statuses.emplace_back(battery.name, battery.status);
    if (situation_ != situation) {
        situation_ = std::move(situation);
        samples_ = 0;
    }

    const auto power = powerOf(batteries);
    if (!power) return {};
    smooth(*power, now);
    if (samples_ < 2 || now - firstSample_ < kSettling || power_ < kLeastPower) return {};

    const bool isCharging = isAny(batteries, "Charging");
    const bool isDischarging = isAny(batteries, "Discharging");
    Minutes answer;
    if (isDischarging && !isCharging) {
        answer.toEmpty = minutes(remainingEnergy(batteries), power_, kLongestToEmpty);
    }
    if (isCharging && !isDischarging) {
        answer.toFull = minutes(missingEnergy(batteries), power_, kLongestToFull);
    }
    return answer;
}

void BatteryTimes::smooth(double power, MonotonicInstant now) {
    if (samples_ == 0) {
        firstSample_ = now;
        power_ = power;
    } else {
        power_ += (1 - std::exp(-Seconds(now - lastSample_) / kTimeConstant)) * (power - power_);
    }
    lastSample_ = now;
    samples_ = std::min(samples_ + 1, 2);
}

}  // namespace norvane
