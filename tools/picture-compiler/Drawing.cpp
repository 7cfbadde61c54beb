#include "Drawing.h"

#include <algorithm>
#include <functional>
#include <map>
#include <numbers>
#include <set>
#include <string>

#include "Complaint.h"
#include "Gradient.h"
#include "NumberScanner.h"
#include "Outline.h"
#include "Paint.h"
#include "XmlElement.h"

namespace norvane {
namespace {

constexpr double kLargestGrid = 1024;

double numberAt(const XmlElement& element, std::string_view name, double absent = 0) {
    const std::string* const text = element.attribute(name);
    return text ? onlyNumber(*text, element.line) : absent;
}

double lengthAt(const XmlElement& element, std::string_view name) {
    const double value = numberAt(element, name);
    if (value < 0) throw Complaint(element.line, "\"" + std::string(name) + "\" is negative");
    return value;
}

double shareIn(const std::string& text, std::size_t line) {
    const double value = onlyNumber(text, line);
    if (!(value >= 0 && value <= 1)) throw Complaint(line, "an opacity is from 0 to 1");
    return value;
}

Point pointAt(const XmlElement& element, std::string_view x, std::string_view y) {
    return {numberAt(element, x), numberAt(element, y)};
}

Color colorIn(const std::string& text, double opacity, std::size_t line) {
    const auto digit = [&](std::size_t at) {
        const char c = text[at];
        if (c >= '0' && c <= '9') return c - '0';
        if (c >= 'a' && c <= 'f') return c - 'a' + 10;
        throw Complaint(line, "\"" + text + "\" is no colour: six small hexadecimal digits make one");
    };
    if (text.size() != 7 || text[0] != '#') throw Complaint(line, "\"" + text + "\" is no colour");
    const auto part = [&](std::size_t at) { return (16 * digit(at) + digit(at + 1)) / 255.0; };
    return {part(1), part(3), part(5), opacity};
}

Affine transformIn(const std::string& text, std::size_t line) {
    NumberScanner scanner(text, line);
    Affine all;
    while (!scanner.isAtEnd()) {
        const std::string name(scanner.word());
        if (!scanner.take("(")) scanner.complain("\"(\" is missing");
        std::vector<double> numbers;
        while (scanner.isAtNumber())
            numbers.push_back(scanner.number());
        if (!scanner.take(")")) scanner.complain("\")\" is missing");
        scanner.take(",");
        const std::size_t count = numbers.size();
        numbers.resize(6);
        if (name == "matrix" && count == 6) {
            all = all.after({numbers[0], numbers[1], numbers[2], numbers[3], numbers[4], numbers[5]});
        } else if (name == "translate" && (count == 1 || count == 2)) {
            all = all.after({1, 0, 0, 1, numbers[0], numbers[1]});
        } else if (name == "scale" && (count == 1 || count == 2)) {
            all = all.after({numbers[0], 0, 0, numbers[count - 1], 0, 0});
        } else if (name == "rotate" && (count == 1 || count == 3)) {
            const double angle = numbers[0] / 180 * std::numbers::pi;
            const double cosine = std::cos(angle);
            const double sine = std::sin(angle);
            all = all.after({1, 0, 0, 1, numbers[1], numbers[2]})
                      .after({cosine, sine, -sine, cosine, 0, 0})
                      .after({1, 0, 0, 1, -numbers[1], -numbers[2]});
        } else {
            scanner.complain("no transform: " + name + " with " + std::to_string(count) + " numbers");
        }
    }
    return all;
}

Path polyOutline(const XmlElement& element, bool isClosed) {
    const std::string* const text = element.attribute("points");
    if (!text) throw Complaint(element.line, "\"points\" is missing");
    NumberScanner scanner(*text, element.line);
    Outline outline;
    while (!scanner.isAtEnd()) {
        const double x = scanner.number();
        const Point point{x, scanner.number()};
        if (outline.isEmpty()) {
            outline.moveTo(point);
        } else {
            outline.lineTo(point);
        }
    }
    if (outline.isEmpty()) throw Complaint(element.line, "\"points\" is empty");
    if (isClosed) outline.close();
    return outline.path();
}

// One of the elements that have an outline, and the attributes which describe it.
struct ShapeKind {
    std::set<std::string, std::less<>> attributes;
    std::function<Path(const XmlElement&)> outline;
};

const std::map<std::string, ShapeKind, std::less<>>& shapeKinds() {
    static const std::map<std::string, ShapeKind, std::less<>> kinds{
        {"path",
         {{"d"},
          [](const XmlElement& e) {
              const std::string* const text = e.attribute("d");
              if (!text) throw Complaint(e.line, "\"d\" is missing");
              return pathOutline(*text, e.line);
          }}},
        {"circle",
         {{"cx", "cy", "r"},
          [](const XmlElement& e) {
              const double radius = lengthAt(e, "r");
              return ellipseOutline(pointAt(e, "cx", "cy"), radius, radius);
          }}},
        {"ellipse",
         {{"cx", "cy", "rx", "ry"},
          [](const XmlElement& e) {
              return ellipseOutline(pointAt(e, "cx", "cy"), lengthAt(e, "rx"), lengthAt(e, "ry"));
          }}},
        {"rect",
         {{"x", "y", "width", "height", "rx", "ry"},
          [](const XmlElement& e) {
              // One radius stands for both.
              const double rx = lengthAt(e, e.attribute("rx") ? "rx" : "ry");
              const double ry = lengthAt(e, e.attribute("ry") ? "ry" : "rx");
              return rectOutline(pointAt(e, "x", "y"), lengthAt(e, "width"), lengthAt(e, "height"), rx, ry);
          }}},
        {"line",
         {{"x1", "y1", "x2", "y2"},
          [](const XmlElement& e) {
              Outline outline;
              outline.moveTo(pointAt(e, "x1", "y1"));
              outline.lineTo(pointAt(e, "x2", "y2"));
              return outline.path();
          }}},
        {"polyline", {{"points"}, [](const XmlElement& e) { return polyOutline(e, false); }}},
        {"polygon", {{"points"}, [](const XmlElement& e) { return polyOutline(e, true); }}},
    };
    return kinds;
}

class Reader {
 public:
    explicit Reader(PictureKind kind) : kind_(kind) {}

