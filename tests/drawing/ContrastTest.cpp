#include "drawing/Contrast.h"

#include <gtest/gtest.h>

namespace norvane {
namespace {

constexpr Color grey(int level) {
    return {level / 255.0, level / 255.0, level / 255.0, 1};
}
constexpr Color kWhite = grey(255);

// Values that anybody's checker gives for these pairs.
TEST(Contrast, IsTheOneThatEveryCheckerTells) {
    struct Case {
        const char* name;
        Color one, other;
        double want;
    };
    for (const Case& c :
         {Case{"black on white", grey(0), kWhite, 21}, Case{"the same", grey(99), grey(99), 1},
          Case{"the lightest grey that reads on white", grey(0x76), kWhite, 4.54},
          Case{"one lighter does not", grey(0x77), kWhite, 4.48}, Case{"green", {0, 1, 0, 1}, kWhite, 1.37},
          Case{"yellow on black", {1, 1, 0, 1}, grey(0), 19.56},
          Case{"almost black", grey(3), grey(0), 1.02}}) {
        EXPECT_NEAR(contrastBetween(c.one, c.other), c.want, 0.005) << c.name;
        EXPECT_EQ(contrastBetween(c.one, c.other), contrastBetween(c.other, c.one)) << c.name;
    }
}

TEST(Contrast, ATranslucentColourIsMixedWithWhatIsBelow) {
    const Color red{1, 0, 0, 1};
    EXPECT_EQ(laidUpon(red, kWhite), red);
    EXPECT_EQ(laidUpon(Color::clear(), red), red);
    EXPECT_EQ(laidUpon(red.withOpacity(0.25), {0, 0, 1, 1}), (Color{0.25, 0, 0.75, 1}));
}

}  // namespace
}  // namespace norvane
