#pragma once

#include <optional>
#include <string>

#include "platform/linux/RootFolder.h"

namespace norvane {

// What kind of machine this is, as a model's identifier. No value where nothing tells.
std::optional<std::string> readDeviceModel(const RootFolder& root);

}  // namespace norvane
