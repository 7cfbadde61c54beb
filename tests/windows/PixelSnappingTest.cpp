#include <algorithm>
#include <cmath>
#include <memory>

#include "PainterFixture.h"

namespace norvane {
namespace {

class PixelSnappingTest : public PainterFixture {
 protected:
    PaintedImage snapped(const Rect& bounds, DrawCommand command, double scale) {
        return painted({40, 30}, {{"", bounds, std::move(command)}}, scale);
    }
    // Pixels that are neither empty nor full.
    static int partly(const PaintedImage& image) {
        return image.width() * image.height() - image.count(0) - image.count(kRedPixel);
    }
};

TEST_F(PixelSnappingTest, EdgesAreOnWholePixelsAtEveryScaleAndPlace) {
    for (const double scale : {1.0, 1.25, 1.5, 1.75, 2.0, 3.0}) {
        for (double at = 3; at < 5; at += 0.13) {
            for (const double thickness : {0.01, 0.5, 1.0, 1.6}) {
                SCOPED_TRACE(testing::Message() << scale << ' ' << at << ' ' << thickness);
                const Rect line{{at, 2 * at}, {20, thickness}};
                const PaintedImage filled =
                    snapped(line, FillShape{RoundedRect{line, 0}, kRed, Snapping::toPixels}, scale);
                EXPECT_EQ(partly(filled), 0);
                EXPECT_GE(filled.count(kRedPixel), 19 * scale) << "something remains";
                EXPECT_NEAR(filled.count(kRedPixel) / (20 * scale), std::max(1.0, thickness * scale), 1);

                const Rect box{{at, at + 1}, {20, 15}};
                const PaintedImage stroked = snapped(
                    box.outset(thickness / 2),
                    StrokeShape{RoundedRect{box, 0}, StrokeStyle{thickness}, kRed, Snapping::toPixels},
                    scale);
                EXPECT_EQ(partly(stroked), 0);
                const double width = std::max(1.0, std::floor(thickness * scale + 0.5));
                EXPECT_NEAR(stroked.count(kRedPixel), 2 * width * 35 * scale, width * 6);
            }
        }
    }
}

TEST_F(PixelSnappingTest, AHairlineIsOnePixelAlongPathsToo) {
    const auto path = std::make_shared<Path>(Path{{Path::MoveTo{{0, 0}}, Path::LineTo{{20, 0}}}});
    for (const double scale : {1.0, 1.25, 2.0}) {
        for (const double y : {5.0, 5.3, 5.5, 5.9}) {
            const PaintedImage image = snapped(
                {{3, y - 0.25}, {20, 0.5}},
                StrokeShape{PlacedPath{path, {3, y}, 1, 1}, StrokeStyle{0.25}, kRed, Snapping::toPixels},
                scale);
            EXPECT_NEAR(image.count(kRedPixel), 20 * scale, 1) << scale << ' ' << y;
        }
    }
}

TEST_F(PixelSnappingTest, CirclesAreTheSameOnAllSidesAndInEveryPlace) {
    for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
        for (const double radius : {0.1, 2.2, 3.0, 4.7}) {
            std::size_t rows = 0;
            for (const double at : {10.0, 10.2, 10.55, 10.9}) {
                SCOPED_TRACE(testing::Message() << scale << ' ' << radius << ' ' << at);
                const Rect bounds{{at - radius, at - radius}, {2 * radius, 2 * radius}};
                const PaintedImage image =
                    snapped(bounds, FillShape{Arc{{at, at}, radius, 0, 1}, kRed, Snapping::toPixels}, scale);
                std::vector<int> sums;
                for (int y = 0; y < image.height(); ++y) {
                    int row = 0;
                    int column = 0;
                    for (int x = 0; x < image.height(); ++x) {
                        row += image.alphaAt(x, y);
                        column += image.alphaAt(y, x);
                    }
                    EXPECT_NEAR(row, column, 90) << "as high as wide";
                    if (row > 0) sums.push_back(row);
                }
                ASSERT_FALSE(sums.empty());
                EXPECT_LE(static_cast<int>(sums.size()), pixelsCovering(bounds, scale).height);
                EXPECT_NEAR(sums.front(), sums.back(), 90);
                if (rows == 0) rows = sums.size();
                EXPECT_EQ(sums.size(), rows);
            }
        }
    }
}

}  // namespace
}  // namespace norvane