    Picture picture(const XmlElement& root) {
        if (root.name != "svg") throw Complaint(root.line, "the outermost element is not \"svg\"");
        const std::string* const name = root.attribute("xmlns");
        if (!name || *name != "http://www.w3.org/2000/svg") {
            throw Complaint(root.line, "\"xmlns\" does not name SVG");
        }
        readGrid(root);
        const Paint paint = paintOf(root, Paint{}, {"xmlns", "viewBox"});
        // A gradient may be used before it is described.
        for (const XmlElement& child : root.children) {
            if (child.name == "linearGradient") readGradient(child);
        }
        readChildren(root, paint);
        if (picture_.layers.empty()) throw Complaint(root.line, "nothing is drawn");
        for (const auto& [gradient, line] : unused_) {
            throw Complaint(line, "the gradient \"" + gradient + "\" is not used");
        }
        return std::move(picture_);
    }

 private:
    void readGrid(const XmlElement& root) {
        const std::string* const text = root.attribute("viewBox");
        if (!text) throw Complaint(root.line, "\"viewBox\" is missing");
        NumberScanner scanner(*text, root.line);
        const double left = scanner.number();
        const double top = scanner.number();
        picture_.grid.width = scanner.number();
        picture_.grid.height = scanner.number();
        const auto [width, height] = picture_.grid;
        if (!scanner.isAtEnd() || left != 0 || top != 0 || !(width > 0) || !(height > 0) ||
            width > kLargestGrid || height > kLargestGrid) {
            throw Complaint(root.line, R"("viewBox" is "0 0" and a usable size)");
        }
        if (kind_ == PictureKind::symbol && (width != kSymbolGrid || height != kSymbolGrid)) {
            throw Complaint(root.line, "a symbol's grid is 20 by 20");
        }
    }

