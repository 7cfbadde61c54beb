#pragma once

#include <string>
#include <variant>

#include "drawing/Color.h"
#include "drawing/Rect.h"
#include "drawing/RoundedRect.h"
#include "drawing/TextStyle.h"

namespace norvane {

// Fills the shape.
struct FillShape {
    RoundedRect shape;
    Color color;

    bool operator==(const FillShape&) const = default;
};

// Strokes the shape's outline, the line's middle on the outline.
struct StrokeShape {
    RoundedRect shape;
    double width = 1;
    Color color;

    bool operator==(const StrokeShape&) const = default;
};

// Sets the text with its box's top left corner at `frame.origin`, wrapped to `frame.size.width` as it was
// measured, then narrowed by `condense` about the left edge: `frame` is the box before narrowing.
struct DrawText {
    std::string text;
    TextStyle style;
    Rect frame;
    Color color;
    double condense = 1;

    bool operator==(const DrawText&) const = default;
};

using DrawCommand = std::variant<FillShape, StrokeShape, DrawText>;

// One thing painted, and the element that asked for it.
struct DisplayItem {
    // The path of the element in its tree, unique within a list.
    std::string key;
    // Everything the command may touch, in points.
    Rect bounds;
    DrawCommand command;

    bool operator==(const DisplayItem&) const = default;
};

}  // namespace norvane
