#include <memory>
#include <string>

#include "PainterFixture.h"

namespace norvane {
namespace {

constexpr Rect kAll{{0, 0}, {40, 40}};

DisplayItem square(const Rect& rect, const Color& color) {
    return {"", rect, FillShape{RoundedRect{rect, 0}, color}};
}

class PainterGroupsTest : public PainterFixture {
 protected:
    PaintedImage grouped(const DrawGroup& group, double scale = 1) {
        return painted(kAll.size, group, scale);
    }
};

TEST_F(PainterGroupsTest, AGroupFadesAsAWhole) {
    const std::vector<DisplayItem> items{square({{0, 0}, {30, 40}}, kRed),
                                         square({{10, 0}, {30, 40}}, kBlue)};
    const PaintedImage together = grouped({0.5, std::nullopt, items});
    EXPECT_EQ(together.at(20, 20), 0x80000080) << "nothing of the red one shines through";
    EXPECT_EQ(together.at(5, 20), 0x80800000);
    const PaintedImage nested =
        grouped({0.5, std::nullopt, {{"h", kAll, DrawGroup{0.5, std::nullopt, items}}}});
    EXPECT_NEAR(nested.alphaAt(20, 20), 64, 1);
    for (const double opacity : {0.0, -1.0})
        EXPECT_EQ(grouped({opacity, std::nullopt, items}).count(0), 1600);
    EXPECT_EQ(grouped({7, std::nullopt, items}).at(20, 20), 0xFF0000FF);
}

TEST_F(PainterGroupsTest, AClipCutsWhatIsInsideAlongItsCurve) {
    for (const CornerStyle corners : {CornerStyle::circular, CornerStyle::continuous}) {
        for (const double scale : {1.0, 1.25, 2.0}) {
            const RoundedRect clip{{{5.3, 6.1}, {28, 25}}, 8, corners};
            const DrawGroup group{1, clip, {square(kAll, kRed)}};
            const PaintedImage cut = grouped(group, scale);
            const PaintedImage shape = painted(kAll.size, FillShape{clip, kRed}, scale);
            EXPECT_LE(PaintedImage::between(cut, shape).largest, 1);
            // With the middle painted by itself, which needs no cutting.
            PaintedImage pieces(painter_, kAll.size, scale);
            const int middle = pixelsAt(18, scale);
            const int end = pieces.width();
            pieces.paint({kAll.size, {{"", kAll, group}}},
                         {{0, 0, end, middle}, {0, middle, end, 3}, {0, middle + 3, end, end - middle - 3}});
            EXPECT_LE(PaintedImage::between(cut, pieces).largest, 2);
        }
    }
}

TEST_F(PainterGroupsTest, APictureIsPaintedOnceForAsLongAsSomebodyHoldsIt) {
    PictureCache& pictures = painter_.caches().pictures;
    auto list = std::make_shared<DisplayList>(
        DisplayList{{10, 8}, {square({{2, 2}, {30, 4}}, kRed), square({{4, 3}, {2, 2}}, kBlue)}});
    const auto at = [&](Point point, double scale = 1) {
        return painted(kAll.size, DrawPicture{list, point}, scale);
    };
    const PaintedImage whole = at({5, 7});
    EXPECT_EQ(whole.count(kRedPixel), 8 * 4 - 4) << "cut at its size";
    EXPECT_EQ(whole.at(7, 9), kRedPixel);
    EXPECT_EQ(whole.at(9, 10), 0xFF0000FF);
    const PaintedImage between = at({5.5, 7});
    EXPECT_NEAR(between.alphaAt(7, 9), 128, 1);
    EXPECT_EQ(between.at(8, 9), kRedPixel);
    EXPECT_EQ(pictures.count(), 1u);
    at({5, 7}, 2);
    EXPECT_EQ(pictures.count(), 2u);
    EXPECT_EQ(pictures.bytes(), 4u * (10 * 8 + 20 * 16));
    // It is the same object that counts: what is kept is not asked for its items
    // again.
    list->items.clear();
    EXPECT_EQ(at({5, 7}).at(7, 9), kRedPixel);
    list.reset();
    painted({}, std::vector<DisplayItem>());
    EXPECT_EQ(pictures.count(), 0u);

    std::vector<std::shared_ptr<const DisplayList>> many;
    for (int i = 0; i < 60; ++i) {
        many.push_back(std::make_shared<DisplayList>(DisplayList{{1000, 1000}, {square(kAll, kRed)}}));
        painted(kAll.size, DrawPicture{many.back(), {}});
    }
    EXPECT_LE(pictures.count(), PictureCache::kMostPictures);
    EXPECT_LE(pictures.bytes(), PictureCache::kMostBytes);
    const auto huge = std::make_shared<DisplayList>(DisplayList{{9000, 9000}, {square(kAll, kRed)}});
    EXPECT_EQ(painted(kAll.size, DrawPicture{huge, {30, 30}}).count(kRedPixel), 100);
}

TEST_F(PainterGroupsTest, SymbolsTakeTheColorAndImagesHaveTheirOwn) {
    NamedPictures& named = painter_.caches().named;
    const Rect frame{{4, 4}, {32, 32}};
    const PaintedImage symbol = painted(kAll.size, DrawSymbol{"leaf.fill", frame, kBlue});
    EXPECT_GT(symbol.count(0xFF0000FF), 50);
    for (const std::uint32_t pixel : symbol.pixels())
        ASSERT_EQ(pixel >> 8 & 0xFFFF, 0u) << "nothing but blue";
    EXPECT_LT(painted(kAll.size, DrawImage{"NorvaneLogo", frame}).count(0), 1500);
    EXPECT_EQ(named.count(), 2u);
    painted(kAll.size, DrawSymbol{"leaf.fill", {{1.4, 7.7}, {32, 32}}, kRed});
    EXPECT_EQ(named.count(), 2u) << "elsewhere, and in another colour";
    for (int i = 1; i < 400; ++i)
        painted(kAll.size, DrawImage{"NorvaneLogo", {{0, 0}, {i / 2.0, i / 2.0}}}, 2);
    EXPECT_LE(named.count(), NamedPictures::kMostPictures);
    EXPECT_LE(named.bytes(), NamedPictures::kMostBytes);
}

}  // namespace
}  // namespace norvane
