#pragma once

namespace norvane {

// Which of the slow sources a tick is going to ask, told beforehand so that all of them can be asked at once.
struct TickReads {
    bool accelerators = false;
    bool battery = false;
    bool volumes = false;

    bool operator==(const TickReads&) const = default;
};

}  // namespace norvane
