#include "platform/linux/TextPainting.h"

#include <pango/pangocairo.h>
#include <cmath>
#include <cstdint>
#include <memory>
#include <utility>

#include "platform/linux/CairoShapes.h"
#include "platform/linux/PixelRect.h"

namespace norvane {
namespace {

// Pixels. A larger text is not worth keeping.
constexpr std::int64_t kLargestTextMask = 512 * 1024;
// A text is put on the grid to this part of a pixel.
constexpr double kPhases = 4;
constexpr double kSmallest = 0.01;
constexpr double kLargest = 100;

struct LayoutIterDeleter {
    void operator()(PangoLayoutIter* iter) const { pango_layout_iter_free(iter); }
};

bool isScale(double value) {
    return value > kSmallest && value < kLargest;
}

// Calls for each line of the layout with where it begins and with its baseline, in the layout's units, of
// which the grid makes pixels. The baseline is moved to a whole pixel, unless the text grows or shrinks: then
// it would jump from one to the next.
template <typename Function>
void eachLine(PangoLayout* layout, const TextMask::Grid& grid, Function function) {
    const std::unique_ptr<PangoLayoutIter, LayoutIterDeleter> lines(pango_layout_get_iter(layout));
    const double pixels = grid.scale * grid.scaleY;
    do {
        PangoRectangle logical;
        pango_layout_iter_get_line_extents(lines.get(), nullptr, &logical);
        double baseline =
            grid.y / pixels + pango_units_to_double(pango_layout_iter_get_baseline(lines.get()));
        if (grid.scaleY == 1) baseline = std::round(baseline * pixels) / pixels;
        function(pango_layout_iter_get_line_readonly(lines.get()), pango_units_to_double(logical.x),
                 baseline);
    } while (pango_layout_iter_next_line(lines.get()) != 0);
}

// What the text's ink covers, from the pixel in which the text's corner is.
PixelRect inkOf(PangoLayout* layout, const TextMask::Grid& grid) {
    PangoRectangle ink;
    pango_layout_get_extents(layout, &ink, nullptr);
    const Rect points{
        {pango_units_to_double(ink.x) * grid.scaleX, pango_units_to_double(ink.y) * grid.scaleY},
        {pango_units_to_double(ink.width) * grid.scaleX, pango_units_to_double(ink.height) * grid.scaleY}};
    // Room for the edges, and for the baseline's way to its pixel.
    return points.isEmpty() ? PixelRect{} : pixelsCovering(points.outset(2 / grid.scale), grid.scale);
}

// Shows the text in a context whose units are pixels and whose origin is the pixel of the text's corner.
template <typename Show>
void eachLineIn(cairo_t* context, PangoLayout* layout, const TextMask::Grid& grid, Show show) {
    cairo_translate(context, grid.x, 0);
    cairo_scale(context, grid.scale * grid.scaleX, grid.scale * grid.scaleY);
    eachLine(layout, grid, [&](PangoLayoutLine* line, double x, double baseline) {
        cairo_move_to(context, x, baseline);
        show(context, line);
    });
}

void fillOutlines(cairo_t* context, PangoLayout* layout, const TextMask::Grid& grid) {
    eachLineIn(context, layout, grid, pango_cairo_layout_line_path);
    cairo_fill(context);
}

TextMask maskOf(PangoLayout* layout, const TextMask::Grid& grid, const PixelRect& ink) {
    TextMask mask;
    mask.grid = grid;
    if (ink.isEmpty()) return mask;
    mask.coverage.reset(cairo_image_surface_create(CAIRO_FORMAT_A8, ink.width, ink.height));
    mask.left = ink.x;
    mask.top = ink.y;
    mask.bytes = static_cast<std::size_t>(ink.width) * static_cast<std::size_t>(ink.height);
    const CairoContext context(cairo_create(mask.coverage.get()));
    cairo_translate(context.get(), -ink.x, -ink.y);
    fillOutlines(context.get(), layout, grid);
    cairo_surface_flush(mask.coverage.get());
    return mask;
}

}  // namespace

// The image backend puts each glyph on a whole pixel, which tears words apart where pixels are large. So the
// outlines are filled where they belong, once, and what came of it is kept: that is faster as well.
void paintText(cairo_t* context, const DrawText& text, double scale, TextLayouts& layouts) {
    const Point at = text.frame.origin;
    const double far = kFarthestPixel / scale;
    if (!isFinite(at) || std::abs(at.x) > far || std::abs(at.y) > far || !isScale(text.scaleX) ||
        !isScale(text.scaleY)) {
        return;
    }
    const auto [layout, inset] = layouts.shown(text.text, text.style, text.frame.size.width);
    const double left = std::floor((at.x + inset * text.scaleX) * scale * kPhases) / kPhases;
    const double top = std::floor(at.y * scale * kPhases) / kPhases;
    const double x = std::floor(left);
    const double y = std::floor(top);
    const TextMask::Grid grid{scale, text.scaleX, text.scaleY, left - x, top - y};
    cairo_matrix_t points;
    cairo_get_matrix(context, &points);
    cairo_identity_matrix(context);
    cairo_translate(context, points.x0 + x, points.y0 + y);

    if (!layouts.isOutlined()) {
        eachLineIn(context, layout, grid, pango_cairo_show_layout_line);
        return;
    }
    const TextMask* mask = layouts.mask(grid);
    if (mask == nullptr) {
        const PixelRect ink = inkOf(layout, grid);
        if (std::int64_t{ink.width} * ink.height > kLargestTextMask) {
            fillOutlines(context, layout, grid);
            return;
        }
        mask = &layouts.keep(maskOf(layout, grid, ink));
    }
    if (mask->coverage) cairo_mask_surface(context, mask->coverage.get(), mask->left, mask->top);
}

}  // namespace norvane
