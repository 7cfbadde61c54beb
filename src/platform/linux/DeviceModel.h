#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "platform/linux/RootFolder.h"

namespace norvane {

// What a machine's firmware says about the machine. Texts are without blanks at their ends, and empty where
// there is none.
struct DeviceFacts {
    // From the DMI tables: "sys_vendor", "product_name", and the enclosure by its number in SMBIOS (DSP0134).
    std::string vendor;
    std::string product;
    std::optional<std::uint64_t> chassisType;
    // ACPI's "Preferred_PM_Profile", by its number there.
    std::optional<std::uint64_t> powerProfile;
    // The device tree's model.
    std::string deviceTreeModel;
};

// What kind of machine this is, as a model's identifier: the firmware's own where it names a Mac, otherwise
// just "MacBook", "iMac", "MacPro" or "Macmini" for a laptop, a desktop, a tower and a small box. Never with
// the product's name, which may contain any word. No value for servers, virtual machines and whatever does
// not say what it is. `hasBattery` is asked only where the firmware leaves it open whether this is a laptop.
std::optional<std::string> deviceModel(const DeviceFacts& facts, const std::function<bool()>& hasBattery);

// Of the machine below `root`. Reads a few small files; any thread.
std::optional<std::string> readDeviceModel(const RootFolder& root, const std::function<bool()>& hasBattery);

}  // namespace norvane
