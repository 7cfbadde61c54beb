#include <gtest/gtest.h>
#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <numbers>
#include <utility>

#include "PaintedImage.h"
#include "platform/linux/PangoTextRuler.h"

namespace norvane {
namespace {

constexpr Color kRed{1, 0, 0, 1};

class PainterTest : public ::testing::Test {
 protected:
    using Pixels = std::vector<std::uint32_t>;

    Pixels paint(const DisplayList& list, double scale = 1) {
        return PaintedImage(painter_, list, scale).pixels();
    }
    DisplayItem text(const std::string& words, Point at, double scaleX = 1, double scaleY = 1) {
        const Size size = ruler_.measure(words, {}, TextRuler::kUnlimitedWidth).size;
        const Rect frame{at, size};
        return {words, frame.outset(2), DrawText{words, {}, frame, kRed, scaleX, scaleY}};
    }
    // The columns from the first to the last that something was painted in.
    static std::pair<int, int> extent(const Pixels& pixels, int width) {
        int first = width;
        int last = -1;
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            if (pixels[i] == 0) continue;
            first = std::min(first, static_cast<int>(i) % width);
            last = std::max(last, static_cast<int>(i) % width);
        }
        return {first, last};
    }

    TextLayouts layouts_;
    PangoTextRuler ruler_{layouts_};
    CairoPainter painter_{layouts_};
};

TEST_F(PainterTest, ShapesCoverTheirPixels) {
    const Rect rect{{2, 2}, {4, 3}};
    const Pixels plain = paint({{10, 8}, {{"a", rect, FillShape{RoundedRect{rect, 0}, kRed}}}});
    EXPECT_EQ(std::count(plain.begin(), plain.end(), 0xFFFF0000), 12);
    EXPECT_EQ(std::count(plain.begin(), plain.end(), 0u), 80 - 12);
    const Pixels twice = paint({{10, 8}, {{"a", rect, FillShape{RoundedRect{rect, 0}, kRed}}}}, 2);
    EXPECT_EQ(std::count(twice.begin(), twice.end(), 0xFFFF0000), 48);
    const Rect line{{2.5, 2.5}, {4, 3}};
    const Pixels stroked =
        paint({{10, 8}, {{"a", line.outset(0.5), StrokeShape{RoundedRect{line, 0}, StrokeStyle{1}, kRed}}}});
    EXPECT_EQ(std::count(stroked.begin(), stroked.end(), 0xFFFF0000), 2 * 5 + 2 * 2);
    const Rect big{{0, 0}, {20, 20}};
    const Pixels capsule = paint({{20, 20}, {{"a", big, FillShape{RoundedRect{big, 1e9}, kRed}}}});
    EXPECT_EQ(capsule[0], 0u);
    EXPECT_EQ(capsule[10 * 20 + 10], 0xFFFF0000);
    const Pixels half = paint({{4, 4}, {{"a", big, FillShape{RoundedRect{big, 0}, kRed.withOpacity(0.5)}}}});
    EXPECT_EQ(half[0], 0x80800000) << "premultiplied";
}

TEST_F(PainterTest, TextIsSetInItsColorAndScaledAboutItsCorner) {
    const Pixels plain = paint({{120, 20}, {text("mmmmmmmm", {3, 1})}});
    const auto [left, right] = extent(plain, 120);
    EXPECT_GE(left, 2);
    EXPECT_GT(right, 60);
    for (const std::uint32_t pixel : plain)
        ASSERT_EQ(pixel & 0xFFFF, 0u) << "nothing but red, and grey edges";
    EXPECT_TRUE(
        std::any_of(plain.begin(), plain.end(), [](std::uint32_t pixel) { return pixel >> 24 > 200; }));
    const auto [narrowLeft, narrowRight] = extent(paint({{120, 20}, {text("mmmmmmmm", {3, 1}, 0.5)}}), 120);
    EXPECT_NEAR(narrowLeft, left, 1);
    EXPECT_NEAR(narrowRight - 3, (right - 3) / 2, 2);
    const auto lowest = [this](double scaleY) {
        DisplayItem words = text("mmmm", {3, 1}, 1, scaleY);
        words.bounds = {{0, 0}, {120, 60}};
        const Pixels pixels = paint({{120, 60}, {words}});
        const auto last =
            std::find_if(pixels.rbegin(), pixels.rend(), [](auto pixel) { return pixel >> 24 > 99; });
        return static_cast<double>(pixels.rend() - last) / 120 - 1;
    };
    EXPECT_NEAR(lowest(2), 2 * lowest(1), 2) << "the baseline goes down with the letters";
}

TEST_F(PainterTest, TextIsSetWhereItIsToAPartOfAPixel) {
    const auto center = [this](double x) {
        const Pixels pixels = paint({{120, 20}, {text("mmmmmmmm", {x, 1})}});
        double sum = 0;
        double weights = 0;
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            sum += static_cast<double>(i % 120) * (pixels[i] >> 24);
            weights += pixels[i] >> 24;
        }
        return sum / weights;
    };
    EXPECT_NEAR(center(3.5) - center(3), 0.5, 0.02);
    EXPECT_NEAR(center(4) - center(3), 1, 1e-6);
    EXPECT_NEAR(center(8) - center(3), 5, 1e-6);
}

