#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "drawing/Damage.h"
#include "PaintedImage.h"
#include "platform/linux/PangoTextRuler.h"
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
constexpr int kSteps = 70;

// Decisions by chance.
class RandomChoices final : public Choices {
 public:
    explicit RandomChoices(unsigned seed) : random_(seed) {}

    // By hand: the library's distributions differ from one library to another.
    unsigned below(unsigned end) override { return end > 0 ? static_cast<unsigned>(random_() % end) : 0; }
    double fraction() override { return static_cast<double>(random_() % 10'007) / 10'006; }
    std::string words() override {
        static constexpr std::array kWords{"Storage",
                                           "42 %",
                                           "fjg AVA",
                                           "-",
                                           "A sentence that needs two lines",
                                           "\xD8\xA7\xD9\x84\xD8\xB0\xD8\xA7\xD9\x83\xD8\xB1\xD8\xA9"};
        return kWords[below(kWords.size())];
    }
    bool isOver() const override { return false; }

 private:
    std::mt19937 random_;
};

std::vector<std::string> linesOf(const DisplayList& list) {
    std::istringstream stream(printed(list));
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

// The lines of one that the other has not.
std::string linesBeyond(const DisplayList& list, const DisplayList& other, const char* mark) {
    const auto others = linesOf(other);
    std::string beyond;
    for (const std::string& line : linesOf(list)) {
        if (std::find(others.begin(), others.end(), line) == others.end()) beyond += mark + line + '\n';
    }
    return beyond;
}

std::string described(const std::vector<PixelRect>& rects) {
    std::ostringstream text;
    for (const PixelRect& rect : rects)
        text << ' ' << rect.x << ',' << rect.y << ' ' << rect.width << 'x' << rect.height;
    return text.str();
}

struct Difference {
    int largest = 0;  // of any component
    int pixels = 0;   // that differ by more than rounding
};

Difference differenceBetween(const PaintedImage& one, const PaintedImage& other) {
    Difference difference;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            const std::uint32_t a = one.at(x, y);
            const std::uint32_t b = other.at(x, y);
            int here = 0;
            for (unsigned shift = 0; a != b && shift < 32; shift += 8) {
                here = std::max(here, std::abs(static_cast<int>(a >> shift & 0xFF) -
                                               static_cast<int>(b >> shift & 0xFF)));
            }
            difference.largest = std::max(difference.largest, here);
            difference.pixels += here > kRounding ? 1 : 0;
        }
    }
    return difference;
}

// What is seen of a tree: its pictures one after another, of each only what differs from the one before.
class Watched {
 public:
    Watched(unsigned seed, double scale) : choices_(seed), scale_(scale), tree_(choices_, &ruler_) {}

    // Something happens; how far what is then seen is from the same picture painted by itself.
    Difference step() {
        tree_.step();
        if (!tree_.isShown()) {
            image_.reset();  // pictures are kept only while the window is open
            return {};
        }
        DisplayList next = tree_.picture();
        before_ = std::exchange(list_, std::move(next));
        damage_.clear();
        if (!image_ || before_.size != list_.size) {
            image_ = std::make_unique<PaintedImage>(painter_, list_, scale_);
        } else {
            for (const Rect& rect : damageBetween(before_, list_)) {
                const PixelRect pixels = pixelsCovering(rect, scale_).intersection(image_->bounds());
                if (!pixels.isEmpty()) damage_.push_back(pixels);
            }
            image_->paint(list_, damage_);
        }
        if (image_->bounds().isEmpty()) return {};
        const bool isPart = !damage_.empty() && !(damage_.front() == image_->bounds());
        parts_ += isPart ? 1 : 0;
        return differenceBetween(*image_, PaintedImage(freshPainter_, list_, scale_));
    }

    std::string lastChange() const {
        return "painted" + described(damage_) + " of " + described({image_->bounds()}) + '\n' +
               linesBeyond(before_, list_, "- ") + linesBeyond(list_, before_, "+ ");
    }
    // How many pictures were made by painting a part of them.
    int parts() const { return parts_; }

 private:
    RandomChoices choices_;
    double scale_;
    TextLayouts layouts_;
    PangoTextRuler ruler_{layouts_};
    CairoPainter painter_{layouts_};
    // With caches of its own, so that what was kept wrongly shows.
    TextLayouts freshLayouts_;
    CairoPainter freshPainter_{freshLayouts_};
    PlayedTree tree_;
    DisplayList before_;
    DisplayList list_;
    std::vector<PixelRect> damage_;
    std::unique_ptr<PaintedImage> image_;
    int parts_ = 0;
};

class GhostTest : public testing::TestWithParam<double> {};

TEST_P(GhostTest, NothingOfAnEarlierPictureStaysBehind) {
    int parts = 0;
    for (unsigned seed = 1; seed <= 10; ++seed) {
        Watched watched(seed, GetParam());
        for (int step = 0; step < kSteps; ++step) {
            const Difference difference = watched.step();
            ASSERT_TRUE(difference.largest <= kCutRounding && difference.pixels <= kMostCutPixels)
                << "seed " << seed << ", step " << step << ": " << difference.pixels << " pixels, by "
                << difference.largest << " and less; " << watched.lastChange();
        }
        parts += watched.parts();
    }
    EXPECT_GT(parts, 50) << "hardly anything was painted in part";
}

INSTANTIATE_TEST_SUITE_P(Scales, GhostTest, testing::Values(1, 1.25, 1.5, 2));

}  // namespace
}  // namespace norvane
