#pragma once

#include "platform/Registry.h"

namespace norvane {

// Reads how busy the graphics processors are. Belongs to the tick; keeps nothing.
class GPUReader {
 public:
    explicit GPUReader(Registry& registry) : registry_(registry) {}

    // Percent: the mean over the devices that report a number, as they report it. 0 where none does.
    double readGPUUtilization(TickToken tick);

 private:
    Registry& registry_;
};

}  // namespace norvane
