#include "platform/linux/Battery.h"

#include <cmath>

namespace norvane {

namespace {

// Firmware says 0, or less, where it does not know.
std::optional<double> positive(Battery::Number number) {
    return number && *number > 0 ? std::optional(static_cast<double>(*number)) : std::nullopt;
}

// The value in its own unit or else the other one times the factor, which may be unknown.
std::optional<double> converted(Battery::Number own, Battery::Number other, std::optional<double> factor) {
    if (const auto value = positive(own)) return value;
    const auto value = positive(other);
    return value && factor ? std::optional(*value * *factor) : std::nullopt;
}

Battery::Figures figuresOf(const Battery::Capacities& own, const Battery::Capacities& other,
                           std::optional<double> factor, Battery::Number capacity) {
    Battery::Figures figures{converted(own.full, other.full, factor),
                             converted(own.fullDesign, other.fullDesign, factor),
                             converted(own.now, other.now, factor),
                             {}};
    if (!figures.now && (own.now == 0 || (factor && other.now == 0))) figures.now = 0;

    figures.remaining = figures.now;
    if (figures.full && capacity && figures.now.value_or(0) <= 0) {
        figures.remaining = *figures.full * static_cast<double>(*capacity) / 100;
    }
    return figures;
}

}  // namespace

Battery::Figures Battery::charges() const {
    const auto voltage = positive(voltageMinDesign) ? positive(voltageMinDesign) : positive(voltageNow);
    return figuresOf(charge, energy, voltage ? std::optional(1e6 / *voltage) : std::nullopt, capacity);
}

Battery::Figures Battery::energies() const {
    const auto voltage = positive(voltageMinDesign) ? positive(voltageMinDesign) : positive(voltageNow);
    return figuresOf(energy, charge, voltage ? std::optional(*voltage / 1e6) : std::nullopt, capacity);
}

std::optional<double> Battery::power() const {
    if (powerNow) return std::abs(static_cast<double>(*powerNow));
    const auto voltage = positive(voltageNow);
    if (!currentNow || !voltage) return std::nullopt;
    return std::abs(static_cast<double>(*currentNow)) * *voltage / 1e6;
}

Battery readBattery(const PowerSupply& supply) {
    Battery battery;
    battery.name = supply.name();
    battery.status = supply.text("status");
    battery.health = supply.text("health");
    battery.capacity = supply.number("capacity");
    if (battery.capacity && (*battery.capacity < 0 || *battery.capacity > 100)) battery.capacity.reset();
    battery.charge = {supply.number("charge_full"), supply.number("charge_full_design"),
                      supply.number("charge_now")};
    battery.energy = {supply.number("energy_full"), supply.number("energy_full_design"),
                      supply.number("energy_now")};
    battery.voltageMinDesign = supply.number("voltage_min_design");
    battery.voltageNow = supply.number("voltage_now");
    battery.powerNow = supply.number("power_now");
    battery.currentNow = supply.number("current_now");
    battery.temp = supply.number("temp");
    battery.cycleCount = supply.number("cycle_count");
    battery.chargeControlEndThreshold = supply.number("charge_control_end_threshold");
    return battery;
}

}  // namespace norvane
