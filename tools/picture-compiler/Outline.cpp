#include "Outline.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>

#include "NumberScanner.h"

namespace norvane {
namespace {

constexpr double kTurn = 2 * std::numbers::pi;

// How far a quarter circle's control points lie from its ends, in radii.
const double kQuarter = 4.0 / 3 * (std::numbers::sqrt2 - 1);

Point between(Point from, Point to, double share) {
    return {from.x + (to.x - from.x) * share, from.y + (to.y - from.y) * share};
}

Point mirrored(Point point, Point about) {
    return {2 * about.x - point.x, 2 * about.y - point.y};
}

// Reads "d". Small letters count from where the pen is.
class PathReader {
 public:
    PathReader(std::string_view text, std::size_t line) : scanner_(text, line) {}

    Path path() {
        while (!scanner_.isAtEnd()) {
            const char letter = scanner_.letter();
            if (outline_.isEmpty() && letter != 'M' && letter != 'm')
                scanner_.complain("a path starts with M");
            isRelative_ = letter >= 'a' && letter <= 'z';
            if (letter == 'Z' || letter == 'z') {
                outline_.close();
                last_ = 'Z';
                continue;
            }
            char command = isRelative_ ? static_cast<char>(letter - 'a' + 'A') : letter;
            do {
                draw(command);
                last_ = command;
                if (command == 'M') command = 'L';  // further pairs are lines
            } while (scanner_.isAtNumber());
        }
        if (outline_.isEmpty()) scanner_.complain("a path is empty");
        return outline_.path();
    }

 private:
    void draw(char command) {
        const Point from = outline_.at();
        switch (command) {
            case 'M':
                outline_.moveTo(point());
                break;
            case 'L':
                outline_.lineTo(point());
                break;
            case 'H':
                outline_.lineTo({along(from.x), from.y});
                break;
            case 'V':
                outline_.lineTo({from.x, along(from.y)});
                break;
            case 'C': {
                const Point first = point();
                control_ = point();
                outline_.curveTo(first, control_, point());
                break;
            }
            case 'S': {
                const Point first = last_ == 'C' || last_ == 'S' ? mirrored(control_, from) : from;
                control_ = point();
                outline_.curveTo(first, control_, point());
                break;
            }
            case 'Q':
                control_ = point();
                outline_.bendTo(control_, point());
                break;
            case 'A': {
                const double radiusX = scanner_.length();
                const double radiusY = scanner_.length();
                const double degrees = scanner_.number();
                const bool isLarge = scanner_.flag();
                const bool isClockwise = scanner_.flag();
                outline_.arcTo(radiusX, radiusY, degrees, isLarge, isClockwise, point());
                break;
            }
            default:
                scanner_.complain(std::string("a path knows no \"") + command + '"');
        }
    }

    Point point() {
        const Point from = isRelative_ ? outline_.at() : Point{};
        const double x = scanner_.number();
        return {from.x + x, from.y + scanner_.number()};
    }
    double along(double from) { return scanner_.number() + (isRelative_ ? from : 0); }

