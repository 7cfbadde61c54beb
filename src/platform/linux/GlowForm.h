#pragma once

#include <cairo.h>
#include <memory>
#include <optional>

#include "drawing/Shape.h"
#include "drawing/StrokeStyle.h"

namespace norvane {

// What throws a glow: a silhouette in whole pixels and whole steps, without its place. Two shapes whose glows
// cannot be told apart have the same form.
struct GlowForm {
    enum class Kind { rect, arc, path };

    Kind kind = Kind::rect;
    // The box around the shape's outline, pixels.
    int width = 0;
    int height = 0;
    // Quarters of a pixel: what a corner's radius and a line's lengths are counted in.
    int radius = 0;
    int line = 0;  // 0 for a filled shape
    int dashOn = 0;
    int dashOff = 0;
    CornerStyle corners = CornerStyle::circular;
    LineCap cap = LineCap::butt;
    LineJoin join = LineJoin::miter;
    // Of an arc, in steps of 2 degrees, the first within a turn; a whole circle is 0 to `kTurn`.
    int from = 0;
    int to = 0;
    // Of a path, pixels for one unit of its own.
    std::shared_ptr<const Path> path;
    double scaleX = 1;
    double scaleY = 1;

    static constexpr int kTurn = 180;

    // None for what is not drawn: numbers that are none, no extent, no line.
    static std::optional<GlowForm> of(const Shape& shape, const std::optional<StrokeStyle>& stroke,
                                      double scale);

    // How far a line's outer edge is from the outline, pixels.
    int outside() const;
    // How far from the ends of its box its sides are not alike yet; none for what has no straight sides.
    std::optional<int> corner() const;
    // Draws it in full, its box's corner at the origin. The context's units are pixels.
    void paint(cairo_t* context) const;

    // Two paths of the same segments are the same, whoever owns them.
    bool operator==(const GlowForm& other) const;
};

}  // namespace norvane
