#include "platform/linux/DeviceModel.h"

#include <string_view>

#include "platform/linux/KernelText.h"
#include "platform/linux/SmallFiles.h"

namespace norvane {

namespace {

constexpr std::string_view kMaker = "Apple";

enum class Build { unclear, laptop, desktop, tower, small, other };

// By the table "System Enclosure or Chassis Types" of SMBIOS (DSP0134).
Build buildOf(std::optional<std::uint64_t> chassisType) {
    if (!chassisType) return Build::unclear;
    switch (*chassisType) {
        case 1:   // other
        case 2:   // unknown
        case 17:  // main server chassis: tablets have claimed to be one
        case 23:  // rack mount chassis
            return Build::unclear;
        case 8:   // portable
        case 9:   // laptop
        case 10:  // notebook
        case 11:  // hand held
        case 14:  // sub notebook
        case 30:  // tablet
        case 31:  // convertible
        case 32:  // detachable
            return Build::laptop;
        case 3:   // desktop
        case 4:   // low profile desktop
        case 5:   // pizza box
        case 13:  // all in one
        case 15:  // space-saving
        case 16:  // lunch box
        case 24:  // sealed-case PC
            return Build::desktop;
        case 6:  // mini tower
        case 7:  // tower
            return Build::tower;
        case 33:  // IoT gateway
        case 34:  // embedded PC
        case 35:  // mini PC
        case 36:  // stick PC
            return Build::small;
        default:
            return Build::other;
    }
}

// The ACPI profiles "Mobile" and "Tablet".
bool isMobile(std::optional<std::uint64_t> powerProfile) {
    return powerProfile == 2u || powerProfile == 8u;
}

std::string withoutBlanks(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\n";
    std::string rest(text);
    std::erase_if(rest, [&](char c) { return kBlanks.find(c) != std::string_view::npos; });
    return rest;
}

}  // namespace

std::optional<std::string> deviceModel(const DeviceFacts& facts, const std::function<bool()>& hasBattery) {
    if (facts.vendor.starts_with(kMaker) && !facts.product.empty()) return facts.product;
    if (facts.deviceTreeModel.starts_with(kMaker)) return withoutBlanks(facts.deviceTreeModel);

    const Build build = buildOf(facts.chassisType);
    if (build == Build::laptop) return "MacBook";
    if (build == Build::unclear && (isMobile(facts.powerProfile) || hasBattery())) return "MacBook";
    if (build == Build::desktop) return "iMac";
    if (build == Build::tower) return "MacPro";
    if (build == Build::small || !facts.deviceTreeModel.empty()) return "Macmini";
    return std::nullopt;
}

std::optional<std::string> readDeviceModel(const RootFolder& root, const std::function<bool()>& hasBattery) {
    const std::string dmi = "/sys/class/dmi/id/";
    DeviceFacts facts;
    facts.vendor = textOf(root, dmi + "sys_vendor");
    facts.product = textOf(root, dmi + "product_name");
    facts.chassisType = parseNumber(textOf(root, dmi + "chassis_type"));
    facts.powerProfile = parseNumber(textOf(root, "/sys/firmware/acpi/pm_profile"));
    facts.deviceTreeModel = textOf(root, "/proc/device-tree/model");
    return deviceModel(facts, hasBattery);
}

}  // namespace norvane
