#pragma once

#include <optional>
#include <string>

#include "drawing/Font.h"
#include "views/Element.h"
#include "views/Paint.h"

namespace norvane {

// One figure of a panel: a dot, what it is, and how much, at the far end of the cell.
struct FigureCell {
    std::string label;
    // None where nothing is known.
    std::string value = {};
    Font font;
    Paint valuePaint = Ink::primary;
    Paint dot = mutedDot();
    // Around the dot, where it has one.
    Paint glow = Ink::clear;

    Element body() const;

    // The dot of what has no state of its own.
    static Paint mutedDot() { return Paint(Ink::primary).withOpacity(0.5); }
};

// A dot as the panels have them, 4.5 points wide.
Element panelDot(const Paint& paint, const Paint& glow = Ink::clear);

// What a figure, a bar or a row is of, on one line.
Element panelLabel(std::string words);

// Between two cells, in points.
inline constexpr double kFigureGap = 24;

// Two cells side by side, equally wide.
Element figureRow(const FigureCell& first, const FigureCell& second);

}  // namespace norvane
