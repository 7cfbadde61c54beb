#include <gtest/gtest.h>
#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "drawing/Damage.h"
#include "platform/linux/CairoHandles.h"
#include "platform/linux/CairoPainter.h"
#include "platform/linux/PangoTextRuler.h"

namespace norvane {
namespace {

constexpr Color kRed{1, 0, 0, 1};

class PainterTest : public ::testing::Test {
 protected:
    using Pixels = std::vector<std::uint32_t>;

    static CairoSurface image(int width, int height) {
        return CairoSurface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height));
    }
    // Rows without the padding between them.
    static Pixels pixelsOf(cairo_surface_t* image) {
        cairo_surface_flush(image);
        const int width = cairo_image_surface_get_width(image);
        const int height = cairo_image_surface_get_height(image);
        Pixels pixels;
        for (int y = 0; y < height; ++y) {
            const auto* const row = reinterpret_cast<const std::uint32_t*>(
                cairo_image_surface_get_data(image) + y * cairo_image_surface_get_stride(image));
            pixels.insert(pixels.end(), row, row + width);
        }
        return pixels;
    }
    Pixels paint(const DisplayList& list, double scale = 1) {
        const int width = pixelsCovering(list.size.width, scale);
        const int height = pixelsCovering(list.size.height, scale);
        const auto painted = image(width, height);
        const PixelRect all{0, 0, width, height};
        painter_.paint(painted.get(), {.scale = scale}, list, {&all, 1});
        return pixelsOf(painted.get());
    }
    DisplayItem text(const std::string& words, Point at, double condense = 1) {
        const Size size = ruler_.measure(words, {}, TextRuler::kUnlimitedWidth).size;
        const Rect frame{at, size};
        return {words, frame.outset(2), DrawText{words, {}, frame, kRed, condense}};
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
    const Pixels plain = paint({{10, 8}, {{"a", rect, FillShape{{rect, 0}, kRed}}}});
    EXPECT_EQ(std::count(plain.begin(), plain.end(), 0xFFFF0000), 12);
    EXPECT_EQ(std::count(plain.begin(), plain.end(), 0u), 80 - 12);
    const Pixels twice = paint({{10, 8}, {{"a", rect, FillShape{{rect, 0}, kRed}}}}, 2);
    EXPECT_EQ(std::count(twice.begin(), twice.end(), 0xFFFF0000), 48);
    const Rect line{{2.5, 2.5}, {4, 3}};
    const Pixels stroked = paint({{10, 8}, {{"a", line.outset(0.5), StrokeShape{{line, 0}, 1, kRed}}}});
    EXPECT_EQ(std::count(stroked.begin(), stroked.end(), 0xFFFF0000), 2 * 5 + 2 * 2);
    const Rect big{{0, 0}, {20, 20}};
    const Pixels capsule = paint({{20, 20}, {{"a", big, FillShape{{big, 1e9}, kRed}}}});
    EXPECT_EQ(capsule[0], 0u);
    EXPECT_EQ(capsule[10 * 20 + 10], 0xFFFF0000);
    const Pixels half = paint({{4, 4}, {{"a", big, FillShape{{big, 0}, kRed.withOpacity(0.5)}}}});
    EXPECT_EQ(half[0], 0x80800000) << "premultiplied";
}

TEST_F(PainterTest, TextIsSetInItsColorAndNarrowedAboutItsLeftEdge) {
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
}

// One bit for each translucent layer.
constexpr int kRounding = 3;

// The largest difference of any component of any pixel.
int difference(const std::vector<std::uint32_t>& some, const std::vector<std::uint32_t>& others) {
    int largest = 0;
    for (std::size_t i = 0; i < some.size(); ++i) {
        for (int shift = 0; shift < 32; shift += 8) {
            const auto part = [shift](std::uint32_t pixel) {
                return static_cast<int>(pixel >> shift & 0xFF);
            };
            largest = std::max(largest, std::abs(part(some[i]) - part(others[i])));
        }
    }
    return largest;
}

// Lists as they follow each other on a screen, some items moved, changed, gone or new.
TEST_F(PainterTest, PaintingDamageIsPaintingAll) {
    std::mt19937 random(4711);
    const auto number = [&](double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random);
    };
    const auto item = [&](int key) {
        const Color color{number(0, 1), number(0, 1), number(0, 1), number(0.2, 1)};
        const Rect rect{{number(-20, 130), number(-20, 90)}, {number(0, 60), number(0, 40)}};
        switch (random() % 3) {
            case 0:
                return DisplayItem{std::to_string(key), rect, FillShape{{rect, number(0, 12)}, color}};
            case 1:
                return DisplayItem{std::to_string(key), rect.outset(2),
                                   StrokeShape{{rect, number(0, 12)}, number(0.3, 4), color}};
            default: {
                DisplayItem words =
                    text("Words " + std::to_string(key) + " fjg", rect.origin, number(0.7, 1));
                words.key = std::to_string(key);
                std::get<DrawText>(words.command).color = color;
                return words;
            }
        }
    };
    for (const double scale : {1.0, 1.25, 2.0}) {
        DisplayList before{{140, 100}, {}};
        for (int i = 0; i < 14; ++i)
            before.items.push_back(item(i));
        const int width = pixelsCovering(before.size.width, scale);
        const int height = pixelsCovering(before.size.height, scale);
        const auto kept = image(width, height);
        const PixelRect all{0, 0, width, height};
        painter_.paint(kept.get(), {.scale = scale}, before, {&all, 1});
        for (int frame = 0; frame < 60; ++frame) {
            DisplayList after = before;
            after.items[random() % after.items.size()] = item(100 + frame);
            if (frame % 3 == 0) after.items.push_back(item(1000 + frame));
            if (frame % 5 == 0) after.items.erase(after.items.begin());
            if (frame % 7 == 0) std::swap(after.items.front(), after.items.back());
            std::vector<PixelRect> damage;
            for (const Rect& rect : damageBetween(before, after))
                damage.push_back(pixelsCovering(rect, scale));
            painter_.paint(kept.get(), {.scale = scale}, after, damage);
            ASSERT_LE(difference(pixelsOf(kept.get()), paint(after, scale)), kRounding)
                << "frame " << frame << " at " << scale << "\nfrom\n"
                << printed(before) << "to\n"
                << printed(after);
            before = after;
        }
    }
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
    const auto surface = image(20, 20);
    const PixelRect all{0, 0, 20, 20};
    const Rect everything{{0, 0}, {20, 20}};
    painter_.paint(surface.get(), {}, {{20, 20}, {{"a", everything, FillShape{{everything, 0}, kRed}}}},
                   {&all, 1});
    const PixelRect part{5, 5, 4, 4};
    painter_.paint(surface.get(), {}, {{20, 20}, {}}, {&part, 1});
    Pixels pixels = pixelsOf(surface.get());
    EXPECT_EQ(std::count(pixels.begin(), pixels.end(), 0u), 16) << "what is damaged is cleared";
    const Rect bounds{{6, 6}, {2, 2}};
    painter_.paint(surface.get(), {}, {{20, 20}, {{"a", bounds, FillShape{{everything, 0}, kRed}}}},
                   {&part, 1});
    pixels = pixelsOf(surface.get());
    EXPECT_EQ(std::count(pixels.begin(), pixels.end(), 0u), 12);
}