    void readChildren(const XmlElement& parent, const Paint& paint) {
        const bool isOutermost = parent.name == "svg";
        for (const XmlElement& child : parent.children) {
            const auto kind = shapeKinds().find(child.name);
            if (kind != shapeKinds().end()) {
                if (!child.children.empty()) throw Complaint(child.line, "nothing stands inside a shape");
                draw(child, kind->second, paint);
            } else if (child.name == "g") {
                readChildren(child, paintOf(child, paint, {}));
            } else if (child.name != "linearGradient" || !isOutermost) {
                throw Complaint(child.line, "\"" + child.name + "\" is not understood here");
            }
        }
    }

    // The paint around an element, changed by what stands at it. `others` are the attributes that are no
    // paint; any further one is a mistake.
    static Paint paintOf(const XmlElement& element, Paint paint,
                         const std::set<std::string, std::less<>>& others) {
        const std::size_t line = element.line;
        for (const auto& [name, value] : element.attributes) {
            if (name == "fill") {
                paint.fill = value;
            } else if (name == "stroke") {
                paint.stroke = value;
            } else if (name == "fill-opacity") {
                paint.fillOpacity = shareIn(value, line);
            } else if (name == "stroke-opacity") {
                paint.strokeOpacity = shareIn(value, line);
            } else if (name == "fill-rule") {
                if (value != "nonzero" && value != "evenodd") complainAbout(element, name);
                paint.rule = value == "evenodd" ? FillRule::evenOdd : FillRule::nonZero;
            } else if (name == "stroke-width") {
                paint.line.width = onlyNumber(value, line);
                if (!(paint.line.width > 0)) complainAbout(element, name);
            } else if (name == "stroke-linecap") {
                if (value != "butt" && value != "round") complainAbout(element, name);
                paint.line.cap = value == "round" ? LineCap::round : LineCap::butt;
            } else if (name == "stroke-linejoin") {
                if (value != "miter" && value != "round") complainAbout(element, name);
                paint.line.join = value == "round" ? LineJoin::round : LineJoin::miter;
            } else if (name == "transform") {
                paint.transform = paint.transform.after(transformIn(value, line));
            } else if (!others.contains(name)) {
                throw Complaint(line, "\"" + element.name + "\" knows no \"" + name + '"');
            }
        }
        return paint;
    }

    [[noreturn]] static void complainAbout(const XmlElement& element, const std::string& attribute) {
        throw Complaint(element.line, "\"" + attribute + "\" has a value that is not understood");
    }

    void draw(const XmlElement& element, const ShapeKind& kind, const Paint& around) {
        std::set<std::string, std::less<>> others = kind.attributes;
        others.insert("opacity");
        Paint paint = paintOf(element, around, others);
        const bool isFilled = paint.fill != "none";
        const bool isStroked = paint.stroke != "none";
        if (!isFilled && !isStroked) throw Complaint(element.line, "this is neither filled nor stroked");
        if (const std::string* const text = element.attribute("opacity")) {
            // Of both together it is not the opacity of each: the line would shine through.
            if (isFilled && isStroked) {
                throw Complaint(element.line, "\"opacity\" belongs to a fill or to a stroke, not to both");
            }
            const double share = shareIn(*text, element.line);
            paint.fillOpacity *= share;
            paint.strokeOpacity *= share;
        }
        const Path path = paint.transform(kind.outline(element));
        if (isFilled) {
            picture_.layers.push_back({path, paint.rule, std::nullopt,
                                       fillOf(element, paint.fill, paint.fillOpacity, paint.transform)});
        }
        if (isStroked) {
            if (!paint.transform.keepsShapes()) {
                throw Complaint(element.line, "a line cannot be stretched in one direction");
            }
            StrokeStyle line = paint.line;
            line.width *= paint.transform.scale();
            if (line.width < 0.01) throw Complaint(element.line, "a line is too thin to be seen");
            picture_.layers.push_back({path, FillRule::nonZero, line,
                                       fillOf(element, paint.stroke, paint.strokeOpacity, paint.transform)});
        }
    }

