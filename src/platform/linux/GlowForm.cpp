#include "platform/linux/GlowForm.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <variant>

#include "platform/linux/CairoShapes.h"
#include "platform/linux/RoundedPath.h"

namespace norvane {
namespace {

constexpr double kSteps = 4;
constexpr double kPathSteps = 1024;
// A joint's tip is at most so many half line widths away.
constexpr int kLongestTip = 10;

int whole(double pixels) {
    return static_cast<int>(std::lround(std::clamp(pixels, -2 * kFarthestPixel, 2 * kFarthestPixel)));
}

int steps(double points, double scale) {
    return std::isnan(points) ? 0 : whole(points * scale * kSteps);
}

// Something remains of all that is there.
int extent(double points, double scale) {
    return std::max(1, whole(points * scale));
}

double inSteps(double value) {
    return std::round(value * kPathSteps) / kPathSteps;
}

// Fills in what is the shape's own. False where it is not drawn.
class Quantised {
 public:
    Quantised(GlowForm& form, double scale) : form_(form), scale_(scale) {}

    bool operator()(const RoundedRect& rounded) const {
        if (!isFinite(rounded.rect)) return false;
        const Rect near = withinReach(rounded.rect, scale_);
        if (near.isEmpty()) return false;
        form_.kind = GlowForm::Kind::rect;
        form_.width = extent(near.size.width, scale_);
        form_.height = extent(near.size.height, scale_);
        const double half = std::min(near.size.width, near.size.height) / 2;
        form_.radius = std::isnan(rounded.radius) ? 0 : steps(std::clamp(rounded.radius, 0.0, half), scale_);
        form_.corners = rounded.corners;
        return true;
    }

    bool operator()(const Arc& arc) const {
        const double turns = arc.to - arc.from;
        if (!isFinite(arc.center) || !std::isfinite(turns) || !(turns > 0) || !(arc.radius > 0) ||
            arc.radius * scale_ > kFarthestPixel) {
            return false;
        }
        form_.kind = GlowForm::Kind::arc;
        form_.width = form_.height = extent(2 * arc.radius, scale_);
        if (isClosed(arc)) {
            form_.to = GlowForm::kTurn;
        } else {
            const double from = arc.from - std::floor(arc.from);
            form_.from = whole(from * GlowForm::kTurn);
            form_.to = std::max(whole((from + turns) * GlowForm::kTurn), form_.from + 1);
            if (form_.from == GlowForm::kTurn) {
                form_.from = 0;
                form_.to -= GlowForm::kTurn;
            }
        }
        return true;
    }

    bool operator()(const PlacedPath& placed) const {
        const Rect bounds = placed.bounds();
        if (!placed.path || !isFinite(bounds) || bounds.size.width * scale_ > kFarthestPixel ||
            bounds.size.height * scale_ > kFarthestPixel) {
            return false;
        }
        form_.kind = GlowForm::Kind::path;
        form_.width = extent(bounds.size.width, scale_);
        form_.height = extent(bounds.size.height, scale_);
        form_.path = placed.path;
        form_.scaleX = inSteps(placed.scaleX * scale_);
        form_.scaleY = inSteps(placed.scaleY * scale_);
        return std::isfinite(form_.scaleX) && std::isfinite(form_.scaleY);
    }

 private:
    GlowForm& form_;
    double scale_;
};

}  // namespace

std::optional<GlowForm> GlowForm::of(const Shape& shape, const std::optional<StrokeStyle>& stroke,
                                     double scale) {
    GlowForm form;
    if (!std::visit(Quantised(form, scale), shape)) return std::nullopt;
    if (!stroke) return form;
    if (!std::isfinite(stroke->width) || !(stroke->width > 0)) return std::nullopt;
    form.line = std::max(1, steps(stroke->width, scale));
    form.cap = stroke->cap;
    form.join = stroke->join;
    if (isDashed(*stroke, scale)) {
        form.dashOn = std::max(1, steps(stroke->dashOn, scale));
        form.dashOff = std::max(1, steps(stroke->dashOff, scale));
    }
    return form;
}

int GlowForm::outside() const {
    const bool hasTips = kind == Kind::path && line > 0 && join == LineJoin::miter;
    return static_cast<int>(std::ceil(line / kSteps / 2)) * (hasTips ? kLongestTip : 1);
}

std::optional<int> GlowForm::corner() const {
    if (kind != Kind::rect || dashOn > 0) return std::nullopt;
    const Rect box{{}, {static_cast<double>(width), static_cast<double>(height)}};
    const double reach = cornerReach({box, radius / kSteps, corners});
    return static_cast<int>(std::ceil(std::max(reach, line / kSteps / 2))) + 1;
}

void GlowForm::paint(cairo_t* context) const {
    const Rect box{{}, {static_cast<double>(width), static_cast<double>(height)}};
    Shape shape = RoundedRect{box, radius / kSteps, corners};
    if (kind == Kind::arc) {
        shape = Arc{{width / 2.0, height / 2.0},
                    width / 2.0,
                    static_cast<double>(from) / kTurn,
                    static_cast<double>(to) / kTurn};
    } else if (kind == Kind::path) {
        PlacedPath placed{path, {}, scaleX, scaleY};
        const Rect bounds = placed.bounds();
        placed.offset = {-bounds.minX(), -bounds.minY()};
        shape = placed;
    }
    if (!addShape(context, shape, 1)) return;
    const StrokeStyle style{line / kSteps, cap, join, dashOn / kSteps, dashOff / kSteps};
    if (line == 0) {
        cairo_fill(context);
    } else if (setStroke(context, style, 1)) {
        cairo_stroke(context);
    }
}

bool GlowForm::operator==(const GlowForm& other) const {
    const auto numbers = [](const GlowForm& form) {
        return std::tie(form.kind, form.width, form.height, form.radius, form.line, form.dashOn, form.dashOff,
                        form.corners, form.cap, form.join, form.from, form.to, form.scaleX, form.scaleY);
    };
    if (numbers(*this) != numbers(other)) return false;
    return path == other.path || (path && other.path && *path == *other.path);
}

}  // namespace norvane
