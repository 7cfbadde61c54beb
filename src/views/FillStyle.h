#pragma once

#include "views/Paint.h"

namespace norvane {

enum class GradientDirection { leadingToTrailing, topToBottom };

// What a shape is painted with: one paint, or two that run into one another across it.
struct FillStyle {
    Paint from = Ink::clear;
    Paint to = Ink::clear;
    GradientDirection direction = GradientDirection::leadingToTrailing;

    FillStyle() = default;
    // Implicit: inks, colours and paints are written where a fill is wanted.
    FillStyle(Ink ink) : FillStyle(Paint(ink)) {}
    FillStyle(const Color& color) : FillStyle(Paint(color)) {}
    FillStyle(const Paint& paint) : from(paint), to(paint) {}
    FillStyle(const Paint& first, const Paint& last, GradientDirection towards)
        : from(first), to(last), direction(towards) {}

    bool operator==(const FillStyle&) const = default;
};

}  // namespace norvane
