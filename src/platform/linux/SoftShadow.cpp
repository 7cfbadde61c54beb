#include "platform/linux/SoftShadow.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace norvane {
namespace {

constexpr double kStepsPerPixel = 4;
constexpr double kReach = 3;  // standard deviations on either side of the outline

// From the outline of a rounded rectangle to the place; negative inside.
double distance(const PixelRect& rect, double radius, double x, double y) {
    const double dx = std::abs(x - (rect.x + rect.width / 2.0)) - (rect.width / 2.0 - radius);
    const double dy = std::abs(y - (rect.y + rect.height / 2.0)) - (rect.height / 2.0 - radius);
    return std::hypot(std::max(dx, 0.0), std::max(dy, 0.0)) + std::min(std::max(dx, dy), 0.0) - radius;
}

}  // namespace

// A straight edge, blurred, is the integral of the normal distribution. It is taken for the rounded one too:
// the corners are as wide as the blur, nobody sees the difference.
SoftShadow::SoftShadow(const Form& form) : form_(form) {
    const auto steps = static_cast<std::size_t>(2 * kReach * form.softness * kStepsPerPixel) + 1;
    opacities_.reserve(steps);
    for (std::size_t i = 0; i < steps; ++i) {
        const double at = static_cast<double>(i) / kStepsPerPixel - kReach * form.softness;
        opacities_.push_back(form.opacity * std::erfc(at / (form.softness * std::numbers::sqrt2)) / 2);
    }
}

void SoftShadow::paintUnder(cairo_surface_t* image, const PixelRect& part) const {
    if (cairo_surface_status(image) != CAIRO_STATUS_SUCCESS ||
        cairo_image_surface_get_format(image) != CAIRO_FORMAT_ARGB32) {
        return;
    }
    const PixelRect area = part.intersection(
        {0, 0, cairo_image_surface_get_width(image), cairo_image_surface_get_height(image)});
    cairo_surface_flush(image);
    unsigned char* const pixels = cairo_image_surface_get_data(image);
    const std::ptrdiff_t stride = cairo_image_surface_get_stride(image);
    const int corner = static_cast<int>(std::ceil(form_.radius));
    for (int y = area.y; y < area.y + area.height; ++y) {
        // Where the row crosses the panel, and not its corners, the shadow lies under it.
        const bool crossesPanel =
            y >= form_.panel.y + corner && y < form_.panel.y + form_.panel.height - corner;
        const int insideFrom = form_.panel.x + (crossesPanel ? 0 : corner);
        const int insideTo = form_.panel.x + form_.panel.width - (crossesPanel ? 0 : corner);
        const bool hasInside = y >= form_.panel.y && y < form_.panel.y + form_.panel.height;
        auto* const row = reinterpret_cast<std::uint32_t*>(pixels + stride * y);
        for (int x = area.x; x < area.x + area.width; ++x) {
            if (hasInside && x >= insideFrom && x < insideTo) {
                x = insideTo - 1;
                continue;
            }
            if (distance(form_.panel, form_.radius, x + 0.5, y + 0.5) < -0.5) continue;
            const double beyond = distance(form_.panel, form_.radius, x + 0.5, y + 0.5 - form_.drop);
            const double step = (beyond + kReach * form_.softness) * kStepsPerPixel;
            if (step >= static_cast<double>(opacities_.size())) continue;
            const double opacity = opacities_[static_cast<std::size_t>(std::max(step, 0.0))];
            // Black under the pixel, in premultiplied colours: only the opacity grows.
            const std::uint32_t alpha = row[x] >> 24;
            const auto under = static_cast<std::uint32_t>(std::lround((255 - alpha) * opacity));
            row[x] = (row[x] & 0x00FFFFFF) | ((alpha + under) << 24);
        }
    }
    cairo_surface_mark_dirty(image);
}

}  // namespace norvane
