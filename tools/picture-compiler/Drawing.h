#pragma once

#include <string_view>

#include "drawing/Picture.h"

namespace norvane {

// Symbols are drawn in one colour, which whoever shows them chooses; images have colours of their own.
enum class PictureKind { symbol, image };

// The grid of every symbol, in units along each side.
inline constexpr double kSymbolGrid = 20;

// The picture that the text of an SVG file describes. It understands a small part of that language and
// throws a `Complaint` about everything else: what is not understood must not go missing in silence.
Picture drawingIn(std::string_view svg, PictureKind kind);

}  // namespace norvane
