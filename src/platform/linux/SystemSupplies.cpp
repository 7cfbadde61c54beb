#include "platform/linux/SystemSupplies.h"

namespace norvane {

namespace {

bool isExternal(const std::string& type) {
    // "USB_PD" and its like, which older kernels have instead of "USB".
    return type == "Mains" || type.starts_with("USB") || type == "BrickID" || type == "Wireless";
}

}  // namespace

SystemSupplies readSystemSupplies(const RootFolder& root) {
    SystemSupplies supplies;
    // Names prove nothing: "cw2015-battery" runs a machine, and "hidpp_battery_0" is a mouse's.
    for (const std::string& name : root.names(PowerSupply::kFolder)) {
        PowerSupply supply(root, name);
        const bool isOfPeripheral = supply.isOfPeripheral();
        // Asking a mouse for its charge would wake it.
        if (!isOfPeripheral) supply.load();
        const std::string type = supply.text("type");
        const bool isBattery = type == "Battery" && !isOfPeripheral;
        if (!isBattery && !isExternal(type)) continue;

        // Some drivers do not say, or say "Unknown", for what powers the machine.
        if (supply.text("scope") == "Device") continue;
        supplies.areThereAny = true;
        if (!isBattery) {
            const bool isOnline = supply.number("online").value_or(0) >= 1;  // 2 where the voltage varies
            supplies.externals.push_back({type == "Mains", isOnline && !supply.isFeedingOthers()});
        } else if (supply.number("present") != 0) {
            supplies.batteries.push_back(readBattery(supply));
        }
    }
    return supplies;
}

}  // namespace norvane