TEST_F(PainterTest, TextsTooLargeToKeepArePaintedAllTheSame) {
    DisplayItem item = text("Norvane", {0, 0});
    std::get<DrawText>(item.command).style.font.size = 400;
    std::get<DrawText>(item.command).frame.size = {4000, 1000};
    item.bounds = {{0, 0}, {600, 500}};
    const Pixels pixels = paint({{600, 500}, {item}});
    EXPECT_GT(std::count(pixels.begin(), pixels.end(), 0xFFFF0000), 10'000);
}

TEST_F(PainterTest, NothingIsPaintedOutsideOfTheDamageAndOfTheBounds) {
    const Rect everything{{0, 0}, {20, 20}};
    const FillShape red{RoundedRect{everything, 0}, kRed};
    PaintedImage image(painter_, {{20, 20}, {{"a", everything, red}}});
    image.paint({{20, 20}, {}}, {{5, 5, 4, 4}});
    EXPECT_EQ(image.count(0), 16) << "what is damaged is cleared";
    image.paint({{20, 20}, {{"a", {{6, 6}, {2, 2}}, red}}}, {{5, 5, 4, 4}});
    EXPECT_EQ(image.count(0), 12);
}

// Every command with every wrong number in every place of it.
TEST_F(PainterTest, GarbageCostsItselfAndNotTheFrame) {
    const double none = std::numeric_limits<double>::quiet_NaN();
    const double endless = std::numeric_limits<double>::infinity();
    const Rect all{{0, 0}, {20, 20}};
    const Color noColor{none, endless, -5, 7};
    const Rect rects[] = {all,
                          {{none, 0}, {5, 5}},
                          {{0, 0}, {none, 5}},
                          {{0, 0}, {endless, endless}},
                          {{-endless, 0}, {5, 5}},
                          {{1e300, 1e300}, {1, 1}},
                          {{-1e300, -1e300}, {2e300, 2e300}},
                          {{-1e6, -1e6}, {2e6, 2e6}},
                          {{5, 5}, {-3, -3}}};
    DisplayList list{{20, 20}, {}};
    const auto add = [&](DrawCommand command) { list.items.push_back({"", all, std::move(command)}); };
    for (const Rect& rect : rects) {
        for (const double number : {none, endless, -endless, -1.0, 0.0, 1e9, 1e300, 1e-300}) {
            const Point point{number, rect.minY()};
            auto path =
                std::make_shared<Path>(Path{{Path::LineTo{point}, Path::CurveTo{{1, 1}, point, {9, 9}},
                                             Path::Close{}, Path::Close{}, Path::LineTo{{number, 3}}}});
            const Shape shapes[] = {RoundedRect{rect, number},
                                    RoundedRect{rect, number, CornerStyle::continuous},
                                    Arc{rect.origin, number, 0, 1},
                                    Arc{point, 5, -number, number},
                                    Arc{{9, 9}, 5, number, 0.7},
                                    Arc{{9, 9}, 5, 0.2, number},
                                    PlacedPath{path, point, 1, number},
                                    PlacedPath{path, {}, number, 1},
                                    PlacedPath{}};
            for (const Shape& shape : shapes) {
                for (const Fill& fill : {Fill(kRed), Fill(noColor), Fill(kRed, noColor, {}, {9, 9}),
                                         Fill(kRed, {0, 1, 0, 1}, point, {9, rect.minY()})}) {
                    for (const Snapping snapping : {Snapping::none, Snapping::toPixels}) {
                        add(FillShape{shape, fill, snapping});
                        add(StrokeShape{
                            shape, {number, LineCap::round, LineJoin::miter, number, 1}, fill, snapping});
                        add(StrokeShape{
                            shape, {1, LineCap::butt, LineJoin::round, 1e-9, number}, fill, snapping});
                    }
                }
                add(DrawShadow{shape, std::nullopt, 2, point, kRed, true});
                add(DrawShadow{
                    shape, StrokeStyle{.width = number, .dashOn = number, .dashOff = 1}, 3.5, {}, kRed});
            }
            add(DrawShadow{RoundedRect{all, number}, std::nullopt, number, {}, kRed});
            add(DrawShadow{RoundedRect{rect, 2}, std::nullopt, number, {}, noColor});
            add(DrawText{"x\xFF", {}, rect, kRed, number, 1});
            add(DrawText{"x", {.font = {.size = number}}, all, noColor, 1, number});
            add(DrawText{
                "x\n\n", {.font = {}, .lineSpacing = number, .lineLimit = -1}, {point, {number, 1}}, kRed});
            add(DrawSymbol{"leaf.fill", rect, noColor});
            add(DrawSymbol{"leaf.fill", {point, {number, 9}}, kRed});
            add(DrawSymbol{"nothing of ours", all, kRed});
            add(DrawImage{"NorvaneLogo", rect});
            add(DrawImage{"", all});
            const DisplayItem inner{"", rect, FillShape{RoundedRect{all, 0}, kRed}};
            add(DrawPicture{std::make_shared<DisplayList>(DisplayList{rect.size, {inner}}), point});
            add(DrawPicture{std::make_shared<DisplayList>(DisplayList{{number, 5}, {inner}}), {}});
            add(DrawPicture{nullptr, {}});
            add(DrawGroup{number, std::nullopt, {inner}});
            add(DrawGroup{0.5, RoundedRect{rect, number, CornerStyle::continuous}, {inner}});
        }
    }
    DrawGroup nested;
    for (int i = 0; i < 500; ++i)
        nested = DrawGroup{0.99, std::nullopt, {{"", all, nested}}};
    add(nested);
    const Rect last{{4, 4}, {8, 8}};
    list.items.push_back({"last", last, FillShape{RoundedRect{last, 0}, Color{0, 0, 1, 1}}});
    for (const double scale : {1.0, 1.25}) {
        const PaintedImage image(painter_, list, scale);
        EXPECT_EQ(image.at(10, 10), 0xFF0000FF) << scale;
    }
}

TEST_F(PainterTest, HugeShapesCoverWhatIsVisibleOfThem) {
    for (const double far : {1e4, 1e6, 1e9, 1e15}) {
        const Rect huge{{-far, -far}, {2 * far, 2 * far}};
        const Pixels pixels = paint({{20, 20}, {{"a", huge, FillShape{RoundedRect{huge, 3}, kRed}}}}, 2);
        EXPECT_EQ(std::count(pixels.begin(), pixels.end(), 0xFFFF0000), 1600) << far;
    }
}

TEST_F(PainterTest, AListIsPaintedWhereItIsPlaced) {
    const CairoSurface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 30, 30));
    const PixelRect everything{0, 0, 30, 30};
    const Rect rect{{1, 2}, {3, 4}};
    painter_.paint(surface.get(), {.scale = 2, .x = 10, .y = 5},
                   {{8, 8}, {{"a", rect, FillShape{RoundedRect{rect, 0}, kRed}}}}, {&everything, 1});
    const auto isRed = [&](int x, int y) {
        const unsigned char* const row =
            cairo_image_surface_get_data(surface.get()) + y * cairo_image_surface_get_stride(surface.get());
        return row[4 * x + 2] == 255;
    };
    EXPECT_TRUE(isRed(12, 9) && isRed(17, 16));
    EXPECT_FALSE(isRed(11, 9) || isRed(12, 8) || isRed(18, 16) || isRed(17, 17));
}

