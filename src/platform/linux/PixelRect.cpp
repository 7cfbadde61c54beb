#include "platform/linux/PixelRect.h"

#include <algorithm>
#include <cmath>

namespace norvane {
namespace {

constexpr double kFarthestPixelOfAScreen = 32767;
// A pixel is not touched by less than this part of it.
constexpr double kRoundingError = 1e-6;

int boundedPixel(double pixels) {
    if (std::isnan(pixels)) return 0;
    return static_cast<int>(std::clamp(pixels, -kFarthestPixelOfAScreen, kFarthestPixelOfAScreen));
}

}  // namespace

PixelRect PixelRect::intersection(const PixelRect& other) const {
    const int left = std::max(x, other.x);
    const int top = std::max(y, other.y);
    const int right = std::min(x + width, other.x + other.width);
    const int bottom = std::min(y + height, other.y + other.height);
    if (right <= left || bottom <= top) return {};
    return {left, top, right - left, bottom - top};
}

PixelRect PixelRect::united(const PixelRect& other) const {
    const int left = std::min(x, other.x);
    const int top = std::min(y, other.y);
    return {left, top, std::max(x + width, other.x + other.width) - left,
            std::max(y + height, other.y + other.height) - top};
}

Rect PixelRect::inPoints(double scale) const {
    return {{x / scale, y / scale}, {width / scale, height / scale}};
}

int pixelsAt(double points, double scale) {
    return boundedPixel(std::round(points * scale));
}

int pixelsCovering(double points, double scale) {
    return boundedPixel(std::ceil(points * scale - kRoundingError));
}

PixelRect pixelsCovering(const Rect& rect, double scale) {
    if (rect.isEmpty() || std::isnan(rect.minX()) || std::isnan(rect.minY())) return {};
    const int left = boundedPixel(std::floor(rect.minX() * scale + kRoundingError));
    const int top = boundedPixel(std::floor(rect.minY() * scale + kRoundingError));
    const int right = boundedPixel(std::ceil(rect.maxX() * scale - kRoundingError));
    const int bottom = boundedPixel(std::ceil(rect.maxY() * scale - kRoundingError));
    return {left, top, right - left, bottom - top};
}

}  // namespace norvane
