#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace norvane {

// What a power supply tells about itself in its uevent file: lines such as "POWER_SUPPLY_CHARGE_FULL=5000000"
// ("Linux power supply class"). One read of it replaces one of each property's own file, every one of which
// may ask an embedded controller.
struct PowerSupplyUevent {
    // By the names of the properties' own files, such as "charge_full"; the values without blanks around
    // them.
    std::map<std::string, std::string, std::less<>> properties;
};

// Lines of any other kind are skipped. Of a repeated property, the first counts.
PowerSupplyUevent parsePowerSupplyUevent(std::string_view text);

}  // namespace norvane
