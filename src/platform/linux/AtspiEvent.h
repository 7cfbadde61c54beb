#pragma once

#include <string>
#include <variant>

#include "platform/linux/AtspiObject.h"

namespace norvane {

// Something that assistive technologies are told: a signal of the object, with the texts and numbers of
// AT-SPI.
struct AtspiEvent {
    // What comes and goes is told to the cache as well.
    enum class Kind { object, window, appeared, disappeared };

    Kind kind = Kind::object;
    AtspiId source = 0;
    // The signal's name in its interface, none for the cache's own.
    const char* member = "";
    std::string detail = {};
    int first = 0;
    int second = 0;
    std::variant<std::monostate, std::string, double, AtspiId> value = {};

    bool operator==(const AtspiEvent& other) const {
        return kind == other.kind && source == other.source && std::string(member) == other.member &&
               detail == other.detail && first == other.first && second == other.second &&
               value == other.value;
    }
};

}  // namespace norvane
