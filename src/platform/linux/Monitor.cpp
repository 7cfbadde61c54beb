#include "platform/linux/Monitor.h"

#include <algorithm>
#include <cstdint>
#include <tuple>

namespace norvane {
namespace {

std::int64_t areaOf(const PixelRect& r) {
    return std::int64_t{r.width} * r.height;
}

// Pixels from the rectangle to the place, squared.
std::int64_t distanceFrom(const PixelRect& r, int x, int y) {
    const auto beyond = [](int at, int from, int length) -> std::int64_t {
        return std::max({from - at, at - (from + length - 1), 0});
    };
    const std::int64_t dx = beyond(x, r.x, r.width);
    const std::int64_t dy = beyond(y, r.y, r.height);
    return dx * dx + dy * dy;
}

}  // namespace

const Monitor* monitorAt(std::span<const Monitor> monitors, int x, int y) {
    const auto order = [&](const Monitor& monitor) {
        return std::tuple(distanceFrom(monitor.frame, x, y), areaOf(monitor.frame));
    };
    const auto best =
        std::min_element(monitors.begin(), monitors.end(),
                         [&](const Monitor& a, const Monitor& b) { return order(a) < order(b); });
    return best == monitors.end() ? nullptr : &*best;
}

const Monitor* primaryMonitor(std::span<const Monitor> monitors) {
    const auto primary = std::find_if(monitors.begin(), monitors.end(),
                                      [](const Monitor& monitor) { return monitor.isPrimary; });
    if (primary != monitors.end()) return &*primary;
    return monitors.empty() ? nullptr : &monitors.front();
}

}  // namespace norvane
