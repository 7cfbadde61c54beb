#pragma once

namespace norvane {

enum class LineCap { butt, round };
enum class LineJoin { miter, round };

// How a line is drawn along an outline. Lengths in points.
struct StrokeStyle {
    double width = 1;
    LineCap cap = LineCap::butt;
    LineJoin join = LineJoin::miter;
    // Drawn and left out in turn; a line without gaps where either is 0.
    double dashOn = 0;
    double dashOff = 0;

    bool operator==(const StrokeStyle&) const = default;
};

}  // namespace norvane
