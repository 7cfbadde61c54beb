#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/DrmEngine.h"

namespace norvane {

// What /proc/<pid>/fdinfo tells about an open graphics device (the kernel's "DRM client usage stats").
struct DrmFdinfo {
    // The same for all descriptors of one client, in whatever process they are.
    std::string clientId;
    // The device's PCI slot, "0000:00:02.0"; empty where it is not on such a bus.
    std::string pdev;
    DrmEngines engines;
};

// None where the text is not that of a graphics device, or does not say whose it is. Unknown lines, and
// numbers in another unit than the kernel's rules say, are skipped. Of a repeated line, the first counts.
std::optional<DrmFdinfo> parseDrmFdinfo(std::string_view text);

}  // namespace norvane
