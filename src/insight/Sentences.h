#pragma once

#include <string_view>

// Every sentence that the system says of the machine, in one place for whoever writes them.
namespace norvane::sentences {

inline constexpr std::string_view kInitializing = "Initializing system telemetry...";
inline constexpr std::string_view kTemperatureElevated =
    "System temperature is elevated. Performance may be reduced to manage heat.";
inline constexpr std::string_view kThermalLimit =
    "Thermal limit reached. Performance is being throttled to protect hardware.";
inline constexpr std::string_view kBatteryLow =
    "Battery is running low. Connect to power to avoid interruption.";
inline constexpr std::string_view kMemoryExhausted =
    "Critical memory exhaustion. System responsiveness is severely compromised.";
inline constexpr std::string_view kComputeAndGraphicsSaturated =
    "Critical resource saturation. Compute and Graphics are at maximum capacity.";
inline constexpr std::string_view kProcessorSaturated =
    "Critical processor load. Every available cycle is currently utilized.";
inline constexpr std::string_view kLowPowerMode =
    "Low Power Mode is active. Conserving energy for extended use.";
inline constexpr std::string_view kOptimal = "System is operating optimally within comfortable parameters.";

}  // namespace norvane::sentences
