#pragma once

#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "drawing/Color.h"
#include "drawing/Fill.h"
#include "drawing/Rect.h"
#include "drawing/Shape.h"
#include "drawing/StrokeStyle.h"
#include "drawing/TextStyle.h"

namespace norvane {

struct DisplayItem;
struct DisplayList;

// Whether edges are put on whole device pixels, for lines and dots that a part of a pixel would blur. Never
// less than a pixel remains of them.
enum class Snapping { none, toPixels };

// Fills the shape.
struct FillShape {
    Shape shape;
    Fill fill;
    Snapping snapping = Snapping::none;

    bool operator==(const FillShape&) const = default;
};

// Strokes the shape's outline, the line's middle on the outline.
struct StrokeShape {
    Shape shape;
    StrokeStyle style;
    Fill fill;
    Snapping snapping = Snapping::none;

    bool operator==(const StrokeShape&) const = default;
};

// The shape's shadow, or its glow: its silhouette in one colour, moved and blurred. The blur is a Gaussian
// whose standard deviation is half the radius.
struct DrawShadow {
    Shape shape;
    // Of a line along the outline; of the whole shape where there is none.
    std::optional<StrokeStyle> stroke;
    double radius = 0;
    Point offset;
    Color color;
    // Left out where the shape itself is, so that it does not darken what shines through.
    bool isOutsideOnly = false;

    bool operator==(const DrawShadow&) const = default;
};

// Sets the text with its box's top left corner at `frame.origin`, wrapped to `frame.size.width` as it was
// measured, then scaled about that corner: `frame` is the box before scaling.
struct DrawText {
    std::string text;
    TextStyle style;
    Rect frame;
    Color color;
    double scaleX = 1;
    double scaleY = 1;

    bool operator==(const DrawText&) const = default;
};

// One of our own pictures of a single colour, by its name; it fills the frame. An unknown name is nothing.
struct DrawSymbol {
    std::string name;
    Rect frame;
    Color color;

    bool operator==(const DrawSymbol&) const = default;
};

// One of our own pictures in its own colours, by its name; it fills the frame. An unknown name is nothing.
struct DrawImage {
    std::string name;
    Rect frame;

    bool operator==(const DrawImage&) const = default;
};

// A finished list whose picture is worth keeping: whoever paints may keep it for as long as the same list is
// drawn, wherever it is drawn. It is cut at its size.
struct DrawPicture {
    std::shared_ptr<const DisplayList> picture;  // null is nothing
    Point at;
    double opacity = 1;
    Snapping snapping = Snapping::none;

    // The same list is the same object: lists are not compared.
    bool operator==(const DrawPicture&) const = default;
};

// Several items as one: painted together, cut at the clip, and laid over what is behind with one opacity.
struct DrawGroup {
    double opacity = 1;
    std::optional<RoundedRect> clip;
    std::vector<DisplayItem> items;

    bool operator==(const DrawGroup&) const;
};

// Items that stay as they are from frame to frame, shared rather than made anew: nothing else than if they
// stood in the list themselves, in this place.
struct DrawShared {
    std::shared_ptr<const std::vector<DisplayItem>> items;  // null is none

    bool operator==(const DrawShared&) const;
};

using DrawCommand = std::variant<FillShape, StrokeShape, DrawShadow, DrawText, DrawSymbol, DrawImage,
                                 DrawPicture, DrawGroup, DrawShared>;

// One thing painted, and the element that asked for it.
struct DisplayItem {
    // The path of the element in its tree, unique within its list or group.
    std::string key;
    // Everything the command may touch, in points.
    Rect bounds;
    DrawCommand command;

    bool operator==(const DisplayItem&) const = default;
};

// Written out: clang 14 does not survive a defaulted one that comes to itself through its items.
inline bool DrawGroup::operator==(const DrawGroup& other) const {
    return opacity == other.opacity && clip == other.clip && items == other.items;
}

inline bool DrawShared::operator==(const DrawShared& other) const {
    if (items == other.items) return true;
    return items && other.items && *items == *other.items;
}

}  // namespace norvane