    NumberScanner scanner_;
    Outline outline_;
    bool isRelative_ = false;
    char last_ = 'Z';
    Point control_;  // the last one of the curve before
};

}  // namespace

void Outline::moveTo(Point to) {
    path_.segments.emplace_back(Path::MoveTo{to});
    at_ = start_ = to;
}

void Outline::lineTo(Point to) {
    // After a closed part the next one starts where that did.
    if (!isEmpty() && std::holds_alternative<Path::Close>(path_.segments.back())) moveTo(at_);
    path_.segments.emplace_back(Path::LineTo{to});
    at_ = to;
}

void Outline::curveTo(Point first, Point second, Point to) {
    if (!isEmpty() && std::holds_alternative<Path::Close>(path_.segments.back())) moveTo(at_);
    path_.segments.emplace_back(Path::CurveTo{first, second, to});
    at_ = to;
}

void Outline::bendTo(Point control, Point to) {
    curveTo(between(at_, control, 2.0 / 3), between(to, control, 2.0 / 3), to);
}

void Outline::arcTo(double radiusX, double radiusY, double degrees, bool isLarge, bool isClockwise,
                    Point to) {
    const Point from = at_;
    if (std::hypot(to.x - from.x, to.y - from.y) < 1e-9) return;
    if (!(radiusX > 0) || !(radiusY > 0)) {
        lineTo(to);
        return;
    }
    const double tilt = degrees / 360 * kTurn;
    const double cosine = std::cos(tilt);
    const double sine = std::sin(tilt);
    // Half the way from end to end, in the ellipse's own axes and radii: there it is a circle of radius 1.
    const double halfX = (from.x - to.x) / 2;
    const double halfY = (from.y - to.y) / 2;
    double x = (cosine * halfX + sine * halfY) / radiusX;
    double y = (cosine * halfY - sine * halfX) / radiusY;
    const double reach = std::hypot(x, y);
    if (reach > 1) {
        radiusX *= reach;
        radiusY *= reach;
        x /= reach;
        y /= reach;
    }
    const double squared = x * x + y * y;
    const double away = std::sqrt(std::max(0.0, 1 / squared - 1)) * (isLarge == isClockwise ? -1 : 1);
    const double centerX = away * y;
    const double centerY = -away * x;
    double angle = std::atan2(y - centerY, x - centerX);
    double sweep = std::atan2(-y - centerY, -x - centerX) - angle;
    if (isClockwise && sweep < 0) sweep += kTurn;
    if (!isClockwise && sweep > 0) sweep -= kTurn;

    const auto placed = [&](double circleX, double circleY) {
        const double alongX = (circleX + centerX) * radiusX;
        const double alongY = (circleY + centerY) * radiusY;
        return Point{cosine * alongX - sine * alongY + (from.x + to.x) / 2,
                     sine * alongX + cosine * alongY + (from.y + to.y) / 2};
    };
    // In pieces of a quarter turn at most, with a grain of tolerance for an exact one.
    const int pieces = std::max(1, static_cast<int>(std::ceil(std::abs(sweep) / (kTurn / 4) - 1e-9)));
    const double step = sweep / pieces;
    const double handle = 4.0 / 3 * std::tan(step / 4);
    for (int piece = 0; piece < pieces; ++piece) {
        const double c0 = std::cos(angle);
        const double s0 = std::sin(angle);
        angle += step;
        const double c1 = std::cos(angle);
        const double s1 = std::sin(angle);
        curveTo(placed(c0 - handle * s0, s0 + handle * c0), placed(c1 + handle * s1, s1 - handle * c1),
                piece + 1 == pieces ? to : placed(c1, s1));
    }
}

void Outline::close() {
    path_.segments.emplace_back(Path::Close{});
    at_ = start_;
}

Path pathOutline(std::string_view description, std::size_t line) {
    return PathReader(description, line).path();
}

Path ellipseOutline(Point center, double radiusX, double radiusY) {
    return rectOutline({center.x - radiusX, center.y - radiusY}, 2 * radiusX, 2 * radiusY, radiusX, radiusY);
}

Path rectOutline(Point origin, double width, double height, double radiusX, double radiusY) {
    const double rx = std::min(radiusX, width / 2);
    const double ry = std::min(radiusY, height / 2);
    const double left = origin.x;
    const double top = origin.y;
    const double right = left + width;
    const double bottom = top + height;
    Outline made;
    if (!(rx > 0) || !(ry > 0)) {
        made.moveTo(origin);
        made.lineTo({right, top});
        made.lineTo({right, bottom});
        made.lineTo({left, bottom});
        made.close();
        return made.path();
    }
    const double handleX = rx * (1 - kQuarter);  // from the corner
    const double handleY = ry * (1 - kQuarter);
    const auto straightTo = [&](Point to) {
        if (std::hypot(to.x - made.at().x, to.y - made.at().y) > 1e-9) made.lineTo(to);
    };
    made.moveTo({left + rx, top});
    straightTo({right - rx, top});
    made.curveTo({right - handleX, top}, {right, top + handleY}, {right, top + ry});
    straightTo({right, bottom - ry});
    made.curveTo({right, bottom - handleY}, {right - handleX, bottom}, {right - rx, bottom});
    straightTo({left + rx, bottom});
    made.curveTo({left + handleX, bottom}, {left, bottom - handleY}, {left, bottom - ry});
    straightTo({left, top + ry});
    made.curveTo({left, top + handleY}, {left + handleX, top}, {left + rx, top});
    made.close();
    return made.path();
}

}  // namespace norvane
