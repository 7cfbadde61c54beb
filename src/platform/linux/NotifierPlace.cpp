#include "platform/linux/NotifierPlace.h"

#include <algorithm>

namespace norvane {
namespace {

// What is not free beyond that is no panel, but belongs to another monitor: there is one free area for all.
constexpr double kThickestPanel = 150;

bool isPanel(double thickness) {
    return thickness > 0 && thickness <= kThickestPanel;
}

// The beginning of that length startAround `middle`, inside of what there is from `low` to `high`.
double startAround(double middle, double length, double low, double high) {
    return std::max(low, std::min(middle - length / 2, high - length));
}

}  // namespace

Rect notifierFrame(Point click, const Rect& monitor, const Rect& free) {
    const double x = startAround(click.x, kNotifierSide, monitor.minX(), monitor.maxX());
    const double above = free.minY() - monitor.minY();
    if (isPanel(above) && click.y < free.minY()) return {{x, monitor.minY()}, {kNotifierSide, above}};
    const double below = monitor.maxY() - free.maxY();
    if (isPanel(below) && click.y >= free.maxY()) return {{x, free.maxY()}, {kNotifierSide, below}};
    return {{x, startAround(click.y, kNotifierSide, monitor.minY(), monitor.maxY())},
            {kNotifierSide, kNotifierSide}};
}

Rect notifierFrameBeforeClicks(const Rect& monitor, const Rect& free) {
    const bool isBelow = !isPanel(free.minY() - monitor.minY()) && isPanel(monitor.maxY() - free.maxY());
    return notifierFrame({monitor.maxX(), isBelow ? monitor.maxY() : monitor.minY()}, monitor, free);
}

}  // namespace norvane
