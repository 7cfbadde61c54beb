#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>

#include "Complaint.h"
#include "Drawing.h"

namespace norvane {
namespace {

// To a hundredth of a unit, and never a negative zero.
std::string inWords(double value) {
    std::ostringstream out;
    out << std::round(value * 100) / 100 + 0.0;
    return out.str();
}

std::string inWords(Point point) {
    return inWords(point.x) + ',' + inWords(point.y);
}

std::string inWords(const Color& color) {
    return inWords(color.red) + '/' + inWords(color.green) + '/' + inWords(color.blue) + '/' +
           inWords(color.alpha);
}

std::string inWords(const Path& path) {
    std::string text;
    for (const Path::Segment& segment : path.segments) {
        if (!text.empty()) text += ' ';
        if (const auto* move = std::get_if<Path::MoveTo>(&segment)) {
            text += 'M' + inWords(move->to);
        } else if (const auto* line = std::get_if<Path::LineTo>(&segment)) {
            text += 'L' + inWords(line->to);
        } else if (const auto* curve = std::get_if<Path::CurveTo>(&segment)) {
            text += 'C' + inWords(curve->first) + ' ' + inWords(curve->second) + ' ' + inWords(curve->to);
        } else {
            text += 'Z';
        }
    }
    return text;
}

// A line for each layer.
std::string inWords(const Picture& picture) {
    std::string text;
    for (const PictureLayer& layer : picture.layers) {
        if (!text.empty()) text += '\n';
        text += inWords(layer.path);
        if (layer.rule == FillRule::evenOdd) text += " evenodd";
        if (layer.stroke) {
            text += " line " + inWords(layer.stroke->width);
            if (layer.stroke->cap == LineCap::round) text += " caps";
            if (layer.stroke->join == LineJoin::round) text += " joins";
        }
        text += ' ' + inWords(layer.fill.from);
        if (!layer.fill.isPlain()) {
            text += " to " + inWords(layer.fill.to) + " from " + inWords(layer.fill.start) + " until " +
                    inWords(layer.fill.end);
        }
    }
    return text;
}

// What the compiler makes of a drawing in which single quotes stand for double ones.
Picture drawn(std::string svg, PictureKind kind = PictureKind::image) {
    std::replace(svg.begin(), svg.end(), '\'', '"');
    return drawingIn(svg, kind);
}

std::string rooted(const std::string& attributes, const std::string& inside) {
    return "<svg xmlns='http://www.w3.org/2000/svg' " + attributes + ">\n" + inside + "\n</svg>\n";
}

std::string image(const std::string& inside) {
    return rooted("viewBox='0 0 20 20'", inside);
}

std::string path(const std::string& description) {
    return image("<path d='" + description + "'/>");
}

TEST(PictureCompiler, FollowsThePenOfAPath) {
    struct Case {
        const char* name;
        const char* description;
        const char* want;
    };
    for (const Case& c : {
             Case{"lines", "M1 2L3 4H5V6Z", "M1,2 L3,4 L5,4 L5,6 Z"},
             Case{"lines from where the pen is", "m1 2l3 4h5v6z", "M1,2 L4,6 L9,6 L9,12 Z"},
             Case{"further pairs of a move", "M1 2 3 4m1 1 1 1", "M1,2 L3,4 M4,5 L5,6"},
             Case{"a repeated command", "M0 0L1 1 2 2H3 4", "M0,0 L1,1 L2,2 L3,2 L4,2"},
             Case{"numbers without blanks", "M.5.25L-1-2.5,1e1,2E-1", "M0.5,0.25 L-1,-2.5 L10,0.2"},
             Case{"after a close, from its start", "M1 1L5 1L5 5zl1 1M0 0h1",  //
                  "M1,1 L5,1 L5,5 Z M1,1 L2,2 M0,0 L1,0"},
             Case{"a curve", "M1 1C2 2 3 2 4 1c1-1 2-1 3 0", "M1,1 C2,2 3,2 4,1 C5,0 6,0 7,1"},
             Case{"a smooth curve", "M0 0C0 1 1 2 2 2S4 3 4 4s1 2 2 2",
                  "M0,0 C0,1 1,2 2,2 C3,2 4,3 4,4 C4,5 5,6 6,6"},
             Case{"a smooth curve after a line", "M0 0L2 2S4 3 4 4", "M0,0 L2,2 C2,2 4,3 4,4"},
             Case{"a curve of one control point", "M0 0Q3 3 6 0q3 3 6 0", "M0,0 C2,2 4,2 6,0 C8,2 10,2 12,0"},
             Case{"a quarter circle", "M10 0A10 10 0 0 1 20 10", "M10,0 C15.52,0 20,4.48 20,10"},
             Case{"the same ends, anticlockwise", "M10 0A10 10 0 0 0 20 10", "M10,0 C10,5.52 14.48,10 20,10"},
             Case{"the same ends, the long way round", "M10 0A10 10 0 1 1 20 10",
                  "M10,0 C10,-5.52 14.48,-10 20,-10 C25.52,-10 30,-5.52 30,0 C30,5.52 25.52,10 20,10"},
             Case{"an arc with its flags glued", "M10 0A10 10 0 0120 10", "M10,0 C15.52,0 20,4.48 20,10"},
             Case{"a radius that cannot reach", "M0 0A1 1 0 0 1 4 0",
                  "M0,0 C0,-1.1 0.9,-2 2,-2 C3.1,-2 4,-1.1 4,0"},
             Case{"a turned ellipse", "M0 0A4 2 90 0 1 4 0", "M0,0 C0,-2.21 0.9,-4 2,-4 C3.1,-4 4,-2.21 4,0"},
             Case{"an arc without a radius", "M0 0A0 5 0 0 1 4 0", "M0,0 L4,0"},
             Case{"an arc to where it is", "M1 1A5 5 0 1 1 1 1L2 2", "M1,1 L2,2"},
         }) {
        EXPECT_EQ(inWords(drawn(path(c.description)).layers.at(0).path), c.want) << c.name;
    }
}

TEST(PictureCompiler, DrawsShapesWithThePaintAroundThem) {
    struct Case {
        const char* name;
        const char* inside;
        const char* want;
    };
    for (const Case& c : {
             Case{"a rectangle", "<rect x='1' y='2' width='3' height='4'/>", "M1,2 L4,2 L4,6 L1,6 Z 0/0/0/1"},
             Case{"rounded", "<rect width='9' height='9' rx='1'/>",
                  "M1,0 L8,0 C8.55,0 9,0.45 9,1 L9,8 C9,8.55 8.55,9 8,9 L1,9 C0.45,9 0,8.55 0,8 L0,1 "
                  "C0,0.45 0.45,0 1,0 Z 0/0/0/1"},
             Case{"rounded to a capsule", "<rect width='4' height='2' rx='3' ry='3'/>",
                  "M2,0 C3.1,0 4,0.45 4,1 C4,1.55 3.1,2 2,2 C0.9,2 0,1.55 0,1 C0,0.45 0.9,0 2,0 Z 0/0/0/1"},
             Case{"a circle", "<circle cx='1' cy='1' r='1'/>",
                  "M1,0 C1.55,0 2,0.45 2,1 C2,1.55 1.55,2 1,2 C0.45,2 0,1.55 0,1 C0,0.45 0.45,0 1,0 Z "
                  "0/0/0/1"},
             Case{"an ellipse", "<ellipse cx='2' cy='1' rx='2' ry='1'/>",
                  "M2,0 C3.1,0 4,0.45 4,1 C4,1.55 3.1,2 2,2 C0.9,2 0,1.55 0,1 C0,0.45 0.9,0 2,0 Z 0/0/0/1"},
             Case{"a polygon", "<polygon points='0,0 4,0 2,3' fill-rule='evenodd'/>",
                  "M0,0 L4,0 L2,3 Z evenodd 0/0/0/1"},
             Case{"a fill, then its line", "<polyline points='0 0 4 0' fill='#ff0000' stroke='#0000ff'/>",
                  "M0,0 L4,0 1/0/0/1\nM0,0 L4,0 line 1 0/0/1/1"},
             Case{"inherited paint, changed on the way",
                  "<g fill='none' stroke='#00ff00' stroke-width='2' stroke-linecap='round'>"
                  "<g stroke-linejoin='round' stroke-opacity='0.5'>"
                  "<line x2='4'/><line x2='5' stroke-width='3' opacity='0.5'/></g><line y2='6'/></g>",
                  "M0,0 L4,0 line 2 caps joins 0/1/0/0.5\nM0,0 L5,0 line 3 caps joins 0/1/0/0.25\n"
                  "M0,0 L0,6 line 2 caps 0/1/0/1"},
             Case{"moved, then enlarged, line and all",
                  "<g transform='translate(1 2)'><line x1='1' x2='2' fill='none' stroke='#000000' "
                  "transform='scale(3)'/></g>",
                  "M4,2 L7,2 line 3 0/0/0/1"},
             Case{"turned about a point", "<path d='M5 0L5 1' transform='rotate(90 5 5)'/>",
                  "M10,5 L9,5 0/0/0/1"},
             Case{"two in one, the last one first",
                  "<path d='M1 0L0 1' transform='translate(10,0) rotate(90)'/>", "M10,1 L9,0 0/0/0/1"},
             Case{"any", "<path d='M1 1C2 1 3 1 4 1' transform='matrix(2 0 1 3 5 6)'/>",
                  "M8,9 C10,9 12,9 14,9 0/0/0/1"},
             Case{"a gradient moves along",
                  "<linearGradient id='a' gradientUnits='userSpaceOnUse' x1='0' y1='0' x2='0' y2='2'>"
                  "<stop offset='0' stop-color='#ffffff'/>"
                  "<stop offset='1' stop-color='#000000' stop-opacity='0.5'/></linearGradient>"
                  "<path d='M0 0H1' fill='url(#a)' fill-opacity='0.5' transform='translate(3 0) scale(2)'/>",
                  "M3,0 L5,0 1/1/1/0.5 to 0/0/0/0.25 from 3,0 until 3,4"},
         }) {
        EXPECT_EQ(inWords(drawn(image(c.inside))), c.want) << c.name;
    }
}

TEST(PictureCompiler, ReadsWhatStandsAroundADrawing) {
    const Picture picture = drawn(
        "<?xml version='1.0'?>\n<!-- a word -->\n"
        "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 22.5 11' fill='#336699'\n>"
        "<g ><!-- <oops> --></g >\n<path\n d='M0 0H1' /></svg>\n<!-- and another -->");
    EXPECT_EQ(picture.grid, (Size{22.5, 11}));
    EXPECT_EQ(inWords(picture), "M0,0 L1,0 0.2/0.4/0.6/1");
}

TEST(PictureCompiler, DrawsSymbolsInOneInkAlone) {
    const std::string stroked = "<path d='M0 0H9' fill='none' stroke='currentColor' opacity='0.5'/>";
    EXPECT_EQ(inWords(drawn(image(stroked), PictureKind::symbol)), "M0,0 L9,0 line 1 0/0/0/0.5");
    EXPECT_THROW(drawn(image(stroked)), Complaint);
    EXPECT_THROW(drawn(path("M0 0H9"), PictureKind::symbol), Complaint) << "black, as nothing is said";
    EXPECT_THROW(drawn("<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 22 22' "
                       "fill='currentColor'><path d='M0 0H9'/></svg>",
                       PictureKind::symbol),
                 Complaint);
}

TEST(PictureCompiler, RefusesWhatItDoesNotUnderstandAndSaysWhere) {
    const std::string gradient =
        "<linearGradient id='a' gradientUnits='userSpaceOnUse' x1='0' y1='0' x2='0' y2='2'>";
    const std::string stop = "<stop offset='0' stop-color='#ffffff'/>";
    const std::string stops = stop + "<stop offset='1' stop-color='#000000'/>";
    const std::string end = "</linearGradient>";
    const std::string used = end + "<path d='M0 0H1' fill='url(#a)'/>";
    ASSERT_NO_THROW(drawn(image(gradient + stops + used)));
    std::string deep;
    for (int at = 0; at < 100000; ++at)
        deep += "<g>";

    std::vector<std::string> refused{
        deep,
        // The file
        "<path d='M0 0H1'>",
        "<path d='M0 0H1/>",
        "<path d='M0 0H1' d='M1 1'/>",
        "<path d='M0 0H1'fill='none'/>",
        "<g></path>",
        "text",
        "<path d='M0 0H1&#10;'/>",
        "<!-- no end",
        "</svg><svg>",
        "",
        // Elements and attributes
        "<text/>",
        "<g/>",
        "<g opacity='0.5'><path d='M0 0H1'/></g>",
        "<path/>",
        "<path d='M0 0H1' cx='1'/>",
        "<path d='M0 0H1' style='fill:none'/>",
        "<path d='M0 0H1'><g/></path>",
        "<polygon points=''/>",
        "<polygon points='1 2 3'/>",
        "<circle r='-1'/>",
        "<circle r='1px'/>",
        "<g><linearGradient id='b'/></g>",
        // Gradients
        gradient + stops + end + "<path d='M0 0H1'/>",
        gradient + stop + used,
        gradient + stops + "<stop offset='1' stop-color='#ffffff'/>" + used,
        gradient + stop + "<stop offset='0.5' stop-color='#000000'/>" + used,
        gradient + stops + end + gradient + stops + used,
        "<linearGradient id='a' x1='0' y1='0' x2='0' y2='2'>" + stops + used,
        "<linearGradient id='a' gradientUnits='userSpaceOnUse'>" + stops + used,
        gradient + stops + end + "<path d='M0 0H1' fill='url(#a)' transform='scale(1 2)'/>",
    };
    // Attributes of a path, and descriptions of one.
    for (const char* paint :
         {"fill='none'", "fill='red'", "fill='#12345'", "fill='#12345G'", "fill='url(#nobody)'",
          "fill-opacity='2'", "stroke='#000000' opacity='0.5'", "stroke='#000000' stroke-width='0'",
          "stroke='#000000' stroke-linecap='square'", "stroke='#000000' stroke-dasharray='1'",
          "stroke='#000000' transform='scale(1 2)'", "transform='skewX(1)'", "transform='scale(1'",
          "transform='matrix(1 2 3)'"})
        refused.push_back("<path d='M0 0H1' " + std::string(paint) + "/>");
    for (const char* description :
         {"", "L1 1", "M1", "M1 1L", "M1 1T2 2", "M1 1,", "M1 1,,2 2", "M1 1 2", "M1 1A1 1 0 2 1 3 3",
          "M1 1A-1 1 0 0 1 3 3", "M1 1L1e9 0", "M1 1Lnan 0", "M1 1Z2 2", "M0x10 1"})
        refused.push_back("<path d='" + std::string(description) + "'/>");
    for (const std::string& inside : refused)
        EXPECT_THROW(drawn(image(inside)), Complaint) << inside.substr(0, 200);

    const std::string path = "<path d='M0 0H1'/>";
    for (const std::string& whole :
         {std::string(), std::string("<g/>"), std::string("<svg/>"),
          "<svg viewBox='0 0 9 9'>" + path + "</svg>", rooted("", path), rooted("viewBox='1 0 9 9'", path),
          rooted("viewBox='0 0 0 9'", path), rooted("viewBox='0 0 9 9 9'", path)})
        EXPECT_THROW(drawn(whole), Complaint) << whole;
    EXPECT_THROW(drawingIn(image(path), PictureKind::image), Complaint) << "single quotes";

    try {
        drawn(image("<path d='M0 0H1'/>\n<!--\n-->\n<path\n d='M0 0W1'/>"));
        ADD_FAILURE() << "there is no W";
    } catch (const Complaint& complaint) {
        EXPECT_EQ(complaint.line(), 5U);
        EXPECT_STREQ(complaint.what(), R"(a path knows no "W")");
    }
}

}  // namespace
}  // namespace norvane
