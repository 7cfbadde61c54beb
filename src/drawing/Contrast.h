#pragma once

#include "drawing/Color.h"

namespace norvane {

// How well one opaque colour reads upon another, from 1 to 21: the contrast ratio of the Web Content
// Accessibility Guidelines 2.1. Opacity is not looked at.
double contrastBetween(const Color& one, const Color& other);

// What a translucent colour looks like upon an opaque one.
Color laidUpon(const Color& above, const Color& below);

}  // namespace norvane
