#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "Complaint.h"
#include "Drawing.h"
#include "drawing/Picture.h"
#include "drawing/PlacedPath.h"

namespace norvane {
namespace {

// A picture in words, a line for each layer, with numbers to the given part of a unit.
std::string inWords(const Picture& picture, double parts) {
    std::ostringstream out;
    const auto add = [&](const char* what, std::initializer_list<double> numbers) {
        out << what;
        for (const double number : numbers)
            out << std::round(number * parts) / parts + 0.0 << ' ';  // without a negative zero
    };
    for (const auto& [path, rule, stroke, fill] : picture.layers) {
        for (const Path::Segment& segment : path.segments) {
            if (const auto* move = std::get_if<Path::MoveTo>(&segment)) add("M", {move->to.x, move->to.y});
            if (const auto* line = std::get_if<Path::LineTo>(&segment)) add("L", {line->to.x, line->to.y});
            if (const auto* c = std::get_if<Path::CurveTo>(&segment))
                add("C", {c->first.x, c->first.y, c->second.x, c->second.y, c->to.x, c->to.y});
            if (std::holds_alternative<Path::Close>(segment)) add("Z ", {});
        }
        if (rule == FillRule::evenOdd) add("evenodd ", {});
        if (stroke) add("line ", {stroke->width});
        if (stroke && stroke->cap == LineCap::round) add("caps ", {});
        if (stroke && stroke->join == LineJoin::round) add("joins ", {});
        add("in ", {fill.from.red, fill.from.green, fill.from.blue, fill.from.alpha});
        if (!fill.isPlain()) {
            add("to ", {fill.to.red, fill.to.green, fill.to.blue, fill.to.alpha});
            add("along ", {fill.start.x, fill.start.y, fill.end.x, fill.end.y});
        }
        out << '\n';
    }
    return out.str();
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

struct Drawn {
    const char* name;
    const char* drawing;
    const char* want;
};

TEST(PictureCompiler, FollowsThePenOfAPath) {
    for (const Drawn& c : {
             Drawn{"lines", "M1 2L3 4H5V6Z", "M1 2 L3 4 L5 4 L5 6 Z "},
             Drawn{"lines from where the pen is", "m1 2l3 4h5v6z", "M1 2 L4 6 L9 6 L9 12 Z "},
             Drawn{"repeated commands", "m1 2 3 4m1 1 1 1L1 1 2 2", "M1 2 L4 6 M5 7 L6 8 L1 1 L2 2 "},
             Drawn{"numbers without blanks", "M.5.25L-1-2.5,1e1,2E-1", "M0.5 0.25 L-1 -2.5 L10 0.2 "},
             Drawn{"after a close, from its start", "M1 1L5 1L5 5zl1 1M0 0h1",
                   "M1 1 L5 1 L5 5 Z M1 1 L2 2 M0 0 L1 0 "},
             Drawn{"a curve", "M1 1C2 2 3 2 4 1c1-1 2-1 3 0", "M1 1 C2 2 3 2 4 1 C5 0 6 0 7 1 "},
             Drawn{"a smooth curve", "M0 0C0 1 1 2 2 2S4 3 4 4s1 2 2 2",
                   "M0 0 C0 1 1 2 2 2 C3 2 4 3 4 4 C4 5 5 6 6 6 "},
             Drawn{"one control point", "M0 0Q3 3 6 0q3 3 6 0", "M0 0 C2 2 4 2 6 0 C8 2 10 2 12 0 "},
             Drawn{"a quarter circle", "M10 0A10 10 0 0 1 20 10", "M10 0 C15.52 0 20 4.48 20 10 "},
             Drawn{"anticlockwise, flags glued", "M10 0A10 10 0 0020 10", "M10 0 C10 5.52 14.48 10 20 10 "},
             Drawn{"the long way round", "M10 0A10 10 0 1 1 20 10",
                   "M10 0 C10 -5.52 14.48 -10 20 -10 C25.52 -10 30 -5.52 30 0 C30 5.52 25.52 10 20 10 "},
             Drawn{"a radius that cannot reach, of a turned ellipse", "M0 0A2 1 90 0 1 4 0",
                   "M0 0 C0 -2.21 0.9 -4 2 -4 C3.1 -4 4 -2.21 4 0 "},
             Drawn{"arcs of no radius and to where they are", "M0 0A0 5 0 0 1 4 0A5 5 0 1 1 4 0",
                   "M0 0 L4 0 "},
         }) {
        const Picture picture = drawn(image("<path d='" + std::string(c.drawing) + "'/>"));
        EXPECT_EQ(inWords(picture, 100), c.want + std::string("in 0 0 0 1 \n")) << c.name;
    }
}

TEST(PictureCompiler, DrawsShapesWithThePaintAroundThem) {
    for (const Drawn& c : {
             Drawn{"a rounded rectangle", "<rect x='1' y='2' width='9' height='9' rx='1'/>",
                   "M2 2 L9 2 C9.55 2 10 2.45 10 3 L10 10 C10 10.55 9.55 11 9 11 L2 11 C1.45 11 1 10.55 1 10 "
                   "L1 3 C1 2.45 1.45 2 2 2 Z in 0 0 0 1 \n"},
             Drawn{"one that is a capsule", "<rect width='4' height='2' rx='3' ry='3'/>",
                   "M2 0 C3.1 0 4 0.45 4 1 C4 1.55 3.1 2 2 2 C0.9 2 0 1.55 0 1 C0 0.45 0.9 0 2 0 Z in 0 0 0 "
                   "1 \n"},
             Drawn{"a circle", "<circle cx='1' cy='1' r='1'/>",
                   "M1 0 C1.55 0 2 0.45 2 1 C2 1.55 1.55 2 1 2 C0.45 2 0 1.55 0 1 C0 0.45 0.45 0 1 0 Z in 0 "
                   "0 0 1 \n"},
             Drawn{"a polygon", "<polygon points='0,0 4,0 2,3' fill-rule='evenodd'/>",
                   "M0 0 L4 0 L2 3 Z evenodd in 0 0 0 1 \n"},
             Drawn{"a fill, then its line", "<polyline points='0 0 4 0' fill='#ff0000' stroke='#0000ff'/>",
                   "M0 0 L4 0 in 1 0 0 1 \nM0 0 L4 0 line 1 in 0 0 1 1 \n"},
             Drawn{"inherited paint, changed on the way",
                   "<g fill='none' stroke='#00ff00' stroke-width='2' stroke-linecap='round'><g "
                   "stroke-linejoin='round' stroke-opacity='0.5'><line x2='5' stroke-width='3' "
                   "opacity='0.5'/></g><line y2='6'/></g>",
                   "M0 0 L5 0 line 3 caps joins in 0 1 0 0.25 \nM0 0 L0 6 line 2 caps in 0 1 0 1 \n"},
             Drawn{"moved, then enlarged, line and all",
                   "<g transform='translate(1 2)'><line x1='1' x2='2' fill='none' stroke='#000000' "
                   "transform='scale(3)'/></g>",
                   "M4 2 L7 2 line 3 in 0 0 0 1 \n"},
             Drawn{"two in one, the last one first",
                   "<path d='M1 0L0 1' transform='translate(10,0) rotate(90 5 5)'/>",
                   "M20 1 L19 0 in 0 0 0 1 \n"},
             Drawn{"any", "<path d='M1 1L2 1' transform='matrix(2 0 1 3 5 6)'/>", "M8 9 L10 9 in 0 0 0 1 \n"},
             Drawn{"a gradient moves along",
                   "<linearGradient id='a' gradientUnits='userSpaceOnUse' x1='0' y1='0' x2='0' y2='2'><stop "
                   "offset='0' stop-color='#ffffff'/><stop offset='1' stop-color='#000000' "
                   "stop-opacity='0.5'/></linearGradient><path d='M0 0H1' fill='url(#a)' fill-opacity='0.5' "
                   "transform='translate(3 0) scale(2)'/>",
                   "M3 0 L5 0 in 1 1 1 0.5 to 0 0 0 0.25 along 3 0 3 4 \n"},
             Drawn{"between remarks", "<g ><!-- <oops> --></g >\n<path\n d='M0 0H1' />\n<!-- more -->",
                   "M0 0 L1 0 in 0 0 0 1 \n"},
         }) {
        EXPECT_EQ(inWords(drawn(image(c.drawing)), 100), c.want) << c.name;
    }
    EXPECT_EQ(inWords(drawn(image("<path d='M0 0H9' fill='currentColor'/>"), PictureKind::symbol), 1),
              "M0 0 L9 0 in 0 0 0 1 \n");
}

TEST(PictureCompiler, RefusesWhatItDoesNotUnderstandAndSaysWhere) {
    const std::string path = "<path d='M0 0H1'/>";
    const std::string gradient =
        "<linearGradient id='a' gradientUnits='userSpaceOnUse' x1='0' y1='0' "
        "x2='0' y2='2'><stop offset='0' stop-color='#ffffff'/>";
    const std::string end = "<stop offset='1' stop-color='#000000'/></linearGradient>";
    const std::string used = "<path d='M0 0H1' fill='url(#a)'/>";
    ASSERT_NO_THROW(drawn(image(gradient + end + used)));
    std::string deep;
    for (int at = 0; at < 100000; ++at)
        deep += "<g>";

    std::vector<std::string> refused{
        deep,
        "<g opacity='0.5'>" + path + "</g>",
        "<g><linearGradient id='b'/></g>",
        gradient + end + path,
        gradient + "</linearGradient>" + used,
        gradient + "<stop offset='0.5' stop-color='#000000'/>" + end + used,
        gradient + end + gradient + end + used,
        gradient + end + "<path d='M0 0H1' fill='url(#a)' transform='scale(1 2)'/>"};
    for (const char* inside :
         {"", "text", "<!-- no end", "</svg><svg>", "<text/>", "<g/>", "<path/>", "<g></path>",
          "<circle r='-1'/>", "<polygon points=''/>", "<polygon points='1 2 3'/>", "<path d='M0 0H1'>",
          "<path d='M0 0H1/>", "<path d='M0 0H1&#10;'/>"})
        refused.push_back(inside);
    for (const char* paint :
         {"d='M1 1'", "cx='1'", "fill='none'stroke='#000000'", "fill='none'", "fill='red'", "fill='#12345'",
          "fill='#12345G'", "fill='url(#nobody)'", "fill-opacity='2'", "stroke='#000000' opacity='0.5'",
          "stroke='#000000' stroke-width='0'", "stroke='#000000' stroke-linecap='square'",
          "stroke='#000000' stroke-dasharray='1'", "stroke='#000000' transform='scale(1 2)'",
          "transform='skewX(1)'", "transform='scale(1'", "transform='matrix(1 2 3)'"})
        refused.push_back("<path d='M0 0H1' " + std::string(paint) + "/>");
    for (const char* description :
         {"", "L1 1", "M1", "M1 1L", "M1 1T2 2", "M1 1,", "M1 1,,2 2", "M1 1 2", "M1 1A1 1 0 2 1 3 3",
          "M1 1A-1 1 0 0 1 3 3", "M1 1L1e9 0", "M1 1Lnan 0", "M1 1Z2 2", "M0x10 1"})
        refused.push_back("<path d='" + std::string(description) + "'/>");
    for (std::string& inside : refused)
        inside = image(inside);
    for (const char* attributes : {"", "viewBox='1 0 9 9'", "viewBox='0 0 0 9'", "viewBox='0 0 9 9 9'"})
        refused.push_back(rooted(attributes, path));
    refused.push_back("<svg viewBox='0 0 9 9'>" + path + "</svg>");
    for (const std::string& whole : refused)
        EXPECT_THROW(drawn(whole), Complaint) << whole.substr(0, 200);
    EXPECT_THROW(drawingIn(image(path), PictureKind::image), Complaint) << "single quotes";
    EXPECT_THROW(drawn(image(path), PictureKind::symbol), Complaint) << "black, in a symbol";
    EXPECT_THROW(drawn(image("<path d='M0 0H1' fill='currentColor'/>")), Complaint) << "not in a symbol";

    try {
        drawn(image(path + "\n<!--\n-->\n<path\n d='M0 0W1'/>"));
        ADD_FAILURE() << "there is no W";
    } catch (const Complaint& complaint) {
        EXPECT_EQ(complaint.line(), 5U);
        EXPECT_STREQ(complaint.what(), R"(a path knows no "W")");
    }
}

// Within the grid and about its middle. Lines have round joins, so they reach no
// further than half their width.
void expectInkOnTheGrid(const Picture& picture) {
    Rect ink;
    for (const PictureLayer& layer : picture.layers) {
        EXPECT_FALSE(layer.fill.isClear());
        EXPECT_TRUE(!layer.stroke || layer.stroke->join == LineJoin::round);
        Path path = layer.path;
        for (Path::Segment& segment : path.segments) {
            // The control points may lie beyond.
            if (auto* curve = std::get_if<Path::CurveTo>(&segment)) curve->first = curve->second = curve->to;
        }
        const PlacedPath placed{std::make_shared<const Path>(std::move(path)), {}};
        ink = ink.united(placed.bounds().outset(layer.stroke ? layer.stroke->width / 2 : 0));
    }
    const Rect grid{{}, picture.grid};
    EXPECT_EQ(ink.intersection(grid), ink);
    EXPECT_GT(ink.size.width, grid.size.width * 0.45);
    EXPECT_NEAR(ink.midX(), grid.midX(), grid.size.width / 30);
    EXPECT_NEAR(ink.midY(), grid.midY(), grid.size.height / 30);
}

TEST(Picture, IsFoundByItsNameAndAsItWasDrawn) {
    for (const bool isSymbol : {true, false}) {
        const char* folder =
            isSymbol ? NORVANE_SOURCE_DIR "/resources/symbols" : NORVANE_SOURCE_DIR "/resources/images";
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            const std::string name = entry.path().stem().string();
            SCOPED_TRACE(name);
            const auto found = isSymbol ? symbolNamed(name) : imageNamed(name);
            ASSERT_TRUE(found);
            EXPECT_FALSE(isSymbol ? imageNamed(name) : symbolNamed(name));
            std::ifstream stream(entry.path(), std::ios::binary);
            const std::string svg{std::istreambuf_iterator<char>(stream), {}};
            const Picture want = drawingIn(svg, isSymbol ? PictureKind::symbol : PictureKind::image);
            EXPECT_EQ(found->grid, want.grid);
            EXPECT_EQ(inWords(*found, 1e4), inWords(want, 1e4));
            expectInkOnTheGrid(*found);
        }
    }
    for (const std::string& name : {std::string(), std::string("pi"), std::string("pin."), std::string("Pin"),
                                    std::string("pin\0", 4), std::string(100000, 'p')}) {
        EXPECT_FALSE(symbolNamed(name)) << name.substr(0, 20);
        EXPECT_FALSE(imageNamed(name)) << name.substr(0, 20);
    }
}

}  // namespace
}  // namespace norvane
