#include "platform/linux/CairoPainter.h"

#include <pango/pangocairo.h>
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <optional>
#include <variant>

#include "platform/linux/CairoHandles.h"
#include "platform/linux/RoundedPath.h"

namespace norvane {
namespace {

// Cairo keeps device coordinates in 24.8 fixed point and the image backend in 16.16. Beyond this distance
// in pixels nothing is visible on any surface, and well within it both are exact.
constexpr double kFarthestPixel = 16'000;
// Pixels. A larger text is not worth keeping.
constexpr std::int64_t kLargestMask = 512 * 1024;
// A text is put on the grid to this part of a pixel.
constexpr double kPhases = 4;
constexpr double kNarrowest = 0.01;
constexpr double kWidest = 100;

struct LayoutIterDeleter {
    void operator()(PangoLayoutIter* iter) const { pango_layout_iter_free(iter); }
};

// Calls for each line of the layout, whose top is at `top` points, with where the line begins and with its
// baseline, which is moved to a whole pixel.
template <typename Function>
void eachLine(PangoLayout* layout, double top, double scale, Function function) {
    const std::unique_ptr<PangoLayoutIter, LayoutIterDeleter> lines(pango_layout_get_iter(layout));
    do {
        PangoRectangle logical;
        pango_layout_iter_get_line_extents(lines.get(), nullptr, &logical);
        const double baseline = top + pango_units_to_double(pango_layout_iter_get_baseline(lines.get()));
        function(pango_layout_iter_get_line_readonly(lines.get()), pango_units_to_double(logical.x),
                 std::round(baseline * scale) / scale);
    } while (pango_layout_iter_next_line(lines.get()) != 0);
}

// What the text's ink covers, from the pixel in which the text's corner is.
PixelRect inkOf(PangoLayout* layout, const TextMask::Grid& grid) {
    PangoRectangle ink;
    pango_layout_get_extents(layout, &ink, nullptr);
    const Rect points{{pango_units_to_double(ink.x) * grid.condense, pango_units_to_double(ink.y)},
                      {pango_units_to_double(ink.width) * grid.condense, pango_units_to_double(ink.height)}};
    // Room for the edges, and for the baseline's way to its pixel.
    return points.isEmpty() ? PixelRect{} : pixelsCovering(points.outset(2 / grid.scale), grid.scale);
}

// Fills the text's outlines with the source, in a context whose origin is the pixel of the text's corner.
void fillOutlines(cairo_t* context, PangoLayout* layout, const TextMask::Grid& grid) {
    cairo_translate(context, grid.x, 0);
    cairo_scale(context, grid.scale * grid.condense, grid.scale);
    eachLine(layout, grid.y / grid.scale, grid.scale, [&](PangoLayoutLine* line, double x, double baseline) {
        cairo_move_to(context, x, baseline);
        pango_cairo_layout_line_path(context, line);
    });
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

bool isFinite(const Rect& rect) {
    return std::isfinite(rect.minX()) && std::isfinite(rect.minY()) && std::isfinite(rect.maxX()) &&
           std::isfinite(rect.maxY());
}

// The painting of one rectangle of a frame. Each kind of command has its function.
class Part {
 public:
    Part(cairo_surface_t* surface, const CairoPainter::Placement& placement, const PixelRect& damage,
         TextLayouts& layouts)
        : surface_(surface),
          placement_(placement),
          damage_(damage),
          layouts_(layouts),
          context_(cairo_create(surface)) {}

    void clear() {
        cairo_set_operator(context_.get(), CAIRO_OPERATOR_CLEAR);
        cairo_rectangle(context_.get(), damage_.x, damage_.y, damage_.width, damage_.height);
        cairo_fill(context_.get());
        cairo_set_operator(context_.get(), CAIRO_OPERATOR_OVER);
    }

    void paint(const DisplayItem& item) {
        const PixelRect pixels = pixelsCovering(item.bounds, placement_.scale)
                                     .moved(placement_.x, placement_.y)
                                     .intersection(damage_);
        if (pixels.isEmpty()) return;
        cairo_t* const context = context_.get();
        cairo_save(context);
        cairo_rectangle(context, pixels.x, pixels.y, pixels.width, pixels.height);
        cairo_clip(context);
        cairo_translate(context, placement_.x, placement_.y);
        cairo_scale(context, placement_.scale, placement_.scale);
        std::visit(*this, item.command);
        cairo_restore(context);
        // An error would stay with the context and swallow everything after it.
        if (cairo_status(context) != CAIRO_STATUS_SUCCESS) context_.reset(cairo_create(surface_));
    }

    void operator()(const FillShape& fill) {
        const auto shape = withinReach(fill.shape);
        if (!shape || !setColor(fill.color)) return;
        addRoundedPath(context_.get(), *shape);
        cairo_fill(context_.get());
    }

    void operator()(const StrokeShape& stroke) {
        const auto shape = withinReach(stroke.shape);
        if (!shape || !std::isfinite(stroke.width) || stroke.width <= 0 || !setColor(stroke.color)) return;
        addRoundedPath(context_.get(), *shape);
        cairo_set_line_width(context_.get(), std::min(stroke.width, farthest()));
        cairo_stroke(context_.get());
    }

    void operator()(const DrawText& text) {
        const Point at = text.frame.origin;
        if (!std::isfinite(at.x) || !std::isfinite(at.y) || std::abs(at.x) > farthest() ||
            std::abs(at.y) > farthest() || !(text.condense > kNarrowest && text.condense < kWidest) ||
            !setColor(text.color)) {
            return;
        }
        PangoLayout* const layout = layouts_.layout(text.text, text.style, text.frame.size.width);
        if (layouts_.isOutlined()) {
            paintOutlines(layout, text);
        } else {
            cairo_translate(context_.get(), at.x, 0);
            cairo_scale(context_.get(), text.condense, 1);
            eachLine(layout, at.y, placement_.scale,
                     [this](PangoLayoutLine* line, double x, double baseline) {
                         cairo_move_to(context_.get(), x, baseline);
                         pango_cairo_show_layout_line(context_.get(), line);
                     });
        }
    }

 private:
    // The image backend puts each glyph on a whole pixel, which tears words apart where pixels are large. So
    // the outlines are filled where they belong, once, and what came of it is kept: that is faster as well.
    void paintOutlines(PangoLayout* layout, const DrawText& text) {
        const double scale = placement_.scale;
        const double left = std::floor(text.frame.minX() * scale * kPhases) / kPhases;
        const double top = std::floor(text.frame.minY() * scale * kPhases) / kPhases;
        const double x = std::floor(left);
        const double y = std::floor(top);
        const TextMask::Grid grid{scale, text.condense, left - x, top - y};
        cairo_identity_matrix(context_.get());
        cairo_translate(context_.get(), placement_.x + x, placement_.y + y);
        const TextMask* mask = layouts_.mask(grid);
        if (mask == nullptr) {
            const PixelRect ink = inkOf(layout, grid);
            if (std::int64_t{ink.width} * ink.height > kLargestMask) {
                fillOutlines(context_.get(), layout, grid);
                return;
            }
            mask = &layouts_.keep(maskOf(layout, grid, ink));
        }
        if (mask->coverage) cairo_mask_surface(context_.get(), mask->coverage.get(), mask->left, mask->top);
    }

    double farthest() const { return kFarthestPixel / placement_.scale; }

    // The shape, with edges that lie far outside of every surface brought nearer.
    std::optional<RoundedRect> withinReach(const RoundedRect& shape) const {
        if (!isFinite(shape.rect)) return std::nullopt;
        const double far = farthest();
        return RoundedRect{shape.rect.intersection({{-far, -far}, {2 * far, 2 * far}}), shape.radius};
    }

    // False where there is nothing to be seen.
    bool setColor(const Color& color) {
        if (!std::isfinite(color.red) || !std::isfinite(color.green) || !std::isfinite(color.blue) ||
            !(color.alpha > 0)) {
            return false;
        }
        cairo_set_source_rgba(context_.get(), color.red, color.green, color.blue, color.alpha);
        return true;
    }

    cairo_surface_t* surface_;
    CairoPainter::Placement placement_;
    PixelRect damage_;
    TextLayouts& layouts_;
    CairoContext context_;
};

}  // namespace

void CairoPainter::paint(cairo_surface_t* surface, const Placement& placement, const DisplayList& list,
                         std::span<const PixelRect> damage) {
    if (damage.empty() || !std::isfinite(placement.scale) || placement.scale <= 0) return;
    layouts_.rasterizeFor(placement.scale);
    cairo_surface_flush(surface);
    // One by one: frames have few of them, and a clip that is one rectangle costs nothing.
    for (const PixelRect& rect : damage) {
        Part part(surface, placement, rect, layouts_);
        part.clear();
        for (const DisplayItem& item : list.items)
            part.paint(item);
    }
    cairo_surface_flush(surface);
}

}  // namespace norvane
