#pragma once

#include <memory>
#include <span>

#include "drawing/Path.h"
#include "drawing/Size.h"
#include "telemetry/CPUHistoryPoint.h"

namespace norvane {

// The finished paths of one history in one size. All empty with fewer than two points.
struct CachedPaths {
    std::shared_ptr<const Path> effBand;
    std::shared_ptr<const Path> effStroke;
    std::shared_ptr<const Path> perfBand;
    std::shared_ptr<const Path> perfStroke;

    // The oldest point first. The newest stands at the right edge, each one before it a step to the left.
    static CachedPaths of(std::span<const CPUHistoryPoint> history, Size size);
    // The highest point of all, from 0 at the bottom of the graph to 1.
    static double highest(std::span<const CPUHistoryPoint> history);
    // The distance between two points in a graph that wide.
    static double step(double width) { return width / 58; }
};

}  // namespace norvane
