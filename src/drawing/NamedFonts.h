#pragma once

#include "drawing/Font.h"

// The platform's fonts by what they are for.
namespace norvane::font {

inline constexpr Font kTitle2{.size = 17};
inline constexpr Font kHeadline{.size = 13, .weight = FontWeight::bold};
inline constexpr Font kBody{.size = 13};
inline constexpr Font kCaption{.size = 10};

// The system font.
constexpr Font system(double size, FontWeight weight = FontWeight::regular) {
    return {.size = size, .weight = weight};
}

}  // namespace norvane::font
