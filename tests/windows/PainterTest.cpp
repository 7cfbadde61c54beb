#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <numbers>

#include "PainterFixture.h"

namespace norvane {
namespace {

class PainterTest : public PainterFixture {
 protected:
    PaintedImage words(const std::string& text, Point at, double scaleX = 1, double scaleY = 1) {
        const Size size = ruler_.measure(text, {}, TextRuler::kUnlimitedWidth).size;
        return painted({120, 60}, DrawText{text, {}, {at, size}, kRed, scaleX, scaleY});
    }
    static int red(std::uint32_t pixel) { return static_cast<int>(pixel >> 16 & 0xFF); }
};

TEST_F(PainterTest, ShapesCoverTheirPixels) {
    const RoundedRect rect{{{2, 2}, {4, 3}}, 0};
    EXPECT_EQ(painted({10, 8}, FillShape{rect, kRed}).count(kRedPixel), 12);
    EXPECT_EQ(painted({10, 8}, FillShape{rect, kRed}).count(0), 80 - 12);
    EXPECT_EQ(painted({10, 8}, FillShape{rect, kRed}, 2).count(kRedPixel), 48);
    const RoundedRect line{{{2.5, 2.5}, {4, 3}}, 0};
    EXPECT_EQ(painted({10, 8}, StrokeShape{line, StrokeStyle{1}, kRed}).count(kRedPixel), 2 * 5 + 2 * 2);
    const PaintedImage capsule = painted({20, 20}, FillShape{RoundedRect{{{0, 0}, {20, 20}}, 1e9}, kRed});
    EXPECT_EQ(capsule.at(0, 0), 0u);
    EXPECT_EQ(capsule.at(10, 10), kRedPixel);
    EXPECT_EQ(painted({10, 8}, FillShape{rect, kRed.withOpacity(0.5)}).at(3, 3), 0x80800000)
        << "premultiplied";
}

TEST_F(PainterTest, TextIsSetWhereItIsToAPartOfAPixelAndScaledAboutItsCorner) {
    // The middle of all ink.
    const auto middle = [this](Point at, double scaleX = 1, double scaleY = 1) {
        const PaintedImage image = words("mmmmmmmm", at, scaleX, scaleY);
        Point sum;
        double weights = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                sum = {sum.x + x * image.alphaAt(x, y), sum.y + y * image.alphaAt(x, y)};
                weights += image.alphaAt(x, y);
            }
        }
        return Point{sum.x / weights, sum.y / weights};
    };
    const Point plain = middle({3, 1});
    EXPECT_GT(plain.x, 30);
    EXPECT_NEAR(middle({3.5, 1}).x - plain.x, 0.5, 0.02);
    EXPECT_NEAR(middle({8, 1}).x - plain.x, 5, 1e-6);
    EXPECT_NEAR(middle({3, 1}, 0.5).x - 3, (plain.x - 3) / 2, 0.5);
    EXPECT_NEAR(middle({3, 1}, 1, 2).y - 1, 2 * (plain.y - 1), 1) << "the baseline goes down with it";
    int darkest = 0;
    for (const std::uint32_t pixel : words("mmmmmmmm", {3, 1}).pixels()) {
        ASSERT_EQ(pixel & 0xFFFF, 0u) << "nothing but red, and grey edges";
        darkest = std::max(darkest, red(pixel));
    }
    EXPECT_GT(darkest, 200);
}

