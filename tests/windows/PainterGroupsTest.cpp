#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "PaintedImage.h"

namespace norvane {
namespace {

constexpr Color kRed{1, 0, 0, 1};
constexpr Color kBlue{0, 0, 1, 1};
constexpr Rect kAll{{0, 0}, {40, 40}};

DisplayItem square(const std::string& key, const Rect& rect, const Color& color) {
    return {key, rect, FillShape{RoundedRect{rect, 0}, color}};
}

class PainterGroupsTest : public ::testing::Test {
 protected:
    PaintedImage painted(std::vector<DisplayItem> items, double scale = 1) {
        return {painter_, {kAll.size, std::move(items)}, scale};
    }

    TextLayouts layouts_;
    CairoPainter painter_{layouts_};
};

TEST_F(PainterGroupsTest, AGroupFadesAsAWhole) {
    const std::vector<DisplayItem> items{square("a", {{0, 0}, {30, 40}}, kRed),
                                         square("b", {{10, 0}, {30, 40}}, kBlue)};
    const PaintedImage together = painted({{"g", kAll, DrawGroup{0.5, std::nullopt, items}}});
    EXPECT_EQ(together.at(20, 20), 0x80000080) << "nothing of the red one shines through";
    EXPECT_EQ(together.at(5, 20), 0x80800000);
    const PaintedImage apart = painted({square("a", {{0, 0}, {30, 40}}, kRed.withOpacity(0.5)),
                                        square("b", {{10, 0}, {30, 40}}, kBlue.withOpacity(0.5))});
    EXPECT_GT(apart.at(20, 20) >> 16 & 0xFF, 0x30u);
    const PaintedImage nested = painted(
        {{"g", kAll, DrawGroup{0.5, std::nullopt, {{"h", kAll, DrawGroup{0.5, std::nullopt, items}}}}}});
    EXPECT_NEAR(nested.alphaAt(20, 20), 64, 1);
    for (const double opacity : {0.0, -1.0})
        EXPECT_EQ(painted({{"g", kAll, DrawGroup{opacity, std::nullopt, items}}}).count(0), 1600);
    EXPECT_EQ(painted({{"g", kAll, DrawGroup{7, std::nullopt, items}}}).at(20, 20), 0xFF0000FF);
}

TEST_F(PainterGroupsTest, AClipCutsWhatIsInsideAlongItsCurve) {
    for (const CornerStyle corners : {CornerStyle::circular, CornerStyle::continuous}) {
        for (const double scale : {1.0, 1.25, 2.0}) {
            const RoundedRect clip{{{5.3, 6.1}, {28, 25}}, 8, corners};
            const PaintedImage cut =
                painted({{"g", kAll, DrawGroup{1, clip, {square("a", kAll, kRed)}}}}, scale);
            const PaintedImage shape = painted({{"s", kAll, FillShape{clip, kRed}}}, scale);
            EXPECT_LE(PaintedImage::difference(cut, shape), 1);
            // With the middle painted by itself, which needs no cutting.
            PaintedImage pieces(painter_, kAll.size, scale);
            const int middle = pixelsAt(18, scale);
            const int end = pieces.width();
            pieces.paint({kAll.size, {{"g", kAll, DrawGroup{1, clip, {square("a", kAll, kRed)}}}}},
                         {{0, 0, end, middle}, {0, middle, end, 3}, {0, middle + 3, end, end - middle - 3}});
            EXPECT_LE(PaintedImage::difference(cut, pieces), 2);
        }
    }
}

TEST_F(PainterGroupsTest, APictureIsPaintedOnceForAsLongAsSomebodyHoldsIt) {
    PictureCache& pictures = painter_.caches().pictures;
    auto list = std::make_shared<DisplayList>(
        DisplayList{{10, 8}, {square("a", {{2, 2}, {30, 4}}, kRed), square("b", {{4, 3}, {2, 2}}, kBlue)}});
    const auto at = [&](Point point, double scale = 1) {
        return painted({{"p", kAll, DrawPicture{list, point}}}, scale);
    };
    const PaintedImage whole = at({5, 7});
    EXPECT_EQ(whole.count(0xFFFF0000), 8 * 4 - 4) << "cut at its size";
    EXPECT_EQ(whole.at(7, 9), 0xFFFF0000);
    EXPECT_EQ(whole.at(9, 10), 0xFF0000FF);
    const PaintedImage between = at({5.5, 7});
    EXPECT_NEAR(between.alphaAt(7, 9), 128, 1);
    EXPECT_EQ(between.at(8, 9), 0xFFFF0000);
    EXPECT_EQ(pictures.count(), 1u);
    at({5, 7}, 2);
    EXPECT_EQ(pictures.count(), 2u);
    EXPECT_EQ(pictures.bytes(), 4u * (10 * 8 + 20 * 16));
    // It is the same object that counts: what is kept is not asked for its items again.
    list->items.clear();
    EXPECT_EQ(at({5, 7}).at(7, 9), 0xFFFF0000);
    list.reset();
    painted({});
    EXPECT_EQ(pictures.count(), 0u);

    std::vector<std::shared_ptr<const DisplayList>> many;
    for (int i = 0; i < 60; ++i) {
        many.push_back(std::make_shared<DisplayList>(DisplayList{{1000, 1000}, {square("a", kAll, kRed)}}));
        painted({{"p", kAll, DrawPicture{many.back(), {}}}});
    }
    EXPECT_LE(pictures.count(), PictureCache::kMostPictures);
    EXPECT_LE(pictures.bytes(), PictureCache::kMostBytes);
    const auto huge = std::make_shared<DisplayList>(DisplayList{{9000, 9000}, {square("a", kAll, kRed)}});
    EXPECT_EQ(painted({{"p", kAll, DrawPicture{huge, {30, 30}}}}).count(0xFFFF0000), 100);
}

TEST_F(PainterGroupsTest, SymbolsTakeTheColorAndImagesHaveTheirOwn) {
    NamedPictures& named = painter_.caches().named;
    const Rect frame{{4, 4}, {32, 32}};
    const PaintedImage symbol = painted({{"s", frame, DrawSymbol{"leaf.fill", frame, kBlue}}});
    EXPECT_GT(symbol.count(0xFF0000FF), 50);
    for (const std::uint32_t pixel : symbol.pixels())
        ASSERT_EQ(pixel >> 8 & 0xFFFF, 0u) << "nothing but blue";
    const PaintedImage image = painted({{"i", frame, DrawImage{"NorvaneLogo", frame}}});
    EXPECT_LT(image.count(0), 1500);
    EXPECT_EQ(named.count(), 2u);
    painted({{"s", kAll, DrawSymbol{"leaf.fill", {{1.4, 7.7}, {32, 32}}, kRed}}});
    EXPECT_EQ(named.count(), 2u) << "elsewhere, and in another colour";
    for (int i = 1; i < 400; ++i)
        painted({{"i", kAll, DrawImage{"NorvaneLogo", {{0, 0}, {i / 2.0, i / 2.0}}}}}, 2);
    EXPECT_LE(named.count(), NamedPictures::kMostPictures);
    EXPECT_LE(named.bytes(), NamedPictures::kMostBytes);
}

}  // namespace
}  // namespace norvane
