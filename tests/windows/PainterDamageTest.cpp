#include <gtest/gtest.h>
#include <cmath>
#include <memory>
#include <random>
#include <string>
#include <utility>

#include "drawing/Damage.h"
#include "PaintedImage.h"
#include "platform/linux/PangoTextRuler.h"

namespace norvane {
namespace {

// The last bits for the translucent layers that lie over one another. At a few pixels of an edge it may be
// more: the image backend measures most pixels exactly, but counts in fifteenths where a line has an end, or
// a cut.
constexpr int kRounding = 3;
constexpr int kFifteenth = 17;
constexpr int kFew = 12;

void expectSame(const PaintedImage& one, const PaintedImage& other, const std::string& what) {
    const auto [largest, number] = PaintedImage::compared(one, other, kRounding);
    EXPECT_LE(largest, kFifteenth) << what;
    EXPECT_LE(number, kFew) << what;
}

// Anything that a list can hold, at places that fall anywhere between the pixels.
class RandomItems {
 public:
    RandomItems(unsigned seed, TextRuler& ruler) : random_(seed), ruler_(ruler) {
        for (int i = 0; i < 3; ++i) {
            auto list = std::make_shared<DisplayList>(DisplayList{{number(20, 60), number(10, 40)}, {}});
            for (int k = 0; k < 3; ++k)
                list->items.push_back(item(std::to_string(k), 0));
            pictures_.push_back(std::move(list));
        }
    }

    DisplayItem item(const std::string& key, int depth) {
        const Rect rect{{number(-20, 130), number(-20, 90)}, {number(0, 60), number(0, 40)}};
        switch (whole(pictures_.empty() || depth > 2 ? 6 : 9)) {
            case 0: {
                const Shape shape = anyShape(rect);
                return {key, boundsOf(shape), FillShape{shape, fill(rect), snapping()}};
            }
            case 1: {
                const Shape shape = anyShape(rect);
                const StrokeStyle style = stroke();
                return {key, boundsOf(shape).outset(style.width),
                        StrokeShape{shape, style, fill(rect), snapping()}};
            }
            case 2: {
                const Shape shape = anyShape(rect);
                DrawShadow shadow{shape,   std::nullopt, number(0, 9), {number(-3, 3), number(-3, 3)},
                                  color(), isOdd()};
                if (isOdd()) shadow.stroke = stroke();
                return {key, boundsOf(shape).outset(20), shadow};
            }
            case 3:
                return {key, rect, DrawSymbol{isOdd() ? "leaf.fill" : "nothing of ours", rect, color()}};
            case 4:
                return {key, rect, DrawImage{"NorvaneLogo", rect}};
            case 5: {
                const TextStyle style{.font = {}, .alignment = TextAlignment::center, .lineLimit = whole(3)};
                const std::string words = "Words " + key + " fjg and more of them";
                const Size size = ruler_.measure(words, style, 60).size;
                const double scaleX = isOdd() ? 1 : number(0.7, 1.2);
                const double scaleY = isOdd() ? 1 : number(0.7, 1.2);
                return {key, Rect{rect.origin, {size.width * scaleX, size.height * scaleY}}.outset(2),
                        DrawText{words, style, {rect.origin, {60, size.height}}, color(), scaleX, scaleY}};
            }
            case 6: {
                const auto& picture =
                    pictures_[static_cast<std::size_t>(whole(static_cast<int>(pictures_.size())))];
                const Point at{isOdd() ? std::round(rect.minX()) : rect.minX(), rect.minY()};
                return {key, Rect{at, picture->size}.outset(1), DrawPicture{picture, at}};
            }
            default: {
                const Rect bounds{{number(-20, 100), number(-20, 60)}, {number(20, 120), number(20, 80)}};
                DrawGroup group;
                if (isOdd()) group.opacity = number(0.2, 1);
                if (isOdd()) group.clip = rounded(bounds.inset(Insets::all(number(0, 6))));
                for (int i = 0; i < 3; ++i)
                    group.items.push_back(item(std::to_string(i), depth + 1));
                return {key, bounds, group};
            }
        }
    }

    int whole(int below) { return static_cast<int>(random_() % static_cast<unsigned>(below)); }

