#pragma once

#include <optional>
#include <string>

#include "platform/DefaultsValue.h"

namespace norvane {

// What a stored value means where a certain type is expected; none where it means nothing of that type.
// People edit the store by hand, so a number may stand as a text and a Bool as 0 or 1.
std::optional<bool> storedBool(const DefaultsValue& value);
// Always finite.
std::optional<double> storedNumber(const DefaultsValue& value);
std::optional<std::string> storedText(const DefaultsValue& value);

}  // namespace norvane
