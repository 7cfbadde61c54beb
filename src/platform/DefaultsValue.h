#pragma once

#include <string>
#include <variant>

namespace norvane {

// What the defaults store holds under a key.
using DefaultsValue = std::variant<bool, double, std::string>;

}  // namespace norvane