 private:
    double number(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random_);
    }
    bool isOdd() { return whole(2) == 1; }
    Color color() { return {number(0, 1), number(0, 1), number(0, 1), number(0.2, 1)}; }
    Snapping snapping() { return isOdd() ? Snapping::toPixels : Snapping::none; }
    Fill fill(const Rect& rect) {
        if (isOdd()) return color();
        const Point start{number(rect.minX(), rect.maxX()), rect.minY()};
        return {color(), color(), start,
                isOdd() ? Point{start.x + 30, start.y} : Point{start.x + 9, start.y + 20}};
    }
    StrokeStyle stroke() {
        return {number(0.3, 4), isOdd() ? LineCap::round : LineCap::butt,
                isOdd() ? LineJoin::round : LineJoin::miter, isOdd() ? number(0, 6) : 0, number(1, 5)};
    }
    RoundedRect rounded(const Rect& rect) {
        return {rect, number(0, 14), isOdd() ? CornerStyle::continuous : CornerStyle::circular};
    }
    Shape anyShape(const Rect& rect) {
        switch (whole(3)) {
            case 0:
                return rounded(rect);
            case 1:
                return Arc{rect.origin, number(1, 25), number(-1, 1), number(0, 2.5)};
            default: {
                Path path{{Path::MoveTo{{0, number(0, 20)}}, Path::LineTo{{number(0, 20), number(0, 20)}},
                           Path::CurveTo{{30, number(0, 20)}, {35, number(0, 20)}, {number(20, 50), 4}}}};
                if (isOdd()) path.segments.push_back(Path::Close{});
                return PlacedPath{std::make_shared<Path>(std::move(path)), rect.origin, number(0.5, 1.5),
                                  number(-1, 1.5)};
            }
        }
    }

    std::mt19937 random_;
    TextRuler& ruler_;
    std::vector<std::shared_ptr<const DisplayList>> pictures_;
};

class PainterDamageTest : public ::testing::TestWithParam<double> {
 protected:
    TextLayouts layouts_;
    PangoTextRuler ruler_{layouts_};
    CairoPainter painter_{layouts_};
};

// Lists as they follow each other on a screen, some items moved, changed, gone or new.
TEST_P(PainterDamageTest, PaintingDamageIsPaintingAll) {
    const double scale = GetParam();
    RandomItems items(4711, ruler_);
    DisplayList before{{140, 100}, {}};
    for (int i = 0; i < 14; ++i)
        before.items.push_back(items.item(std::to_string(i), 0));
    PaintedImage kept(painter_, before, scale);
    for (int frame = 0; frame < 90; ++frame) {
        DisplayList after = before;
        auto& changed =
            after.items[static_cast<std::size_t>(items.whole(static_cast<int>(after.items.size())))];
        auto* const group = std::get_if<DrawGroup>(&changed.command);
        if (group != nullptr && frame % 2 == 0) {
            group->items[1] = items.item("1", 1);
        } else {
            changed = items.item(std::to_string(100 + frame), 0);
        }
        if (frame % 3 == 0) after.items.push_back(items.item(std::to_string(1000 + frame), 0));
        if (frame % 5 == 0) after.items.erase(after.items.begin());
        if (frame % 4 == 0) after.items.erase(after.items.begin() + 3);
        if (frame % 7 == 0) std::swap(after.items.front(), after.items.back());
        std::vector<PixelRect> damage;
        for (const Rect& rect : damageBetween(before, after))
            damage.push_back(pixelsCovering(rect, scale).intersection(kept.bounds()));
        kept.paint(after, damage);
        expectSame(kept, PaintedImage(painter_, after, scale),
                   "frame " + std::to_string(frame) + "\nfrom\n" + printed(before) + "to\n" + printed(after));
        if (HasFailure()) return;
        before = after;
    }
}

// Each thing alone, cut at every place, so that nothing can hide behind another.
TEST_P(PainterDamageTest, EveryThingIsTheSameInPieces) {
    const double scale = GetParam();
    RandomItems items(815, ruler_);
    for (int i = 0; i < 300; ++i) {
        const DisplayList list{{90, 60}, {items.item("0", 0)}};
        const PaintedImage whole(painter_, list, scale);
        PaintedImage pieces(painter_, list.size, scale);
        const int split = 1 + items.whole(whole.width() - 1);
        const int cut = 1 + items.whole(whole.height() - 1);
        pieces.paint(list, {{0, 0, split, cut},
                            {split, 0, whole.width() - split, cut},
                            {0, cut, split, whole.height() - cut},
                            {split, cut, whole.width() - split, whole.height() - cut}});
        expectSame(pieces, whole,
                   std::to_string(i) + " at " + std::to_string(split) + ", " + std::to_string(cut) + '\n' +
                       printed(list));
    }
}

INSTANTIATE_TEST_SUITE_P(Scales, PainterDamageTest, ::testing::Values(1, 1.25, 1.5, 2));

}  // namespace
}  // namespace norvane