TEST_F(PainterTest, AGradientRunsFromItsStartToItsEndAndStaysAsItIsBeyond) {
    const Rect bar{{0, 0}, {100, 10}};
    const Color blue{0, 0, 1, 1};
    const auto painted = [&](Point start, Point end, const Color& to) {
        return PaintedImage(
            painter_, {{100, 10}, {{"a", bar, FillShape{RoundedRect{bar, 0}, Fill(kRed, to, start, end)}}}});
    };
    const auto red = [](std::uint32_t pixel) { return static_cast<int>(pixel >> 16 & 0xFF); };
    // Side by side, and a very little aslant: the two ways to paint one.
    for (const double slant : {0.0, 1e-6}) {
        const PaintedImage across = painted({20, 0}, {80, slant}, blue);
        EXPECT_EQ(across.at(5, 5), 0xFFFF0000);
        EXPECT_EQ(across.at(95, 5), 0xFF0000FF);
        EXPECT_NEAR(red(across.at(50, 5)), 126, 2);
        EXPECT_NEAR(red(across.at(35, 9)), 189, 2);
        const PaintedImage fading = painted({0, 0}, {100, slant}, Color::clear());
        EXPECT_NEAR(fading.alphaAt(50, 5), 126, 2);
        EXPECT_NEAR(red(fading.at(50, 5)), 126, 2) << "it does not darken on its way";
    }
    const PaintedImage down = painted({0, 0}, {0, 10}, blue);
    EXPECT_GT(red(down.at(50, 1)), 200);
    EXPECT_LT(red(down.at(50, 8)), 55);
    EXPECT_EQ(painted({5, 5}, {5, 5}, blue).at(2, 2), 0xFF0000FF) << "all of it is beyond the end";
}

