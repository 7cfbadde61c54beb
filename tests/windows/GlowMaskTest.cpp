#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>

#include "PainterFixture.h"

namespace norvane {
namespace {

class GlowMaskTest : public PainterFixture {
 protected:
    PaintedImage glow(const Rect& rect, double radius, double blur, Size size, double scale = 1) {
        return painted(size, DrawShadow{RoundedRect{rect, radius}, std::nullopt, blur, {}, kRed}, scale);
    }
};

// The share of a normal distribution's weight that is below `at`.
double below(double at, double deviation) {
    return std::erfc(-at / (deviation * std::sqrt(2.0))) / 2;
}

// Of a rectangle the true blur is known: along each axis it is the difference
// of two such shares.
TEST_F(GlowMaskTest, ComesNearToATrueGaussian) {
    struct Case {
        Rect rect;
        double radius;
        double scale;
    };
    for (const Case& c : {Case{{{30, 30}, {40, 10}}, 4.5, 1}, Case{{{30, 30}, {40, 10}}, 2, 1},
                          Case{{{40, 40}, {8, 30}}, 12, 1}, Case{{{30, 30}, {40, 12}}, 5, 2},
                          Case{{{30, 30}, {700, 8}}, 6, 1}, Case{{{60, 60}, {500, 400}}, 6.5, 1}}) {
        const Size size{c.rect.maxX() + 60, c.rect.maxY() + 60};
        const PaintedImage image = glow(c.rect, 0, c.radius, size, c.scale);
        const double deviation = c.radius * c.scale / 2;
        double worst = 0;
        for (int y = 0; y < image.height(); ++y) {
            const double down = below(y + 0.5 - c.rect.minY() * c.scale, deviation) -
                                below(y + 0.5 - c.rect.maxY() * c.scale, deviation);
            for (int x = 0; x < image.width(); ++x) {
                const double across = below(x + 0.5 - c.rect.minX() * c.scale, deviation) -
                                      below(x + 0.5 - c.rect.maxX() * c.scale, deviation);
                worst = std::max(worst, std::abs(image.alphaAt(x, y) - 255 * across * down));
            }
        }
        EXPECT_LE(worst, 12) << c.rect.size.width << 'x' << c.rect.size.height << ", radius " << c.radius;
    }
}

TEST_F(GlowMaskTest, IsAlikeOnAllSidesAndReachesOneAndAHalfRadii) {
    for (const double radius : {2.0, 3.5, 8.0}) {
        const PaintedImage image =
            painted({100, 100}, DrawShadow{Arc{{50, 50}, 20, 0, 1}, StrokeStyle{4}, radius, {}, kRed});
        int first = 100;
        for (int y = 0; y < 100; ++y) {
            for (int x = 0; x < 100; ++x) {
                ASSERT_NEAR(image.alphaAt(x, y), image.alphaAt(99 - x, y), 3);
                ASSERT_NEAR(image.alphaAt(x, y), image.alphaAt(y, x), 3);
                if (image.alphaAt(x, y) > 0) first = std::min(first, x);
            }
        }
        EXPECT_NEAR(50 - 22 - first, 1.5 * radius, 2);
    }
    // So does what is put together from the mask of a shorter one.
    const PaintedImage bar = glow({{20, 20}, {600, 10}}, 5, 6, {640, 50});
    for (int y = 0; y < 50; ++y) {
        for (int x = 0; x < 320; ++x)
            ASSERT_NEAR(bar.alphaAt(x, y), bar.alphaAt(639 - x, 49 - y), 1) << x << ", " << y;
        for (int x = 60; x < 580; ++x)
            ASSERT_EQ(bar.alphaAt(x, y), bar.alphaAt(60, y)) << "no seams";
    }
}

TEST_F(GlowMaskTest, InAnyPlaceAndColorAndLengthItIsTheSameMask) {
    GlowMasks& masks = painter_.caches().glows;
    for (int i = 0; i < 40; ++i) {
        const RoundedRect bar{{{20 + 0.37 * i, 20}, {260, 10}}, 5};
        painted({400, 50}, DrawShadow{bar, std::nullopt, 4, {}, kRed.withOpacity(0.02 * i)});
    }
    EXPECT_EQ(masks.count(), 1u);
    for (int length = 300; length < 520; ++length)
        glow({{20, 20}, {static_cast<double>(length), 10}}, 5, 4, {560, 50});
    EXPECT_LE(masks.count(), 3u);
    EXPECT_LT(masks.bytes(), 60'000u);
    // Breathing needs one more for each whole point.
    for (double radius = 2; radius <= 6; radius += 0.01)
        glow({{20, 20}, {260, 10}}, 5, radius, {400, 50});
    EXPECT_LE(masks.count(), 3u + 5u);
    painter_.caches().clear();
    EXPECT_EQ(painter_.caches().count(), 0u);
    EXPECT_EQ(painter_.caches().bytes(), 0u);
    for (int i = 0; i < 5; ++i) {
        const auto path = std::make_shared<Path>(Path{{Path::MoveTo{{0, 0}}, Path::LineTo{{40, 9}}}});
        painted({100, 30}, DrawShadow{PlacedPath{path, {10.3 * i, 7}, 1, 1}, StrokeStyle{2}, 3, {}, kRed});
    }
    EXPECT_EQ(masks.count(), 1u) << "the same segments are the same path";
}

TEST_F(GlowMaskTest, BetweenTwoWholeRadiiItIsBetweenTheirGlows) {
    const Rect rect{{20, 20}, {60, 10}};
    const PaintedImage low = glow(rect, 5, 3, {100, 50});
    const PaintedImage between = glow(rect, 5, 3.25, {100, 50});
    const PaintedImage high = glow(rect, 5, 4, {100, 50});
    for (int y = 0; y < 50; ++y) {
        for (int x = 0; x < 100; ++x)
            ASSERT_NEAR(between.alphaAt(x, y), 0.75 * low.alphaAt(x, y) + 0.25 * high.alphaAt(x, y), 1.5);
    }
}

TEST_F(GlowMaskTest, WhatIsKeptIsBounded) {
    const GlowMasks& masks = painter_.caches().glows;
    for (int i = 0; i < 400; ++i) {
        const Arc arc{{90, 90}, 50.0 + i % 7, 0.01 * i, 0.01 * i + 0.6};
        painted({180, 180}, DrawShadow{arc, StrokeStyle{5}, 1.0 + i % 9, {}, kRed}, 2);
    }
    EXPECT_LE(masks.count(), GlowMasks::kMostMasks);
    EXPECT_LE(masks.bytes(), GlowMasks::kMostBytes);
    EXPECT_GT(masks.count(), 10u);
    painter_.caches().clear();
    for (int i = 0; i < 500; ++i) {
        const Arc arc{{40, 40}, 20, 0.05 * i, 0.05 * i + 0.5};
        painted({80, 80}, DrawShadow{arc, StrokeStyle{5}, 4, {}, kRed});
    }
    EXPECT_LE(masks.count(), 22u) << "a turning arc comes to the places where it was";
}

TEST_F(GlowMaskTest, OutsideOnlyItLeavesTheShapeItselfAlone) {
    const RoundedRect shape{{{20, 20}, {60.5, 30}}, 8};
    for (const double scale : {1.0, 1.5}) {
        const PaintedImage image =
            painted({100, 80}, DrawShadow{shape, std::nullopt, 10, {0, 4}, kRed, true}, scale);
        const PaintedImage inside = painted({100, 80}, FillShape{shape, kRed}, scale);
        int most = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                ASSERT_LE(image.alphaAt(x, y), 255 - inside.alphaAt(x, y) + 1);
                most = std::max(most, image.alphaAt(x, y));
            }
        }
        EXPECT_GT(most, 120);
    }
    const PaintedImage ring =
        painted({100, 80}, DrawShadow{Arc{{50, 40}, 20, 0, 0.75}, StrokeStyle{6}, 4, {}, kRed, true});
    EXPECT_EQ(ring.alphaAt(69, 40), 0) << "where the line is";
    EXPECT_GT(ring.alphaAt(75, 40), 20);
    EXPECT_GT(ring.alphaAt(64, 40), 20);
}

}  // namespace
}  // namespace norvane