TEST_F(PainterTest, GarbageCostsItselfAndNotTheFrame) {
    const double none = std::numeric_limits<double>::quiet_NaN();
    const double endless = std::numeric_limits<double>::infinity();
    const Rect all{{0, 0}, {20, 20}};
    const Color noColor{none, endless, -5, 7};
    const Rect wrong[] = {
        {{none, 0}, {5, 5}},     {{0, 0}, {none, 5}},      {{0, 0}, {endless, endless}},
        {{-endless, 0}, {5, 5}}, {{1e300, 1e300}, {1, 1}}, {{-1e300, -1e300}, {2e300, 2e300}},
        {{5, 5}, {-3, -3}}};
    DisplayList list{{20, 20}, {}};
    for (const Rect& rect : wrong) {
        for (const double number : {none, endless, -endless, -1.0, 0.0, 1e300, 1e-300}) {
            for (const Color& color : {kRed, noColor}) {
                list.items.push_back({"", all, FillShape{{rect, number}, color}});
                list.items.push_back({"", all, StrokeShape{{rect, number}, number, color}});
                list.items.push_back({"", all, DrawText{"x\xFF", {}, rect, color, number}});
                list.items.push_back(
                    {"", rect, DrawText{"x", {.font = {.size = number}}, all, color, number}});
            }
        }
    }
    const Rect last{{4, 4}, {8, 8}};
    list.items.push_back({"last", last, FillShape{{last, 0}, {0, 0, 1, 1}}});
    const Pixels pixels = paint(list);
    EXPECT_EQ(pixels[8 * 20 + 8], 0xFF0000FF);
}

TEST_F(PainterTest, HugeShapesCoverWhatIsVisibleOfThem) {
    for (const double far : {1e4, 1e6, 1e9, 1e15}) {
        const Rect huge{{-far, -far}, {2 * far, 2 * far}};
        const Pixels pixels = paint({{20, 20}, {{"a", huge, FillShape{{huge, 3}, kRed}}}}, 2);
        EXPECT_EQ(std::count(pixels.begin(), pixels.end(), 0xFFFF0000), 1600) << far;
    }
}

TEST_F(PainterTest, AListIsPaintedWhereItIsPlaced) {
    const auto surface = image(30, 30);
    const PixelRect everything{0, 0, 30, 30};
    const Rect rect{{1, 2}, {3, 4}};
    painter_.paint(surface.get(), {.scale = 2, .x = 10, .y = 5},
                   {{8, 8}, {{"a", rect, FillShape{{rect, 0}, kRed}}}}, {&everything, 1});
    const Pixels pixels = pixelsOf(surface.get());
    EXPECT_EQ(pixels[(5 + 4) * 30 + 12], 0xFFFF0000);
    EXPECT_EQ(pixels[(5 + 4) * 30 + 11], 0u);
    EXPECT_EQ(pixels[(5 + 3) * 30 + 12], 0u);
    EXPECT_EQ(std::count(pixels.begin(), pixels.end(), 0xFFFF0000), 6 * 8);
}

}  // namespace
}  // namespace norvane
