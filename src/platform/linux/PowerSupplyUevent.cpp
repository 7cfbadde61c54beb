#include "platform/linux/PowerSupplyUevent.h"

#include <algorithm>

#include "platform/linux/KernelText.h"

namespace norvane {

namespace {

constexpr std::string_view kPrefix = "POWER_SUPPLY_";

char lowerCased(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

}  // namespace

PowerSupplyUevent parsePowerSupplyUevent(std::string_view text) {
    PowerSupplyUevent uevent;
    while (!text.empty()) {
        const std::string_view line = takeLine(text);
        const std::size_t equals = line.find('=');
        if (!line.starts_with(kPrefix) || equals == std::string_view::npos) continue;
        const std::string_view name = line.substr(kPrefix.size(), equals - kPrefix.size());
        std::string property(name);
        std::transform(property.begin(), property.end(), property.begin(), lowerCased);
        uevent.properties.emplace(std::move(property), trimmed(line.substr(equals + 1)));
    }
    return uevent;
}

}  // namespace norvane
