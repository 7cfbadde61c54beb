#include "drawing/Picture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "Drawing.h"

namespace norvane {
namespace {

struct File {
    std::string name;
    std::string contents;
};

std::vector<File> filesIn(const std::string& folder) {
    std::vector<File> files;
    for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(NORVANE_SOURCE_DIR) /
                                                                 "resources" / folder)) {
        std::ifstream stream(entry.path(), std::ios::binary);
        files.push_back({entry.path().stem().string(),
                         {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()}});
    }
    return files;
}

// All there is to a picture, as a row of numbers.
std::vector<double> numbersOf(const Picture& picture) {
    std::vector<double> numbers{picture.grid.width, picture.grid.height};
    const auto add = [&](std::initializer_list<double> more) { numbers.insert(numbers.end(), more); };
    for (const PictureLayer& layer : picture.layers) {
        const StrokeStyle line = layer.stroke.value_or(StrokeStyle{});
        const Fill& fill = layer.fill;
        add({layer.rule == FillRule::evenOdd ? 1.0 : 0.0, layer.stroke ? line.width : 0.0,
             line.cap == LineCap::round ? 1.0 : 0.0, line.join == LineJoin::round ? 1.0 : 0.0});
        for (const Color& color : {fill.from, fill.to})
            add({color.red, color.green, color.blue, color.alpha});
        add({fill.start.x, fill.start.y, fill.end.x, fill.end.y});
        for (const Path::Segment& segment : layer.path.segments) {
            add({static_cast<double>(segment.index())});
            if (const auto* move = std::get_if<Path::MoveTo>(&segment)) add({move->to.x, move->to.y});
            if (const auto* straight = std::get_if<Path::LineTo>(&segment))
                add({straight->to.x, straight->to.y});
            if (const auto* curve = std::get_if<Path::CurveTo>(&segment)) {
                add({curve->first.x, curve->first.y, curve->second.x, curve->second.y, curve->to.x,
                     curve->to.y});
            }
        }
    }
    return numbers;
}

// Places all along a path, close enough to one another to tell where it goes.
std::vector<Point> walked(const Path& path) {
    std::vector<Point> places;
    for (const Path::Segment& segment : path.segments) {
        if (const auto* move = std::get_if<Path::MoveTo>(&segment)) places.push_back(move->to);
        if (const auto* line = std::get_if<Path::LineTo>(&segment)) places.push_back(line->to);
        if (const auto* curve = std::get_if<Path::CurveTo>(&segment)) {
            const Point from = places.back();
            for (int step = 1; step <= 64; ++step) {
                const double t = step / 64.0;
                const double u = 1 - t;
                const auto at = [&](double a, double b, double c, double d) {
                    return u * u * u * a + 3 * u * u * t * b + 3 * u * t * t * c + t * t * t * d;
                };
                places.push_back({at(from.x, curve->first.x, curve->second.x, curve->to.x),
                                  at(from.y, curve->first.y, curve->second.y, curve->to.y)});
            }
        }
    }
    return places;
}

// A picture has ink on its grid and nowhere else. Lines have round joins, so they reach no further than half
// their width.
void expectInkWithinTheGrid(const Picture& picture, const std::string& name) {
    double left = picture.grid.width;
    double right = 0;
    double top = picture.grid.height;
    double bottom = 0;
    for (const PictureLayer& layer : picture.layers) {
        EXPECT_FALSE(layer.fill.isClear()) << name;
        const double reach = layer.stroke ? layer.stroke->width / 2 : 0;
        EXPECT_TRUE(!layer.stroke || layer.stroke->join == LineJoin::round) << name;
        for (const Point place : walked(layer.path)) {
            left = std::min(left, place.x - reach);
            right = std::max(right, place.x + reach);
            top = std::min(top, place.y - reach);
            bottom = std::max(bottom, place.y + reach);
        }
    }
    EXPECT_GE(left, 0) << name;
    EXPECT_GE(top, 0) << name;
    EXPECT_LE(right, picture.grid.width) << name;
    EXPECT_LE(bottom, picture.grid.height) << name;
    EXPECT_GT(right - left, picture.grid.width / 2) << name << " fills less than half of its grid";
    // In the middle, within a fortieth of the grid: half a unit of a symbol.
    EXPECT_NEAR((left + right) / 2, picture.grid.width / 2, picture.grid.width / 40) << name;
    EXPECT_NEAR((top + bottom) / 2, picture.grid.height / 2, picture.grid.height / 40) << name;
}

TEST(Picture, IsFoundByItsNameAndAsItWasDrawn) {
    struct Case {
        const char* folder;
        PictureKind kind;
        std::optional<Picture> (*find)(std::string_view);
        std::optional<Picture> (*findOther)(std::string_view);
    };
    for (const Case& c : {Case{"symbols", PictureKind::symbol, symbolNamed, imageNamed},
                          Case{"images", PictureKind::image, imageNamed, symbolNamed}}) {
        const std::vector<File> files = filesIn(c.folder);
        ASSERT_FALSE(files.empty()) << c.folder;
        for (const File& file : files) {
            const std::optional<Picture> found = c.find(file.name);
            ASSERT_TRUE(found) << file.name;
            EXPECT_FALSE(c.findOther(file.name)) << file.name;
            const std::vector<double> want = numbersOf(drawingIn(file.contents, c.kind));
            const std::vector<double> got = numbersOf(*found);
            ASSERT_EQ(got.size(), want.size()) << file.name;
            for (std::size_t at = 0; at < want.size(); ++at)
                EXPECT_NEAR(got[at], want[at], 1e-4) << file.name;
            expectInkWithinTheGrid(*found, file.name);
        }
    }
}

TEST(Picture, OfAnUnknownNameIsNone) {
    for (const std::string& name : {std::string(), std::string("pi"), std::string("pin."), std::string("Pin"),
                                    std::string("pin.fill.svg"), std::string("pin\0", 4), std::string("zzz"),
                                    std::string("NorvaneLog"), std::string(100000, 'p')}) {
        EXPECT_FALSE(symbolNamed(name)) << name.substr(0, 20);
        EXPECT_FALSE(imageNamed(name)) << name.substr(0, 20);
    }
}

}  // namespace
}  // namespace norvane
