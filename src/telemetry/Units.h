#pragma once

namespace norvane {

// Memory is told in gigabytes of 2^30 bytes, rates in megabytes of 2^20 bytes a second.
inline constexpr double kBytesPerGB = 1024.0 * 1024.0 * 1024.0;
inline constexpr double kBytesPerMB = 1024.0 * 1024.0;

// The capacities of volumes are told in decimal gigabytes, as they are sold.
inline constexpr double kBytesPerDiskGB = 1e9;

// From this many gigabytes on a whole is told in terabytes, however little of it is used.
inline constexpr double kGBPerTB = 1024.0;

}  // namespace norvane
