#include "dashboard/CapacityColor.h"

namespace norvane {

double capacityRatio(double usedGB, double totalGB) {
    return totalGB > 1.0 ? usedGB / totalGB : usedGB;
}

Ink capacityColor(double ratio) {
    if (!(ratio >= 0)) return Ink::red;
    if (ratio < 0.7) return Ink::green;
    if (ratio < 0.85) return Ink::yellow;
    return ratio < 0.95 ? Ink::orange : Ink::red;
}

std::optional<Ink> scarceRoomColor(double availableGB) {
    if (availableGB < 10.0) return Ink::red;
    if (availableGB < 30.0) return Ink::orange;
    return std::nullopt;
}

Ink diskColor(const DiskSnapshot& volume) {
    const auto scarce =
        volume.isBootVolume ? scarceRoomColor(volume.availableForImportantUsage) : std::nullopt;
    return scarce.value_or(capacityColor(capacityRatio(volume.usedGB, volume.totalGB)));
}

}  // namespace norvane
