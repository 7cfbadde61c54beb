#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>

#include "PainterFixture.h"

namespace norvane {
namespace {

class GlowMaskTest : public PainterFixture {
 protected:
    PaintedImage glow(const RoundedRect& shape, double blur, Size size, double scale = 1) {
        return painted(size, DrawShadow{shape, std::nullopt, blur, {}, kRed}, scale);
    }
};

// Of a rectangle the true blur is known: along each axis it is the difference of two shares of a normal
// distribution's weight.
TEST_F(GlowMaskTest, ComesNearToATrueGaussian) {
    for (const auto& [width, height, radius, scale] : {std::tuple{40.0, 10.0, 4.5, 1.0},
                                                       {8.0, 30.0, 12.0, 1.0},
                                                       {40.0, 12.0, 5.0, 2.0},
                                                       {700.0, 8.0, 6.0, 1.0}}) {
        const PaintedImage image =
            glow({{{40, 40}, {width, height}}, 0}, radius, {width + 80, height + 80}, scale);
        const auto share = [&, unit = scale, root = radius * scale / std::sqrt(2.0)](int at, double length) {
            const double from = at + 0.5 - 40 * unit;
            return (std::erf(from / root) - std::erf((from - length * unit) / root)) / 2;
        };
        double worst = 0;
        image.forEach([&, w = width, h = height](int x, int y) {
            worst = std::max(worst, std::abs(image.alphaAt(x, y) - 255 * share(x, w) * share(y, h)));
        });
        EXPECT_LE(worst, 12) << width << 'x' << height << ", radius " << radius;
    }
}

TEST_F(GlowMaskTest, LongOnesArePutTogetherWithoutSeamsAndBetweenTwoWholeRadiiItIsBetweenTheirGlows) {
    const auto bar = [&](double blur) { return glow({{{20, 20}, {600, 10}}, 5}, blur, {640, 50}); };
    const PaintedImage low = bar(3);
    const PaintedImage between = bar(3.25);
    const PaintedImage high = bar(4);
    between.forEach([&](int x, int y) {
        const int alpha = between.alphaAt(x, y);
        ASSERT_NEAR(alpha, between.alphaAt(639 - x, 49 - y), 1) << x << ", " << y;
        ASSERT_NEAR(alpha, 0.75 * low.alphaAt(x, y) + 0.25 * high.alphaAt(x, y), 1.5);
        ASSERT_EQ(alpha, between.alphaAt(x < 60 || x >= 580 ? x : 60, y)) << x << ", " << y;
    });
}

TEST_F(GlowMaskTest, InAnyPlaceAndColorAndLengthItIsTheSameMaskAndWhatIsKeptIsBounded) {
    const GlowMasks& masks = painter_.caches().glows;
    // Breathing needs one for each whole point.
    for (int i = 0; i < 400; ++i) {
        const RoundedRect bar{{{20 + 0.37 * (i % 9), 20}, {260.0 + i % 60, 10}}, 5};
        painted({400, 50}, DrawShadow{bar, std::nullopt, 2 + 0.01 * i, {}, kRed.withOpacity(0.002 * i)});
        const auto path = std::make_shared<Path>(Path{{Path::MoveTo{{0, 0}}, Path::LineTo{{40, 9}}}});
        painted({100, 30}, DrawShadow{PlacedPath{path, {0.3 * i, 7}, 1, 1}, StrokeStyle{2}, 3, {}, kRed});
    }
    EXPECT_LE(masks.count(), 3u + 5u + 1u);
    const auto arcs = [&](int count, int radii, double step, int blurs) {
        painter_.caches().clear();
        EXPECT_EQ(masks.bytes(), 0u);
        for (int i = 0; i < count; ++i) {
            const Arc arc{{90, 90}, 50.0 + i % radii, step * i, step * i + 0.55};
            painted({180, 180}, DrawShadow{arc, StrokeStyle{5}, 1.0 + i % blurs, {}, kRed}, 2);
        }
    };
    arcs(500, 1, 0.05, 1);
    EXPECT_LE(masks.count(), 22u) << "a turning arc comes to the places where it was";
    arcs(400, 7, 0.01, 9);
    EXPECT_LE(masks.count(), GlowMasks::kMostMasks);
    EXPECT_LE(masks.bytes(), GlowMasks::kMostBytes);
    EXPECT_GT(masks.count(), 10u);
}

TEST_F(GlowMaskTest, OutsideOnlyItLeavesTheShapeItselfAlone) {
    const Arc arc{{50, 40}, 20, 0, 0.75};
    const StrokeStyle line{6};
    const PaintedImage image = painted({100, 80}, DrawShadow{arc, line, 10, {0, 4}, kRed, true}, 1.5);
    const PaintedImage inside = painted({100, 80}, StrokeShape{arc, line, kRed}, 1.5);
    int most = 0;
    image.forEach([&](int x, int y) {
        ASSERT_LE(image.alphaAt(x, y), 255 - inside.alphaAt(x, y) + 1);
        most = std::max(most, image.alphaAt(x, y));
    });
    EXPECT_GT(most, 60);
}

}  // namespace
}  // namespace norvane
