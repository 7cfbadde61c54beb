#pragma once

#include <variant>

#include "drawing/Color.h"

namespace norvane {

// A colour by what it is for; what it looks like depends on the appearance.
enum class Ink {
    primary,
    secondary,
    labelColor,
    secondaryLabelColor,
    controlAccentColor,
    link,
    controlBackgroundColor,
    separator,
    white,
    black,
    clear,
    red,
    orange,
    yellow,
    green,
    teal,
    blue,
    purple,
};

// What something is painted with: an ink or a colour of its own, made more transparent by `opacity`.
struct Paint {
    std::variant<Ink, Color> source;
    double opacity = 1;

    Paint(Ink ink) : source(ink) {}  // implicit: inks and colours are written where a paint is wanted
    Paint(const Color& color) : source(color) {}

    Paint withOpacity(double factor) const {
        Paint paint = *this;
        paint.opacity *= factor;
        return paint;
    }

    bool operator==(const Paint&) const = default;
};

}  // namespace norvane
