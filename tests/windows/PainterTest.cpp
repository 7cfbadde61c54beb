#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <string>

#include "PainterFixture.h"

namespace norvane {
namespace {

constexpr Rect kAll{{0, 0}, {40, 40}};

class PainterTest : public PainterFixture {
 protected:
    // On points 40 by 40.
    PaintedImage paintedOn40(DrawCommand command, double scale = 1) {
        return painted(kAll.size, std::move(command), scale);
    }
    static DisplayItem square(const Rect& rect, const Color& color) {
        return {"", rect, filled(rect, color)};
    }
};

TEST_F(PainterTest, ShapesCoverTheirPixels) {
    EXPECT_EQ(paintedOn40(filled({{2, 2}, {4, 3}}, kRed), 2).count(kRedPixel), 48);
    EXPECT_EQ(paintedOn40(filled(kAll, kRed.withOpacity(0.5))).count(0x80800000), 1600) << "premultiplied";
    const RoundedRect line{{{2.5, 2.5}, {4, 3}}, 0};
    EXPECT_EQ(paintedOn40(StrokeShape{line, StrokeStyle{1}, kRed}).count(kRedPixel), 2 * 5 + 2 * 2);
    for (const double far : {1e4, 1e9, 1e15}) {
        const Rect huge{{-far, -far}, {2 * far, 2 * far}};
        EXPECT_EQ(paintedOn40(FillShape{RoundedRect{huge, 3}, kRed}, 2).count(kRedPixel), 6400) << far;
    }
    const auto path = std::make_shared<Path>(Path{{Path::MoveTo{{5, 5}}, Path::LineTo{{37, 5}}}});
    const struct {
        StrokeStyle style;
        int red, before;
    } lines[] = {{{4}, 32 * 4, 0},
                 {{4, LineCap::round}, 32 * 4, 255},
                 {{4, LineCap::butt, LineJoin::miter, 6, 4}, (6 + 6 + 6 + 2) * 4, 0},
                 {{4, LineCap::butt, LineJoin::miter, 6, 0}, 32 * 4, 0}};
    for (const auto& [style, red, before] : lines) {
        const PaintedImage image = paintedOn40(StrokeShape{PlacedPath{path, {}, 1, 1}, style, kRed});
        EXPECT_NEAR(image.count(kRedPixel), red, before > 0 ? 8 : 0);
        EXPECT_NEAR(image.alphaAt(4, 5), before, 55);
    }
}

TEST_F(PainterTest, TextIsSetWhereItIsToAPartOfAPixelAndScaledAboutItsCorner) {
    const Size size = ruler_.measure("mmmmmmmm", {}, TextRuler::kUnlimitedWidth).size;
    // The middle of all ink.
    const auto middle = [&](Point at, double scaleX = 1, double scaleY = 1) {
        const PaintedImage image =
            painted({120, 60}, DrawText{"mmmmmmmm", {}, {at, size}, kRed, scaleX, scaleY});
        Point sum;
        double weights = 0;
        image.forEach([&](int x, int y) {
            EXPECT_EQ(image.at(x, y) & 0xFFFF, 0u) << "nothing but red, and grey edges";
            sum = {sum.x + x * image.alphaAt(x, y), sum.y + y * image.alphaAt(x, y)};
            weights += image.alphaAt(x, y);
        });
        return Point{sum.x / weights, sum.y / weights};
    };
    const Point plain = middle({3, 1});
    EXPECT_GT(plain.x, 30);
    EXPECT_NEAR(middle({3.5, 1}).x - plain.x, 0.5, 0.02);
    EXPECT_NEAR(middle({8, 1}).x - plain.x, 5, 1e-6);
    EXPECT_NEAR(middle({3, 1}, 0.5).x - 3, (plain.x - 3) / 2, 0.5);
    EXPECT_NEAR(middle({3, 1}, 1, 2).y - 1, 2 * (plain.y - 1), 1) << "the baseline goes down with it";
    const DrawText huge{"Norvane", {.font = {.size = 400}}, {{0, 0}, {4000, 1000}}, kRed};
    EXPECT_GT(painted({600, 500}, huge).count(kRedPixel), 10'000) << "too large to be kept";
}

// The rest of a painter's nonsense comes by way of the fuzzed views.
TEST_F(PainterTest, ANumberThatIsNoneCostsItselfAndNotTheFrame) {
    const double none = std::numeric_limits<double>::quiet_NaN();
    for (const double number : {none, std::numeric_limits<double>::infinity(), -1.0, 1e300, 1e-300}) {
        std::vector<DisplayItem> items;
        const Point point{number, 3};
        const auto path = std::make_shared<Path>(
            Path{{Path::LineTo{point}, Path::CurveTo{{1, 1}, point, {9, 9}}, Path::Close{}}});
        const StrokeStyle line{number, LineCap::round, LineJoin::miter, number, 1};
        const Fill fill({none, number, -5, 7}, kRed, point, {9, 9});
        for (const Shape& shape : std::initializer_list<Shape>{
                 RoundedRect{{point, {number, 5}}, number}, Arc{point, number, -number, number}, PlacedPath{},
                 PlacedPath{path, point, 1, number}, RoundedRect{kAll, number, CornerStyle::continuous},
                 PlacedPath{path, {}, number, 1}, RoundedRect{{{-number, 0}, {number, number}}, 3}}) {
            for (const Snapping snapping : {Snapping::none, Snapping::toPixels}) {
                items.push_back({"", kAll, FillShape{shape, fill, snapping}});
                items.push_back({"", kAll, StrokeShape{shape, line, fill, snapping}});
            }
            items.push_back({"", kAll, DrawShadow{shape, line, number, point, kRed, true}});
        }
        items.push_back(
            {"", kAll, DrawText{"x\xFF", {.font = {.size = number}}, {point, {9, number}}, kRed, number, 1}});
        items.push_back({"", kAll, DrawSymbol{"leaf.fill", {point, {number, 9}}, kRed}});
        items.push_back(
            {"", kAll, DrawPicture{std::make_shared<DisplayList>(DisplayList{{number, 5}, items}), point}});
        items.push_back({"", kAll, DrawGroup{number, RoundedRect{{point, {9, 9}}, number}, items}});
        items.push_back(square({{4, 4}, {8, 8}}, kBlue));
        EXPECT_EQ(painted(kAll.size, items, 1.25).at(10, 10), kBluePixel) << number;
    }
}

TEST_F(PainterTest, AGradientRunsFromItsStartToItsEndAndStaysAsItIsBeyond) {
    const auto bar = [&](Point start, Point end, const Color& to) {
        return painted({100, 10}, filled({{0, 0}, {100, 10}}, Fill(kRed, to, start, end)));
    };
    // Side by side, and a very little aslant: the two ways to paint one.
    for (const double slant : {0.0, 1e-6}) {
        const PaintedImage across = bar({20, 0}, {80, slant}, kBlue);
        EXPECT_EQ(across.at(5, 5), kRedPixel);
        EXPECT_EQ(across.at(95, 5), kBluePixel);
        EXPECT_NEAR(across.redAt(35, 9), 189, 2);
        const PaintedImage fading = bar({0, 0}, {100, slant}, Color::clear());
        EXPECT_NEAR(fading.alphaAt(50, 5), 126, 2);
        EXPECT_NEAR(fading.redAt(50, 5), 126, 2) << "it does not darken on its way";
    }
    EXPECT_NEAR(bar({0, 0}, {0, 10}, kBlue).redAt(50, 5), 115, 15);
    EXPECT_EQ(bar({5, 5}, {5, 5}, kBlue).at(2, 2), kBluePixel) << "all of it is beyond the end";
}

TEST_F(PainterTest, ArcsTurnFromTheTopClockwise) {
    const struct {
        double from, to;
        const char* inked;  // of top, right, bottom and left, a little after each
    } cases[] = {{0, 0.5, "TR"}, {0.3, 7, "TRBL"}, {0.75, 1.25, "TL"}, {-0.25, 0.25, "TL"}, {0.5, 0, ""}};
    for (const auto& c : cases) {
        const PaintedImage image =
            paintedOn40(StrokeShape{Arc{{20, 20}, 15, c.from, c.to}, StrokeStyle{4}, kRed});
        std::string inked;
        for (const auto& [side, x, y] :
             {std::tuple{'T', 23, 5}, {'R', 34, 23}, {'B', 16, 34}, {'L', 5, 16}}) {
            if (image.alphaAt(x, y) > 200) inked += side;
        }
        EXPECT_EQ(inked, c.inked) << c.from << " to " << c.to;
    }
}

TEST_F(PainterTest, FromTheRoundEndsOfACapsuleToGentleCornersNothingLeaps) {
    const auto coverage = [&](Size size, CornerStyle corners) {
        const PaintedImage image = painted(size, FillShape{RoundedRect{{{}, size}, 10, corners}, kRed}, 4);
        double sum = 0;
        image.forEach([&](int x, int y) { sum += image.alphaAt(x, y) / 255.0 / 16; });
        return sum;
    };
    double last = coverage({60, 20}, CornerStyle::continuous);
    for (double height = 20.5; height < 34; height += 0.5) {
        const double now = coverage({60, height}, CornerStyle::continuous);
        EXPECT_NEAR(now - last, 30, 0.6) << height;
        last = now;
    }
    EXPECT_NEAR(coverage({60, 40}, CornerStyle::circular) - coverage({60, 40}, CornerStyle::continuous), 4,
                3.5);
}

TEST_F(PainterTest, AGroupFadesAsAWholeAndIsCutAlongTheCurveOfItsClip) {
    const std::vector<DisplayItem> items{square({{0, 0}, {30, 40}}, kRed),
                                         square({{10, 0}, {30, 40}}, kBlue)};
    const DrawGroup half{0.5, std::nullopt, items};
    EXPECT_EQ(paintedOn40(half).at(20, 20), 0x80000080) << "nothing of the red one shines through";
    EXPECT_EQ(paintedOn40(half).at(5, 20), 0x80800000);
    EXPECT_NEAR(paintedOn40(DrawGroup{0.5, std::nullopt, {{"h", kAll, half}}}).alphaAt(20, 20), 64, 1);
    EXPECT_EQ(paintedOn40(DrawGroup{7, std::nullopt, items}).at(20, 20), kBluePixel);
    for (const CornerStyle corners : {CornerStyle::circular, CornerStyle::continuous}) {
        for (const double scale : {1.0, 1.25, 2.0}) {
            const RoundedRect clip{{{5.3, 6.1}, {28, 25}}, 8, corners};
            const DrawGroup group{1, clip, {square(kAll, kRed)}};
            PaintedImage cut = paintedOn40(group, scale);
            const PaintedImage shape = paintedOn40(FillShape{clip, kRed}, scale);
            EXPECT_LE(PaintedImage::between(cut, shape).largest, 1);
            // The middle by itself needs no cutting.
            cut.paint({kAll.size, {{"", kAll, group}}}, {{0, pixelsAt(18, scale), cut.width(), 3}});
            EXPECT_LE(PaintedImage::between(cut, shape).largest, 2);
        }
    }
}

TEST_F(PainterTest, APictureIsPaintedOnceForAsLongAsSomebodyHoldsIt) {
    const PictureCache& pictures = painter_.caches().pictures;
    auto list = std::make_shared<DisplayList>(
        DisplayList{{10, 8}, {square({{2, 2}, {30, 4}}, kRed), square({{4, 3}, {2, 2}}, kBlue)}});
    EXPECT_EQ(paintedOn40(DrawPicture{list, {5, 7}}).count(kRedPixel), 8 * 4 - 4) << "cut at its size";
    EXPECT_NEAR(paintedOn40(DrawPicture{list, {5.5, 7}}).alphaAt(7, 9), 128, 1);
    paintedOn40(DrawPicture{list, {5, 7}}, 2);
    EXPECT_EQ(pictures.bytes(), 4u * (10 * 8 + 20 * 16));
    list->items.clear();
    EXPECT_EQ(paintedOn40(DrawPicture{list, {5, 7}}).at(9, 10), kBluePixel) << "it is not asked again";
    list.reset();
    painted({}, std::vector<DisplayItem>());
    EXPECT_EQ(pictures.count(), 0u);
    std::vector<std::shared_ptr<const DisplayList>> many;
    for (int i = 0; i < 60; ++i) {
        many.push_back(std::make_shared<DisplayList>(DisplayList{{1000, 1000}, {square(kAll, kRed)}}));
        paintedOn40(DrawPicture{many.back(), {}});
    }
    EXPECT_TRUE(pictures.count() <= PictureCache::kMostPictures &&
                pictures.bytes() <= PictureCache::kMostBytes);
    const auto huge = std::make_shared<DisplayList>(DisplayList{{9000, 9000}, {square(kAll, kRed)}});
    EXPECT_EQ(paintedOn40(DrawPicture{huge, {30, 30}}).count(kRedPixel), 100);
}

TEST_F(PainterTest, SymbolsTakeTheColorAndImagesHaveTheirOwn) {
    const NamedPictures& named = painter_.caches().named;
    const Rect frame{{4, 4}, {32, 32}};
    const PaintedImage symbol = paintedOn40(DrawSymbol{"leaf.fill", frame, kBlue});
    EXPECT_GT(symbol.count(kBluePixel), 50);
    symbol.forEach([&](int x, int y) { ASSERT_EQ(symbol.at(x, y) >> 8 & 0xFFFF, 0u) << "nothing but blue"; });
    EXPECT_LT(paintedOn40(DrawImage{"NorvaneLogo", frame}).count(0), 1500);
    paintedOn40(DrawSymbol{"leaf.fill", {{1.4, 7.7}, {32, 32}}, kRed});
    EXPECT_EQ(named.count(), 2u) << "elsewhere, and in another colour";
    for (int i = 1; i < 400; ++i)
        paintedOn40(DrawImage{"NorvaneLogo", {{0, 0}, {i / 2.0, i / 2.0}}}, 2);
    EXPECT_TRUE(named.count() <= NamedPictures::kMostPictures && named.bytes() <= NamedPictures::kMostBytes);
}

TEST_F(PainterTest, SnappedEdgesAreOnWholePixelsAtEveryScaleAndPlace) {
    const auto path = std::make_shared<Path>(Path{{Path::MoveTo{{0, 0}}, Path::LineTo{{20, 0}}}});
    for (const double scale : {1.0, 1.25, 1.5, 1.75, 2.0, 3.0}) {
        // Without a pixel that is neither empty nor full.
        const auto redIn = [&](DrawCommand command) {
            const PaintedImage image = paintedOn40(std::move(command), scale);
            EXPECT_EQ(image.count(0) + image.count(kRedPixel), image.width() * image.height());
            return image.count(kRedPixel);
        };
        for (double at = 3; at < 5; at += 0.13) {
            for (const double thickness : {0.01, 0.5, 1.0, 1.6}) {
                SCOPED_TRACE(testing::Message() << scale << ' ' << at << ' ' << thickness);
                const RoundedRect line{{{at, 2 * at}, {20, thickness}}, 0};
                const int filled = redIn(FillShape{line, kRed, Snapping::toPixels});
                EXPECT_GE(filled, 19 * scale) << "something remains";
                EXPECT_NEAR(filled / (20 * scale), std::max(1.0, thickness * scale), 1);
                const double width = std::max(1.0, std::floor(thickness * scale + 0.5));
                const RoundedRect box{{{at, at + 1}, {20, 15}}, 0};
                EXPECT_NEAR(redIn(StrokeShape{box, StrokeStyle{thickness}, kRed, Snapping::toPixels}),
                            2 * width * 35 * scale, width * 6);
                const PlacedPath ruled{path, {3, at}, 1, 1};
                const StrokeShape rule{ruled, StrokeStyle{thickness}, kRed, Snapping::toPixels};
                EXPECT_NEAR(paintedOn40(rule, scale).count(kRedPixel), width * 20 * scale, width);
            }
        }
    }
}

TEST_F(PainterTest, SnappedCirclesAreAsHighAsWideAndTheSameInEveryPlace) {
    for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
        for (const double radius : {0.1, 2.2, 3.0, 4.7}) {
            PixelRect first;
            for (const double at : {10.0, 10.2, 10.55, 10.9}) {
                const Arc circle{{at, at}, radius, 0, 1};
                const PaintedImage image = paintedOn40(FillShape{circle, kRed, Snapping::toPixels}, scale);
                PixelRect ink;
                image.forEach([&](int x, int y) {
                    if (image.alphaAt(x, y) > 9)
                        ink = ink.isEmpty() ? PixelRect{x, y, 1, 1} : ink.united({x, y, 1, 1});
                });
                if (first.isEmpty()) first = ink;
                EXPECT_EQ(ink, (PixelRect{ink.x, ink.x, first.width, first.width}))
                    << scale << ' ' << radius << ' ' << at;
                const int middle = ink.x + ink.width / 2;
                EXPECT_NEAR(image.alphaAt(ink.x, middle), image.alphaAt(ink.x + ink.width - 1, middle), 20);
            }
        }
    }
}

}  // namespace
}  // namespace norvane
