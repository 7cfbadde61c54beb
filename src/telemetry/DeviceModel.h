#pragma once

#include <string_view>

namespace norvane {

// What a machine is called, and the name of its symbol.
struct DeviceModel {
    std::string_view name;
    std::string_view icon;

    bool operator==(const DeviceModel&) const = default;
};

// For a model's identifier as "hw.model" gives it; empty where it is not known.
DeviceModel deviceModelOf(std::string_view identifier);

}  // namespace norvane
