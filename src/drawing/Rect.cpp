#include "drawing/Rect.h"

#include <algorithm>

namespace norvane {

bool Rect::contains(Point point) const {
    return point.x >= minX() && point.x < maxX() && point.y >= minY() && point.y < maxY();
}

bool Rect::intersects(const Rect& other) const {
    return !intersection(other).isEmpty();
}

Rect Rect::intersection(const Rect& other) const {
    const double left = std::max(minX(), other.minX());
    const double top = std::max(minY(), other.minY());
    const double right = std::min(maxX(), other.maxX());
    const double bottom = std::min(maxY(), other.maxY());
    if (!(right > left && bottom > top)) return {};
    return {{left, top}, {right - left, bottom - top}};
}

Rect Rect::united(const Rect& other) const {
    if (isEmpty()) return other;
    if (other.isEmpty()) return *this;
    const double left = std::min(minX(), other.minX());
    const double top = std::min(minY(), other.minY());
    const double right = std::max(maxX(), other.maxX());
    const double bottom = std::max(maxY(), other.maxY());
    return {{left, top}, {right - left, bottom - top}};
}

Rect Rect::inset(const Insets& by) const {
    return {
        {origin.x + by.left, origin.y + by.top},
        {std::max(0.0, size.width - by.left - by.right), std::max(0.0, size.height - by.top - by.bottom)}};
}

Rect Rect::outset(double by) const {
    return {{origin.x - by, origin.y - by}, {size.width + 2 * by, size.height + 2 * by}};
}

}  // namespace norvane
