#pragma once

#include <optional>

#include "platform/linux/MemoryFigures.h"
#include "platform/linux/Pressure.h"

namespace norvane {

// How short of memory the machine is: 1 normal, 2 warning, 4 critical. Judges one reading and remembers
// nothing; steadiness is the business of whoever shows it. Without pressure information, the amounts decide.
int memoryPressureLevel(const MemoryFigures& memory, const std::optional<Pressure>& pressure);

}  // namespace norvane
