#include <algorithm>

#include "platform/linux/KernelText.h"
#include "platform/linux/PowerSupplyUevent.h"
#include "Property.h"

namespace norvane {

void check(std::string_view text) {
    const auto properties = parsePowerSupplyUevent(text).properties;
    require(properties.size() <= lineCount(text), "a property has a line of its own");
    require(parsePowerSupplyUevent(amongUnknownLines(text)).properties == properties,
            "unknown lines don't matter");
    require(parsePowerSupplyUevent(beforeUnknownLines(text) + std::string(text)).properties == properties,
            "the first of two lines counts");
    std::string printed = "DEVTYPE=power_supply\n";
    for (const auto& [name, value] : properties) {
        require(trimmed(value) == value, "a value has no blanks around it");
        std::string key = name;
        std::transform(key.begin(), key.end(), key.begin(), [](char letter) {
            require(letter < 'A' || letter > 'Z', "a property is called like its file");
            return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
        });
        printed += "POWER_SUPPLY_";
        printed += key;
        printed += "= ";
        printed += value;
        printed += " \n";
    }
    require(parsePowerSupplyUevent(printed).properties == properties, "the properties survive printing");
}

}  // namespace norvane
