#pragma once

#include <vector>

#include "platform/linux/Battery.h"

namespace norvane {

// "Service Recommended" if a battery's driver says that it is damaged or if it holds less than half of what
// it was made for; otherwise "Normal". The half is low on purpose: the design figures of firmware are often
// wrong.
const char* batteryHealthCondition(const std::vector<Battery>& batteries);

}  // namespace norvane
