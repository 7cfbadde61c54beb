#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/PowerSupplyUevent.h"
#include "platform/linux/RootFolder.h"

namespace norvane {

// One power supply of the machine or of something connected to it: a battery, an adapter, a port that
// charges. Reading may ask a device and take seconds.
class PowerSupply {
 public:
    static constexpr const char* kFolder = "/sys/class/power_supply/";

    // Nothing is read yet. `name` is one of those in the folder.
    PowerSupply(RootFolder root, std::string name);

    const std::string& name() const { return name_; }

    // Whether the supply hangs on a USB device or is connected by Bluetooth, so that it is of a mouse or the
    // like. Asks no device.
    bool isOfPeripheral() const;

    // Reads all that the supply tells together, which asks the device for everything that it measures.
    void load();

    // A property by the name of its file; from the file itself if it has not been loaded with the others.
    // Empty, or none, where there is none; a number that is no number is none, too.
    std::string text(std::string_view property) const;
    std::optional<std::int64_t> number(std::string_view property) const;

    // Whether the power goes out instead of in: the USB-C port feeds a telephone. Such a port may be online
    // all the same.
    bool isFeedingOthers() const;

 private:
    std::string fileText(std::string_view property) const;

    RootFolder root_;
    std::string name_;
    std::string folder_;
    PowerSupplyUevent uevent_;
};

// Whether the device at this place below /sys/devices belongs to a USB or Bluetooth device.
bool isPlaceOfPeripheral(std::string_view place);

}  // namespace norvane
