#include <string>

#include "views/ScreenTest.h"
#include "views/Stack.h"
#include "views/Text.h"

namespace norvane {
namespace {

// A figure beside a text, and a paragraph above one. What keeps its room is not laid out again.
class SteadyTextTest : public ScreenTest {
 protected:
    Element body() override {
        return vstack({.alignment = Alignment::start}, hstack({}, text(figure_, kTen), text("beside", kTen)),
                      text(paragraph_, kTen).frame({.width = 60}), text("below", kTen));
    }

    std::string figure_ = "37 %";
    std::string paragraph_ = "one";
};

TEST_F(SteadyTextTest, MovesItsNeighboursWhereItTakesAnotherRoom) {
    show();
    struct Change {
        const char* figure;
        const char* paragraph;
        double beside;
        double below;
    };
    // A line of the paragraph has ten letters. Its last two are as long as each other, and break differently.
    const Change changes[] = {{"38 %", "two", 24, 25},           {"9 %", "two", 18, 25},
                              {"100 %", "two", 30, 25},          {"99 %", "aaaa bbbbb cc", 24, 37.5},
                              {"99 %", "a bbbbbbbbb c", 24, 50}, {"99 %", "aaaa bbbbb cc", 24, 37.5}};
    for (const Change& now : changes) {
        change([&] {
            figure_ = now.figure;
            paragraph_ = now.paragraph;
        });
        EXPECT_TRUE(shows(now.figure));
        EXPECT_EQ(frameOf("beside").minX(), now.beside) << now.figure;
        EXPECT_EQ(frameOf("below").minY(), now.below) << now.paragraph;
    }
}

}  // namespace
}  // namespace norvane
