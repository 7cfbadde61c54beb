#include "platform/linux/ArcCoverage.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

#include "platform/linux/CairoShapes.h"

namespace norvane {
namespace {

// Pixels. Larger ones are drawn as other paths are.
constexpr double kLargestRadius = 512;

// One pixel's share of what lies shareWithin `reach` of a line, by the square of its distance from it.
float shareWithin(float reach, float square) {
    return std::clamp(reach + 0.5F - std::sqrt(square), 0.0F, std::min(1.0F, 2 * reach));
}

float squared(float x, float y) {
    return x * x + y * y;
}

// The part of the plane between two rays from the middle, clockwise from the first one.
class Sector {
 public:
    // Of length 1.
    struct Ray {
        float x = 0;
        float y = 0;
    };

    explicit Sector(const Arc& arc)
        : isWide_(arc.to - arc.from > 0.5), first_(ray(arc.from)), last_(ray(arc.to)) {}

    bool contains(float x, float y) const {
        const bool isAfterFirst = first_.x * y - first_.y * x >= 0;
        const bool isBeforeLast = x * last_.y - y * last_.x >= 0;
        return isWide_ ? isAfterFirst || isBeforeLast : isAfterFirst && isBeforeLast;
    }
    const Ray& first() const { return first_; }
    const Ray& last() const { return last_; }

 private:
    static Ray ray(double turns) {
        const double angle = (turns - std::floor(turns)) * 2 * std::numbers::pi;
        return {static_cast<float>(std::sin(angle)), static_cast<float>(-std::cos(angle))};
    }

    bool isWide_;
    Ray first_;
    Ray last_;
};

}  // namespace

std::optional<ArcCoverage> ArcCoverage::of(const Arc& arc, const StrokeStyle& style,
                                           const PixelRect& visible) {
    const double turns = arc.to - arc.from;
    const double half = style.width / 2;
    const bool isWhole = isClosed(arc);
    const bool isPossible = isFinite(arc.center) && std::isfinite(turns) && turns > 0 && half > 0 &&
                            arc.radius >= half && arc.radius <= kLargestRadius && !isDashed(style, 1) &&
                            (isWhole || style.cap == LineCap::round);
    if (!isPossible) return std::nullopt;

    const double extent = arc.radius + half + 1;
    ArcCoverage result;
    result.area =
        pixelsCovering(Rect{{arc.center.x - extent, arc.center.y - extent}, {2 * extent, 2 * extent}}, 1)
            .intersection(visible);
    if (result.area.isEmpty()) return result;
    result.mask.reset(cairo_image_surface_create(CAIRO_FORMAT_A8, result.area.width, result.area.height));
    unsigned char* const pixels = cairo_image_surface_get_data(result.mask.get());
    if (pixels == nullptr) return ArcCoverage{nullptr, {}};

    const Sector sector(arc);
    const auto radius = static_cast<float>(arc.radius);
    const auto reach = static_cast<float>(half);
    const Sector::Ray first = sector.first();
    const Sector::Ray last = sector.last();
    // Of the distance from the middle: beyond the first two there is nothing, between the others all is
    // covered.
    const float inner = std::max(0.0F, radius - reach - 0.5F);
    const float outer = radius + reach + 0.5F;
    const float fullFrom = radius - reach + 0.5F;
    const float fullTo = radius + reach - 0.5F;
    const auto ringShare = [&](float square) {
        if (square < inner * inner || square > outer * outer) return 0.0F;
        if (square >= fullFrom * fullFrom && square <= fullTo * fullTo) return 1.0F;
        return std::clamp(reach + 0.5F - std::abs(std::sqrt(square) - radius), 0.0F,
                          std::min(1.0F, 2 * reach));
    };
    const auto shareAt = [&](float x, float y) {
        if (isWhole || sector.contains(x, y)) return ringShare(squared(x, y));
        return shareWithin(reach, std::min(squared(x - first.x * radius, y - first.y * radius),
                                           squared(x - last.x * radius, y - last.y * radius)));
    };
    const std::ptrdiff_t stride = cairo_image_surface_get_stride(result.mask.get());
    const auto left = static_cast<float>(result.area.x + 0.5 - arc.center.x);
    const auto columnAt = [&](float x) {
        return std::clamp(static_cast<int>(std::floor(x - left + 0.5F)), 0, result.area.width);
    };
    for (int row = 0; row < result.area.height; ++row) {
        unsigned char* const line = pixels + row * stride;
        const auto y = static_cast<float>(result.area.y + row + 0.5 - arc.center.y);
        const auto fill = [&](int from, int to) {
            for (int column = from; column < to; ++column)
                line[column] =
                    static_cast<unsigned char>(255 * shareAt(left + static_cast<float>(column), y) + 0.5F);
        };
        // The ring alone, its round ends included, without the hole in it.
        const float toOuter = std::sqrt(std::max(0.0F, outer * outer - y * y)) + 1;
        const float toInner = std::sqrt(std::max(0.0F, inner * inner - y * y)) - 1;
        const int middle = columnAt(0);
        fill(columnAt(-toOuter), toInner > 0 ? columnAt(-toInner) : middle);
        fill(toInner > 0 ? columnAt(toInner) : middle, columnAt(toOuter));
    }
    cairo_surface_mark_dirty(result.mask.get());
    return result;
}

}  // namespace norvane