    Fill fillOf(const XmlElement& element, const std::string& text, double opacity, const Affine& transform) {
        if (kind_ == PictureKind::symbol) {
            if (text != "currentColor") throw Complaint(element.line, "a symbol is drawn in currentColor");
            return Color{0, 0, 0, opacity};
        }
        if (!text.starts_with("url(#")) return colorIn(text, opacity, element.line);
        const std::string name = text.substr(5, text.size() - 6);
        const auto found = gradients_.find(name);
        if (!text.ends_with(')') || found == gradients_.end()) {
            throw Complaint(element.line, "there is no gradient \"" + name + '"');
        }
        if (!transform.keepsShapes()) {
            throw Complaint(element.line, "a gradient cannot be stretched in one direction");
        }
        unused_.erase(name);
        const Gradient& gradient = found->second;
        return {gradient.from.withOpacity(opacity), gradient.to.withOpacity(opacity),
                transform(gradient.start), transform(gradient.end)};
    }

    void readGradient(const XmlElement& element) {
        const std::size_t line = element.line;
        for (const auto& [name, value] : element.attributes) {
            static const std::set<std::string, std::less<>> known{"id", "gradientUnits", "x1", "y1", "x2",
                                                                  "y2"};
            if (!known.contains(name)) throw Complaint(line, "a gradient knows no \"" + name + '"');
        }
        const std::string* const id = element.attribute("id");
        const std::string* const units = element.attribute("gradientUnits");
        if (!id || id->empty()) throw Complaint(line, "a gradient needs an \"id\"");
        if (!units || *units != "userSpaceOnUse") {
            throw Complaint(line, R"(a gradient's "gradientUnits" are "userSpaceOnUse")");
        }
        for (const char* const name : {"x1", "y1", "x2", "y2"}) {
            if (!element.attribute(name)) throw Complaint(line, std::string("a gradient needs ") + name);
        }
        if (element.children.size() != 2) throw Complaint(line, "a gradient has two stops");
        const Gradient gradient{stop(element.children[0], "0"), stop(element.children[1], "1"),
                                pointAt(element, "x1", "y1"), pointAt(element, "x2", "y2")};
        if (gradient.start == gradient.end) throw Complaint(line, "a gradient ends where it starts");
        if (!gradients_.emplace(*id, gradient).second) throw Complaint(line, "this \"id\" is taken");
        unused_.emplace(*id, line);
    }

    static Color stop(const XmlElement& element, std::string_view wanted) {
        const std::string* const offset = element.attribute("offset");
        const std::string* const color = element.attribute("stop-color");
        const std::string* const opacity = element.attribute("stop-opacity");
        const std::size_t known = 2U + (opacity ? 1U : 0U);
        if (element.name != "stop" || !offset || *offset != wanted || !color ||
            element.attributes.size() != known || !element.children.empty()) {
            throw Complaint(element.line, "a gradient has a stop at 0 and a stop at 1");
        }
        return colorIn(*color, opacity ? shareIn(*opacity, element.line) : 1, element.line);
    }

    PictureKind kind_;
    Picture picture_;
    std::map<std::string, Gradient, std::less<>> gradients_;
    std::map<std::string, std::size_t, std::less<>> unused_;  // gradients, and where they are
};

}  // namespace

Picture drawingIn(std::string_view svg, PictureKind kind) {
    return Reader(kind).picture(parsedXml(svg));
}

}  // namespace norvane
