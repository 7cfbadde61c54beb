#include "platform/linux/PopoverPlace.h"

#include <algorithm>
#include <cmath>

#include "platform/PopoverWindow.h"

namespace norvane {
namespace {

// Kept free at the far end of the screen.
constexpr double kMargin = 8;
// Farther than any screen, and near enough to be calculated with.
constexpr double kFarthestPoint = 1e6;

double plain(double coordinate) {
    return std::isfinite(coordinate) ? std::clamp(coordinate, -kFarthestPoint, kFarthestPoint) : 0;
}

// The lower end wins where both cannot be kept.
double movedWithin(double at, double length, double from, double to) {
    return std::max(from, std::min(at, to - length));
}

}  // namespace

PopoverPlace::PopoverPlace(const Rect& anchor, const std::optional<Rect>& free)
    : anchor_{{plain(anchor.minX()), plain(anchor.minY())},
              {std::max(plain(anchor.size.width), 0.0), std::max(plain(anchor.size.height), 0.0)}},
      free_(free),
      hangsUp_(free && anchor_.midY() > free->midY()) {}

double PopoverPlace::edge() const {
    return hangsUp_ ? anchor_.minY() - PopoverWindow::kGap : anchor_.maxY() + PopoverWindow::kGap;
}

Size PopoverPlace::most() const {
    if (!free_) return {kFarthestPoint, kFarthestPoint};
    const double room = hangsUp_ ? edge() - free_->minY() : free_->maxY() - edge();
    return {free_->size.width, std::max(room - kMargin, 0.0)};
}

void PopoverPlace::centre(double width) {
    left_ = plain(anchor_.midX() - width / 2);
}

void PopoverPlace::setLeft(double left) {
    left_ = plain(left);
}

Rect PopoverPlace::frame(Size size) const {
    return {{left_, hangsUp_ ? edge() - size.height : edge()}, size};
}

void PopoverPlace::follow(const Rect& monitor, const Rect& free, double width) {
    const double left = left_;
    *this = PopoverPlace({{movedWithin(anchor_.minX(), anchor_.size.width, monitor.minX(), monitor.maxX()),
                           movedWithin(anchor_.minY(), anchor_.size.height, monitor.minY(), monitor.maxY())},
                          anchor_.size},
                         free);
    left_ = movedWithin(left, width, free.minX(), free.maxX());
}

}  // namespace norvane
