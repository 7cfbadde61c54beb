#pragma once

#include <string_view>

// Every sentence that the system says of the machine, in one place for whoever writes them. It stands on the
// lowest floor that says one.
namespace norvane::sentences {

// Notifications: a title and a body. The component's name, or the user's threshold, belongs in between.

inline constexpr std::string_view kSustainedLoad = " Sustained Load";
inline constexpr std::string_view kProcessorPinned =
    "The processor has been pinned at maximum capacity for over 3 minutes.";
inline constexpr std::string_view kMemoryPressureHigh =
    "Memory pressure has been critically high for over 3 minutes. Consider closing inactive apps.";
inline constexpr std::string_view kStorageWarning = "Storage Warning";
inline constexpr std::string_view kFreeSpaceBelow = "Your Mac has less than ";
inline constexpr std::string_view kFreeSpaceRemaining = " GB of free space remaining.";
inline constexpr std::string_view kBatteryWarning = "Battery Warning";
inline constexpr std::string_view kBatteryBelow = "Battery has dropped below ";
inline constexpr std::string_view kBatteryPercent = "%.";

// The status line: one sentence on the whole machine.

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

// The explanations in the panels: a headline, a line feed and a sentence that says what it means. Those that
// speak of missing data are headlines alone.

inline constexpr std::string_view kCPUUnavailable = "CPU status unavailable.";
inline constexpr std::string_view kCPUAndGPUSaturated =
    "Critical system load.\n"
    "Both CPU and GPU are nearly saturated. The system is handling extremely heavy rendering, compute, or "
    "graphics tasks.";
inline constexpr std::string_view kPCoresSaturated =
    "Critical CPU load.\n"
    "Performance cores are pinned near maximum capacity. Expect reduced system responsiveness until tasks "
    "complete.";
inline constexpr std::string_view kCPUSaturated =
    "Critical CPU load.\n"
    "The processor is fully saturated with demanding background or foreground tasks.";
inline constexpr std::string_view kCPUResting =
    "System is resting.\n"
    "The processor has vast idle capacity and is highly responsive to new tasks.";
inline constexpr std::string_view kCPUModerateLoad =
    "CPU is under moderate load.\n"
    "Sustained usage indicates active workloads are running. The system remains responsive but has reduced "
    "headroom for additional tasks.";
inline constexpr std::string_view kCPUNormalWithGraphics =
    "Normal CPU activity.\n"
    "However, noticeable graphics processing is actively occurring.";
inline constexpr std::string_view kCPUEfficient =
    "CPU is operating efficiently.\n"
    "Compute demand is low and the system is maintaining optimal performance.";

inline constexpr std::string_view kMemoryUnavailable = "Memory status unavailable.";
inline constexpr std::string_view kMemoryCritical =
    "Critical memory load.\n"
    "The system is severely bottlenecked, aggressively thrashing the SSD for virtual memory. System "
    "responsiveness is significantly impacted.";
inline constexpr std::string_view kMemoryPressureElevated =
    "Elevated memory pressure.\n"
    "Physical RAM is full. macOS is heavily relying on SSD swap space to keep background applications "
    "running. Consider closing unused apps.";
inline constexpr std::string_view kMemoryHighlyUtilized =
    "Memory is highly utilized.\n"
    "macOS is actively compressing background data to avoid using the slower SSD swap. Foreground "
    "performance remains stable.";
inline constexpr std::string_view kMemoryCaching =
    "Operating optimally.\n"
    "macOS is efficiently utilizing unused RAM to cache files for instant access. This space will be "
    "immediately freed if applications request it.";
inline constexpr std::string_view kMemoryHealthy =
    "Memory is healthy.\n"
    "Application demand is comfortably fitting within physical RAM without requiring active compression or "
    "SSD swap.";

inline constexpr std::string_view kStorageUnavailable = "Internal storage information is unavailable.";
inline constexpr std::string_view kStorageCritical =
    "Critical storage limit.\n"
    "Very little free space remains on the boot drive. macOS cannot operate normally, and system crashes "
    "may occur. Free up space immediately.";
inline constexpr std::string_view kStorageLow =
    "Low storage capacity.\n"
    "With limited free space remaining, macOS is actively purging local caches and optimizing iCloud "
    "storage. Performance may degrade during large file transfers.";
inline constexpr std::string_view kStorageHeavyWrite =
    "Heavy write activity.\n"
    "The drive is sustaining heavy write loads. This is typical of large file transfers, media exports, or "
    "extreme memory swapping.";
inline constexpr std::string_view kStorageHeavyRead =
    "Heavy read activity.\n"
    "The drive is sustaining heavy read loads. This is typical of loading large applications, media "
    "caching, or system scans.";
inline constexpr std::string_view kStorageFilling =
    "Storage is filling up.\n"
    "Storage capacity is well utilized. System operations are normal, but consider archiving large files "
    "soon to maintain optimal headroom.";
inline constexpr std::string_view kStorageHealthy =
    "Storage is healthy.\n"
    "Capacity is comfortable, and current drive I/O operations are resting within efficient, low-impact "
    "ranges.";

inline constexpr std::string_view kBatteryUnavailable = "Battery status unavailable.";
inline constexpr std::string_view kHeatFromCompute =
    "Thermal limit reached.\n"
    "Heavy compute load is generating excess heat. macOS is throttling performance to protect the hardware.";
inline constexpr std::string_view kHeatFromElsewhere =
    "Thermal limit reached.\n"
    "Internal temperatures are high. Ensure your Mac has proper ventilation.";
inline constexpr std::string_view kChargingWarm =
    "Active charging.\n"
    "Battery is slightly warm, which is expected during power delivery.";
inline constexpr std::string_view kCharging =
    "Active charging.\n"
    "Energy transfer and thermals are operating within optimal, efficient margins.";
inline constexpr std::string_view kFullyCharged =
    "Fully charged.\n"
    "The system is operating directly on AC power to preserve battery lifespan.";
inline constexpr std::string_view kChargeOnHold =
    "Charge on hold.\n"
    "macOS is maintaining current capacity to optimize long-term battery chemistry.";
inline constexpr std::string_view kServiceRecommended =
    "Service recommended.\n"
    "Battery capacity has noticeably degraded over time from charge cycles. It will hold less charge than "
    "when new.";
inline constexpr std::string_view kBatteryCriticallyLow =
    "Battery critically low.\n"
    "Connect to power immediately to avoid an unexpected shutdown.";
inline constexpr std::string_view kBatteryRunningLow =
    "Battery is running low.\n"
    "Connect to power soon to avoid interruption.";
inline constexpr std::string_view kImpactFromSwap =
    "High energy impact.\n"
    "Excessive memory swap is forcing constant disk access, which rapidly drains battery.";
inline constexpr std::string_view kImpactFromGraphics =
    "High energy impact.\n"
    "Heavy GPU utilization is currently the primary source of power draw.";
inline constexpr std::string_view kImpactFromWorkloads =
    "High energy impact.\n"
    "Sustained background workloads are pushing hardware limits, leading to faster battery drain.";
inline constexpr std::string_view kLowPowerModeActive =
    "Low Power Mode active.\n"
    "macOS is deliberately restricting background tasks and reducing processor clock speeds to stretch "
    "remaining charge.";
inline constexpr std::string_view kEfficiencyCores =
    "Operating optimally.\n"
    "macOS is efficiently routing background tasks exclusively to the Efficiency cores, preserving battery "
    "life.";
inline constexpr std::string_view kBatteryHealthy =
    "Battery is healthy.\n"
    "Compute demand, memory pressure, and energy consumption are currently within optimal ranges.";

}  // namespace norvane::sentences