TEST_F(PainterTest, TextsTooLargeToKeepArePaintedAllTheSame) {
    const DrawText huge{"Norvane", {.font = {.size = 400}}, {{0, 0}, {4000, 1000}}, kRed};
    EXPECT_GT(painted({600, 500}, huge).count(kRedPixel), 10'000);
}

TEST_F(PainterTest, NothingIsPaintedOutsideOfTheDamageAndOfTheBounds) {
    const Rect everything{{0, 0}, {20, 20}};
    const FillShape fill{RoundedRect{everything, 0}, kRed};
    PaintedImage image = painted({20, 20}, fill);
    image.paint({{20, 20}, {}}, {{5, 5, 4, 4}});
    EXPECT_EQ(image.count(0), 16) << "what is damaged is cleared";
    image.paint({{20, 20}, {{"a", {{6, 6}, {2, 2}}, fill}}}, {{5, 5, 4, 4}});
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
                          {{-endless, 0}, {endless, endless}},
                          {{1e300, 1e300}, {1, 1}},
                          {{-1e300, -1e300}, {2e300, 2e300}},
                          {{-1e6, -1e6}, {2e6, 2e6}},
                          {{5, 5}, {-3, -3}}};
    DisplayList list{{20, 20}, {}};
    const auto add = [&](DrawCommand command) { list.items.push_back({"", all, std::move(command)}); };
    for (const Rect& rect : rects) {
        for (const double number : {none, endless, -endless, -1.0, 0.0, 1e9, 1e300, 1e-300}) {
            const Point point{number, rect.minY()};
            const auto path =
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
    add(FillShape{RoundedRect{{{4, 4}, {8, 8}}, 0}, kBlue});
    for (const double scale : {1.0, 1.25})
        EXPECT_EQ(painted(list.size, list.items, scale).at(10, 10), kBluePixel) << scale;
}

TEST_F(PainterTest, HugeShapesCoverWhatIsVisibleOfThem) {
    for (const double far : {1e4, 1e6, 1e9, 1e15}) {
        const Rect huge{{-far, -far}, {2 * far, 2 * far}};
        const FillShape fill{RoundedRect{huge, 3}, kRed};
        EXPECT_EQ(painted({20, 20}, {{"a", huge, fill}}, 2).count(kRedPixel), 1600) << far;
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
    const auto bar = [&](Point start, Point end, const Color& to) {
        return painted({100, 10}, FillShape{RoundedRect{{{0, 0}, {100, 10}}, 0}, Fill(kRed, to, start, end)});
    };
    // Side by side, and a very little aslant: the two ways to paint one.
    for (const double slant : {0.0, 1e-6}) {
        const PaintedImage across = bar({20, 0}, {80, slant}, kBlue);
        EXPECT_EQ(across.at(5, 5), kRedPixel);
        EXPECT_EQ(across.at(95, 5), kBluePixel);
        EXPECT_NEAR(red(across.at(35, 9)), 189, 2);
        const PaintedImage fading = bar({0, 0}, {100, slant}, Color::clear());
        EXPECT_NEAR(fading.alphaAt(50, 5), 126, 2);
        EXPECT_NEAR(red(fading.at(50, 5)), 126, 2) << "it does not darken on its way";
    }
    const PaintedImage down = bar({0, 0}, {0, 10}, kBlue);
    EXPECT_GT(red(down.at(50, 1)), 200);
    EXPECT_LT(red(down.at(50, 8)), 55);
    EXPECT_EQ(bar({5, 5}, {5, 5}, kBlue).at(2, 2), kBluePixel) << "all of it is beyond the end";
}

TEST_F(PainterTest, ArcsTurnFromTheTopClockwise) {
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
        SCOPED_TRACE(testing::Message() << c.from << " to " << c.to);
        const PaintedImage image =
            painted({40, 40}, StrokeShape{Arc{{20, 20}, 15, c.from, c.to}, StrokeStyle{4}, kRed});
        EXPECT_EQ(image.alphaAt(23, 5) > 200, c.top);
        EXPECT_EQ(image.alphaAt(34, 23) > 200, c.right);
        EXPECT_EQ(image.alphaAt(16, 34) > 200, c.bottom);
        EXPECT_EQ(image.alphaAt(5, 16) > 200, c.left);
        EXPECT_EQ(image.alphaAt(20, 20), 0);
    }
}

TEST_F(PainterTest, ContinuousCornersLeaveTheEdgesEarlierWhereThereIsRoom) {
    const auto coverage = [&](Size size, double radius, CornerStyle corners) {
        const PaintedImage image =
            painted(size, FillShape{RoundedRect{{{0, 0}, size}, radius, corners}, kRed}, 4);
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
    EXPECT_NEAR(coverage({20, 20}, 10, CornerStyle::continuous).first, std::numbers::pi * 100, 0.5);
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
    const auto lined = [&](const StrokeStyle& style) {
        return painted({60, 10}, StrokeShape{PlacedPath{line, {}, 1, 1}, style, kRed});
    };
    EXPECT_EQ(lined({4}).count(kRedPixel), 40 * 4);
    EXPECT_EQ(lined({4, LineCap::butt, LineJoin::miter, 6, 4}).count(kRedPixel), 4 * 6 * 4);
    EXPECT_EQ(lined({4, LineCap::butt, LineJoin::miter, 6, 0}).count(kRedPixel), 40 * 4);
    EXPECT_GT(lined({4, LineCap::round}).alphaAt(9, 5), 200);
    EXPECT_EQ(lined({4}).alphaAt(9, 5), 0);
}

}  // namespace
}  // namespace norvane
