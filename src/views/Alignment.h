#pragma once

namespace norvane {

// Where something stands across the direction of its stack or within a frame that is larger than it.
enum class Alignment { start, center, end };

// The distance from the start for `length` within `room`; negative where it does not fit.
constexpr double alignedOffset(Alignment alignment, double length, double room) {
    switch (alignment) {
        case Alignment::start:
            return 0;
        case Alignment::center:
            return (room - length) / 2;
        case Alignment::end:
            return room - length;
    }
    return 0;
}

}  // namespace norvane
