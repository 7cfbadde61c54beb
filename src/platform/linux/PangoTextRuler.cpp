#include "platform/linux/PangoTextRuler.h"

#include <algorithm>

namespace norvane {

TextMetrics PangoTextRuler::measure(std::string_view text, const TextStyle& style, double maxWidth) {
    PangoLayout* const layout = layouts_.layout(text, style, maxWidth);
    PangoRectangle logical;
    pango_layout_get_extents(layout, nullptr, &logical);
    const auto points = [](int units) { return static_cast<double>(units) / PANGO_SCALE; };
    return {.size = {points(logical.width), points(logical.height)},
            .baseline = points(pango_layout_get_baseline(layout)),
            .lines = std::max(1, pango_layout_get_line_count(layout))};
}

}  // namespace norvane
