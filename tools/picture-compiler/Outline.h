#pragma once

#include <cstddef>
#include <string_view>

#include "drawing/Path.h"

namespace norvane {

// Puts an outline together from what drawings are made of, in lines and cubic curves.
class Outline {
 public:
    void moveTo(Point to);
    void lineTo(Point to);
    void curveTo(Point first, Point second, Point to);
    // A curve of one control point.
    void bendTo(Point control, Point to);
    // A part of an ellipse whose axes are turned by so many degrees. One that cannot reach is made larger,
    // one without a radius is a line.
    void arcTo(double radiusX, double radiusY, double degrees, bool isLarge, bool isClockwise, Point to);
    void close();

    // Where the pen is.
    Point at() const { return at_; }
    bool isEmpty() const { return path_.segments.empty(); }
    Path path() const { return path_; }

 private:
    Path path_;
    Point at_;
    Point start_;
};

// The outline that a path's "d" describes. Throws a `Complaint`.
Path pathOutline(std::string_view description, std::size_t line);
Path ellipseOutline(Point center, double radiusX, double radiusY);
// A radius is cut to half its side.
Path rectOutline(Point origin, double width, double height, double radiusX, double radiusY);

}  // namespace norvane
