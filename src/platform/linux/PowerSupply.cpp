#include "platform/linux/PowerSupply.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/linux/KernelText.h"
#include "platform/linux/SmallFiles.h"

namespace norvane {

namespace {

std::vector<std::string_view> componentsOf(std::string_view path) {
    std::vector<std::string_view> components;
    while (!path.empty()) {
        const std::size_t end = std::min(path.find('/'), path.size());
        if (end > 0) components.push_back(path.substr(0, end));
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return components;
}

}  // namespace

bool isPlaceOfPeripheral(std::string_view place) {
    const auto components = componentsOf(place);
    return std::any_of(components.begin(), components.end(), [](std::string_view component) {
        // Low-energy devices are served by a program through uhid: all that tells of Bluetooth is then the
        // bus number, 0005, at the head of the HID device's name.
        return numberAfter("usb", component) || component == "bluetooth" || component.starts_with("0005:");
    });
}

PowerSupply::PowerSupply(RootFolder root, std::string name)
    : root_(std::move(root)), name_(std::move(name)), folder_(kFolder + name_ + '/') {}

bool PowerSupply::isOfPeripheral() const {
    return isPlaceOfPeripheral(root_.readLink(kFolder + name_).value_or(""));
}

void PowerSupply::load() {
    uevent_ = parsePowerSupplyUevent(root_.read(folder_ + "uevent").value_or(""));
}

std::string PowerSupply::text(std::string_view property) const {
    const auto found = uevent_.properties.find(property);
    return found != uevent_.properties.end() ? found->second : fileText(property);
}

std::optional<std::int64_t> PowerSupply::number(std::string_view property) const {
    return parseSignedNumber(text(property));
}

bool PowerSupply::isFeedingOthers() const {
    // The ports are children of the supply's parent. Captured machines often lack the link to it.
    std::string ports = folder_ + "device/typec/";
    std::vector<std::string> names = root_.names(ports);
    if (const auto place = root_.readLink(kFolder + name_); names.empty() && place) {
        const std::size_t end = place->rfind("/power_supply/");
        if (end != std::string::npos) {
            ports = kFolder + place->substr(0, end) + "/typec/";
            names = root_.names(ports);
        }
    }
    // One controller may have several ports and nothing tells which of them is this supply's: as long as one
    // takes power, the machine is supplied.
    bool hasSource = false;
    for (const std::string& name : names) {
        if (!numberAfter("port", name)) continue;
        const std::string role = root_.read(ports + name + "/power_role").value_or("");
        if (role.find("[sink]") != std::string::npos) return false;
        if (role.find("[source]") != std::string::npos) hasSource = true;
    }
    return hasSource;
}

std::string PowerSupply::fileText(std::string_view property) const {
    return textOf(root_, folder_ + std::string(property));
}

}  // namespace norvane