TEST_F(PainterTest, ArcsTurnFromTheTopClockwise) {
    const auto painted = [&](double from, double to) {
        const Rect all{{0, 0}, {40, 40}};
        return PaintedImage(
            painter_,
            {{40, 40}, {{"a", all, StrokeShape{Arc{{20, 20}, 15, from, to}, StrokeStyle{4}, kRed}}}});
    };
    struct Case {
        double from, to;
        bool top, right, bottom, left;
    };
    // Asked a little after each quarter.
    for (const Case& c :
         {Case{0, 0.5, true, true, false, false}, Case{0.25, 0.75, false, true, true, false},
          Case{0, 1, true, true, true, true}, Case{0.3, 7, true, true, true, true},
          Case{0.75, 1.25, true, false, false, true}, Case{-0.25, 0.25, true, false, false, true},
          Case{0.5, 0.5, false, false, false, false}, Case{0.5, 0, false, false, false, false}}) {
        const PaintedImage image = painted(c.from, c.to);
        EXPECT_EQ(image.alphaAt(23, 5) > 200, c.top) << c.from << " to " << c.to;
        EXPECT_EQ(image.alphaAt(34, 23) > 200, c.right) << c.from << " to " << c.to;
        EXPECT_EQ(image.alphaAt(16, 34) > 200, c.bottom) << c.from << " to " << c.to;
        EXPECT_EQ(image.alphaAt(5, 16) > 200, c.left) << c.from << " to " << c.to;
        EXPECT_EQ(image.alphaAt(20, 20), 0);
    }
}

TEST_F(PainterTest, ContinuousCornersLeaveTheEdgesEarlierWhereThereIsRoom) {
    const auto coverage = [&](Size size, double radius, CornerStyle corners) {
        const Rect all{{0, 0}, size};
        const PaintedImage image(painter_,
                                 {size, {{"a", all, FillShape{RoundedRect{all, radius, corners}, kRed}}}}, 4);
        double sum = 0;
        for (const std::uint32_t pixel : image.pixels())
            sum += static_cast<double>(pixel >> 24) / 255 / 16;
        return std::pair(sum, image.alphaAt(static_cast<int>(4 * 1.25 * radius), 0));
    };
    const auto [round, roundEdge] = coverage({60, 40}, 10, CornerStyle::circular);
    const auto [gentle, gentleEdge] = coverage({60, 40}, 10, CornerStyle::continuous);
    EXPECT_LT(gentle, round);
    EXPECT_NEAR(gentle, round, 8) << "not by much";
    EXPECT_EQ(roundEdge, 255);
    EXPECT_LT(gentleEdge, 245) << "the corner still bends here";
    // The ends of a capsule are round both ways of its shorter side.
    const auto [capsule, edge] = coverage({20, 20}, 10, CornerStyle::continuous);
    EXPECT_NEAR(capsule, std::numbers::pi * 100, 0.5);
    // From one to the other nothing leaps.
    double last = coverage({60, 20}, 10, CornerStyle::continuous).first;
    for (double height = 20.5; height < 34; height += 0.5) {
        const double now = coverage({60, height}, 10, CornerStyle::continuous).first;
        EXPECT_NEAR(now - last, 0.5 * 60, 0.6) << height;
        last = now;
    }
}

TEST_F(PainterTest, DashesLeaveGapsAndRoundCapsReachFurther) {
    const auto line = std::make_shared<Path>(Path{{Path::MoveTo{{10, 5}}, Path::LineTo{{50, 5}}}});
    const auto painted = [&](const StrokeStyle& style) {
        return PaintedImage(
            painter_,
            {{60, 10}, {{"a", {{0, 0}, {60, 10}}, StrokeShape{PlacedPath{line, {}, 1, 1}, style, kRed}}}});
    };
    EXPECT_EQ(painted({4}).count(0xFFFF0000), 40 * 4);
    EXPECT_EQ(painted({4, LineCap::butt, LineJoin::miter, 6, 4}).count(0xFFFF0000), 4 * 6 * 4);
    EXPECT_EQ(painted({4, LineCap::butt, LineJoin::miter, 6, 0}).count(0xFFFF0000), 40 * 4);
    EXPECT_GT(painted({4, LineCap::round}).alphaAt(9, 5), 200);
    EXPECT_EQ(painted({4}).alphaAt(9, 5), 0);
}

}  // namespace
}  // namespace norvane
