#include <array>
#include <memory>
#include <random>
#include <string>

#include "drawing/Damage.h"
#include "PainterFixture.h"
#include "PlayedTree.h"

namespace norvane {
namespace {

// What is laid over something translucently is rounded by the length of the run of pixels that is painted at
// once, which is another one where only a part is painted: by one step for a thing, by another for the group
// around it.
constexpr int kRounding = 2;
// Where the border of a part cuts through a slanted edge, the edge is rounded anew at the cut: a few pixels
// along the border come out a shade lighter or darker. What stays behind of a thing is larger or stronger.
constexpr int kCutRounding = 16;
constexpr int kMostCutPixels = 8;

// Decisions by chance.
class RandomChoices final : public Choices {
 public:
    explicit RandomChoices(unsigned seed) : random_(seed) {}

    // By hand: the library's distributions differ from one library to another.
    unsigned below(unsigned end) override { return end > 0 ? static_cast<unsigned>(random_() % end) : 0; }
    double fraction() override { return static_cast<double>(random_() % 10'007) / 10'006; }
    std::string words() override {
        static constexpr std::array kWords{"42 %", "fjg AVA", "-", "A sentence that needs two lines",
                                           "\xD8\xA7\xD9\x84\xD8\xB0\xD8\xA7\xD9\x83\xD8\xB1\xD8\xA9"};
        return kWords[below(kWords.size())];
    }
    bool isOver() const override { return false; }

 private:
    std::mt19937 random_;
};

class GhostTest : public PainterFixture, public testing::WithParamInterface<double> {};

// A tree's pictures one after another, of each only what differs from the one before.
TEST_P(GhostTest, NothingOfAnEarlierPictureStaysBehind) {
    int parts = 0;
    for (unsigned seed = 1; seed <= 10; ++seed) {
        RandomChoices choices(seed);
        PlayedTree tree(choices, &ruler_);
        // With caches of its own, so that what was kept wrongly shows.
        TextLayouts freshLayouts;
        CairoPainter freshPainter(freshLayouts);
        DisplayList before;
        std::unique_ptr<PaintedImage> image;
        for (int step = 0; step < 70; ++step) {
            tree.step();
            // Pictures are kept only while the window is open.
            if (!tree.isShown()) image.reset();
            if (!tree.isShown()) continue;
            const DisplayList list = tree.picture();
            if (!image || before.size != list.size) {
                image = std::make_unique<PaintedImage>(painter_, list, GetParam());
            } else {
                std::vector<PixelRect> damage;
                for (const Rect& rect : damageBetween(before, list))
                    damage.push_back(pixelsCovering(rect, GetParam()).intersection(image->bounds()));
                std::erase_if(damage, [](const PixelRect& part) { return part.isEmpty(); });
                image->paint(list, damage);
                parts += !damage.empty() && damage.front() != image->bounds() ? 1 : 0;
            }
            const PaintedImage fresh(freshPainter, list, GetParam());
            const auto difference = PaintedImage::between(*image, fresh, kRounding);
            ASSERT_TRUE(difference.largest <= kCutRounding && difference.pixels <= kMostCutPixels)
                << "seed " << seed << ", step " << step << ": " << difference.pixels << " pixels, by "
                << difference.largest << " and less; from\n"
                << printed(before) << "to\n"
                << printed(list);
            before = list;
        }
    }
    EXPECT_GT(parts, 50) << "hardly anything was painted in part";
}

INSTANTIATE_TEST_SUITE_P(Scales, GhostTest, testing::Values(1, 1.25, 1.5, 2));

}  // namespace
}  // namespace norvane
