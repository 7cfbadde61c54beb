#pragma once

#include "platform/WallClock.h"

namespace norvane {

// CLOCK_REALTIME.
class LinuxWallClock final : public WallClock {
 public:
    WallInstant now() const override;
};

}  // namespace norvane
