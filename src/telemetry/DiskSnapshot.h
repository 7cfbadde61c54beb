#pragma once

#include <string>

#include "platform/UUID.h"

namespace norvane {

// One mounted volume as shown to the user. Capacities are decimal gigabytes (bytes / 1,000,000,000).
struct DiskSnapshot {
    // Tells the rows of one list apart; new at every read.
    UUID id;
    std::string name;
    double usedGB = 0;
    double totalGB = 0;
    bool isExternal = false;
    // The system was booted from it.
    bool isBootVolume = false;
    // The free space on which storage alerts and storage bands rest.
    double availableForImportantUsage = 0;

    bool operator==(const DiskSnapshot&) const = default;
};

}  // namespace norvane
