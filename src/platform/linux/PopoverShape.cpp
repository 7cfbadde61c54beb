#include "platform/linux/PopoverShape.h"

#include <algorithm>
#include <cmath>

#include "drawing/PanelTones.h"
#include "platform/linux/CairoHandles.h"
#include "platform/linux/RoundedPath.h"
#include "platform/linux/SoftShadow.h"

namespace norvane {
namespace {

// Points.
constexpr double kCornerRadius = 10;
constexpr double kShadowSoftness = 9;
constexpr double kShadowDrop = 5;
// Pixels: how far in the lines along the edge reach.
constexpr int kEdge = 3;

// How far in from the side the rounded corner is, in the row that many pixels from the top.
int cornerInset(double radius, int row) {
    const double up = radius - (row + 0.5);
    if (up <= 0) return 0;
    return static_cast<int>(std::lround(radius - std::sqrt(std::max(0.0, radius * radius - up * up))));
}

void addPanel(cairo_t* context, const PixelRect& panel, double radius, double inset) {
    const Rect rect{{static_cast<double>(panel.x), static_cast<double>(panel.y)},
                    {static_cast<double>(panel.width), static_cast<double>(panel.height)}};
    addRoundedPath(context, {rect.inset(Insets::all(inset)), std::max(radius - inset, 0.0)});
}

}  // namespace

double PopoverShape::radius() const {
    return std::min(kCornerRadius * scale, std::min(panel.width, panel.height) / 2.0);
}

std::vector<PixelRect> PopoverShape::differencesFrom(const PopoverShape& before) const {
    if (*this == before) return {};
    PopoverShape same = before;
    same.panel.height = panel.height;
    const bool isBottomAlone = same == *this && same.radius() == radius() && before.radius() == radius();
    if (!isBottomAlone) return {{0, 0, width, height}};
    // The shadow beside the panel is the same all the way down to the corners.
    const int shorter = std::min(panel.height, before.panel.height);
    const int from = std::max(0, panel.y + shorter - static_cast<int>(std::ceil(radius())) - 1);
    return {{0, from, width, height - from}};
}

bool PopoverShape::isAmidPanel(const PixelRect& part) const {
    const int corner = static_cast<int>(std::ceil(radius()));
    const auto isWithin = [&](int across, int down) {
        return part.x >= panel.x + across && part.y >= panel.y + down &&
               part.x + part.width <= panel.x + panel.width - across &&
               part.y + part.height <= panel.y + panel.height - down;
    };
    return isWithin(kEdge, corner) || isWithin(corner, kEdge);
}

void PopoverShape::finish(cairo_surface_t* image, std::span<const PixelRect> painted) const {
    // Most frames change something in the middle alone.
    if (std::all_of(painted.begin(), painted.end(),
                    [this](const PixelRect& part) { return isAmidPanel(part); }))
        return;
    const PanelTones& tones = panelTones(isDark);
    const CairoContext context(cairo_create(image));
    for (const PixelRect& part : painted)
        cairo_rectangle(context.get(), part.x, part.y, part.width, part.height);
    cairo_clip(context.get());

    cairo_set_line_width(context.get(), 1);
    const auto line = [&](double inset, const Color& color) {
        addPanel(context.get(), panel, radius(), inset + 0.5);
        cairo_set_source_rgba(context.get(), color.red, color.green, color.blue, color.alpha);
        cairo_stroke(context.get());
    };
    line(1, tones.rim);
    line(0, tones.outline);

    if (isTranslucent) {
        // What was painted beyond the rounded corners goes, and the shadow shows there.
        cairo_rectangle(context.get(), 0, 0, width, height);
        addPanel(context.get(), panel, radius(), 0);
        cairo_set_fill_rule(context.get(), CAIRO_FILL_RULE_EVEN_ODD);
        cairo_set_operator(context.get(), CAIRO_OPERATOR_DEST_OUT);
        cairo_set_source_rgba(context.get(), 0, 0, 0, 1);
        cairo_fill(context.get());
    }
    cairo_surface_flush(image);
    if (!isTranslucent) return;
    const SoftShadow shadow({.panel = panel,
                             .radius = radius(),
                             .softness = kShadowSoftness * scale,
                             .drop = kShadowDrop * scale,
                             .opacity = tones.shadowOpacity});
    for (const PixelRect& part : painted)
        shadow.paintUnder(image, part);
}

std::vector<xcb_rectangle_t> PopoverShape::rows() const {
    const auto rectangle = [this](int inset, int y, int rows) {
        return xcb_rectangle_t{
            static_cast<std::int16_t>(panel.x + inset), static_cast<std::int16_t>(panel.y + y),
            static_cast<std::uint16_t>(panel.width - 2 * inset), static_cast<std::uint16_t>(rows)};
    };
    if (isTranslucent) return {rectangle(0, 0, panel.height)};
    std::vector<xcb_rectangle_t> found;
    const auto corner = static_cast<int>(std::floor(radius()));
    found.reserve(2 * static_cast<std::size_t>(corner) + 1);
    for (int i = 0; i < corner; ++i)
        found.push_back(rectangle(cornerInset(radius(), i), i, 1));
    if (panel.height > 2 * corner) found.push_back(rectangle(0, corner, panel.height - 2 * corner));
    for (int i = corner - 1; i >= 0; --i)
        found.push_back(rectangle(cornerInset(radius(), i), panel.height - 1 - i, 1));
    return found;
}

}  // namespace norvane
