#include "platform/linux/RoundedPath.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace norvane {
namespace {

constexpr double kQuarter = std::numbers::pi / 2;

// How a continuous corner leaves an edge. It is a circle's line in the middle, of the corner's radius and
// around the same centre as a circular corner's. The first `angle` of its turn, seen from the edge, is
// replaced by a curve that begins straight, and earlier, and ends with the circle's direction and curvature.
//
// With t = tan(angle / 2), all lengths in radii: the tangent where the circle takes over meets the edge at
// 1 - t, after a way of t. For the curvatures to agree, the control points on the edge are 0.75 t (1 + t²)
// apart; the first of them is twice that from the beginning, which so comes to lie at 1 + 1.25 t + 2.25 t³.
struct Leaving {
    double tangent = 0;  // t

    double reach() const { return 1 + 1.25 * tangent + 2.25 * tangent * tangent * tangent; }
    double handle() const { return 0.75 * tangent * (1 + tangent * tangent); }
    double meeting() const { return 1 - tangent; }
    double angle() const { return 2 * std::atan(tangent); }
};

// A corner that reaches 1.53 radii along its edges.
constexpr Leaving kGentle{0.3482};

// As gentle as there is room for on an edge, of which the corner may have `room` radii, 1 or more.
Leaving leavingWithin(double room) {
    if (!(room < kGentle.reach())) return kGentle;
    // The reach grows with the tangent, and ever faster: from above, Newton's steps come down to it.
    Leaving leaving = kGentle;
    for (int step = 0; step < 5; ++step) {
        const double slope = 1.25 + 6.75 * leaving.tangent * leaving.tangent;
        leaving.tangent -= (leaving.reach() - room) / slope;
    }
    return {std::max(leaving.tangent, 0.0)};
}

double radiusOf(const RoundedRect& shape) {
    const double half = std::min(shape.rect.size.width, shape.rect.size.height) / 2;
    return std::isnan(shape.radius) ? 0 : std::clamp(shape.radius, 0.0, half);
}

// From one edge into the next: the corner at (x, y), and the ways along the edges away from it, each one unit
// long. `in` is the edge that the line comes along.
struct Corner {
    double x, y;
    double inX, inY;
    double outX, outY;
};

class ContinuousCorners {
 public:
    ContinuousCorners(cairo_t* context, double radius) : context_(context), radius_(radius) {}

    void add(const Corner& corner, const Leaving& in, const Leaving& out) const {
        const auto at = [&](double alongIn, double alongOut) {
            return Point{corner.x + radius_ * (alongIn * corner.inX + alongOut * corner.outX),
                         corner.y + radius_ * (alongIn * corner.inY + alongOut * corner.outY)};
        };
        const double from = in.angle();
        const double to = out.angle();
        const Point start = at(in.reach(), 0);
        const Point circleStart = at(1 - std::sin(from), 1 - std::cos(from));
        const Point circleEnd = at(1 - std::cos(to), 1 - std::sin(to));
        cairo_line_to(context_, start.x, start.y);
        curve(at(in.meeting() + in.handle(), 0), at(in.meeting(), 0), circleStart);
        // One cubic is a circle's line to a ten thousandth of the radius, for a quarter turn and less.
        const double turn = kQuarter - from - to;
        const double length = 4.0 / 3 * std::tan(turn / 4);
        curve(at(1 - std::sin(from) - length * std::cos(from), 1 - std::cos(from) + length * std::sin(from)),
              at(1 - std::cos(to) + length * std::sin(to), 1 - std::sin(to) - length * std::cos(to)),
              circleEnd);
        curve(at(0, out.meeting()), at(0, out.meeting() + out.handle()), at(0, out.reach()));
    }

 private:
    void curve(const Point& first, const Point& second, const Point& to) const {
        cairo_curve_to(context_, first.x, first.y, second.x, second.y, to.x, to.y);
    }

    cairo_t* context_;
    double radius_;
};

}  // namespace

void addRoundedPath(cairo_t* context, const RoundedRect& shape) {
    const Rect& r = shape.rect;
    if (r.isEmpty() || !std::isfinite(r.minX()) || !std::isfinite(r.minY()) || !std::isfinite(r.maxX()) ||
        !std::isfinite(r.maxY())) {
        return;
    }
    const double radius = radiusOf(shape);
    if (radius == 0) {
        cairo_rectangle(context, r.minX(), r.minY(), r.size.width, r.size.height);
        return;
    }
    cairo_new_sub_path(context);
    if (shape.corners == CornerStyle::circular) {
        cairo_arc(context, r.maxX() - radius, r.minY() + radius, radius, -kQuarter, 0);
        cairo_arc(context, r.maxX() - radius, r.maxY() - radius, radius, 0, kQuarter);
        cairo_arc(context, r.minX() + radius, r.maxY() - radius, radius, kQuarter, 2 * kQuarter);
        cairo_arc(context, r.minX() + radius, r.minY() + radius, radius, 2 * kQuarter, 3 * kQuarter);
    } else {
        const Leaving wide = leavingWithin(r.size.width / 2 / radius);
        const Leaving high = leavingWithin(r.size.height / 2 / radius);
        const ContinuousCorners corners(context, radius);
        corners.add({r.maxX(), r.minY(), -1, 0, 0, 1}, wide, high);
        corners.add({r.maxX(), r.maxY(), 0, -1, -1, 0}, high, wide);
        corners.add({r.minX(), r.maxY(), 1, 0, 0, -1}, wide, high);
        corners.add({r.minX(), r.minY(), 0, 1, 1, 0}, high, wide);
    }
    cairo_close_path(context);
}

double cornerReach(const RoundedRect& shape) {
    const double radius = radiusOf(shape);
    return shape.corners == CornerStyle::circular ? radius : radius * kGentle.reach();
}

}  // namespace norvane
