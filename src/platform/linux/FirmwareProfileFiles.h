#pragma once

#include "platform/linux/LowPowerRule.h"
#include "platform/linux/RootFolder.h"

namespace norvane {

// The power profile that the firmware runs, from "/sys/firmware/acpi/platform_profile", or where that is
// missing from the drivers' own files under "/sys/class/platform-profile". Reading one asks the driver, which
// may wait for an embedded controller, so it belongs on a lane.
class FirmwareProfileFiles {
 public:
    explicit FirmwareProfileFiles(RootFolder root);

    // Whether there is anything to read. Asks no driver.
    static bool isThere(const RootFolder& root);

    // `absent` where there is no file any more. Files that have nothing to say this time leave it at the last
    // answer.
    FirmwareProfile read();

 private:
    RootFolder root_;
    FirmwareProfile lastAnswer_ = FirmwareProfile::otherProfile;
};

}  // namespace norvane
