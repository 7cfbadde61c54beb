#pragma once

#include <optional>
#include <string>

#include "drawing/Size.h"
#include "drawing/TextStyle.h"
#include "views/Element.h"

namespace norvane {

// Text of ten points: a character is 6 points wide, a line 12.5 high.
inline constexpr TextStyle kTen{.font = {.size = 10}};

// A thing that tells its name and has a size; without one it takes what it is offered.
Element box(std::string name, const FrameSize& size = {});

// Where the things stand that tell their names, one after another: "a 0,0 10x20, b 10,0 5x5". Laid out at
// the size that the element likes, or into the given one.
std::string laidOut(Element element, std::optional<Size> size = {});

// The size that it likes where there is no more room than `most`.
Size fittingSize(Element element, Size most = {1000, 1000});

}  // namespace norvane
