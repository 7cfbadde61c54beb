#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "platform/scripted/FixedTextRuler.h"
#include "views/Divider.h"
#include "views/SceneBuilder.h"
#include "views/Spacer.h"
#include "views/Stack.h"
#include "views/StackLayout.h"
#include "views/Text.h"

namespace norvane {
namespace {

constexpr double kMost = std::numeric_limits<double>::infinity();
const TextStyle kTen{.font = {.size = 10}};  // a character is 6 points wide, a line 12.5 high

// The picture of an element laid out at its own size, or in a given one.
std::string pictureOf(Element element, std::optional<Size> size = {}) {
    FixedTextRuler ruler;
    const NodePointer node = std::move(element).take();
    const Size frame = size.value_or(node->measure(ruler, {}));
    node->place(ruler, {{}, frame});
    SceneBuilder scene(Palette::light(), frame);
    scene.child(0, *node);
    std::string lines;
    for (const DisplayItem& item : std::move(scene).finish().picture.items) {
        std::string line = printed(DisplayList{frame, {item}});
        line.resize(line.find(" rgba"));
        lines += line + "\n";
    }
    return lines;
}

TEST(StackLayout, GivesTheStiffWhatTheyNeedAndTheFlexibleTheRest) {
    struct Case {
        const char* name;
        double room;
        std::vector<LengthRange> members;
        std::vector<double> want;
    };
    for (const Case& c :
         {Case{"nobody", 10, {}, {}}, Case{"equal parts", 30, {{0, kMost}, {0, kMost}}, {15, 15}},
          Case{"a stiff one first", 100, {{0, kMost}, {20, 20}, {0, kMost}}, {40, 20, 40}},
          Case{"a bounded one takes less than its part", 100, {{0, 10}, {0, kMost}}, {10, 90}},
          Case{"too little room", 10, {{8, 8}, {8, 8}, {0, kMost}}, {8, 8, 0}},
          Case{"no room", -5, {{3, 9}}, {3}}, Case{"endless room", kMost, {{3, 9}, {0, 5}}, {9, 5}}}) {
        EXPECT_EQ(sharedOut(c.room, c.members), c.want) << c.name;
    }
}

TEST(Layout, PlacesRowsAndColumns) {
    EXPECT_EQ(pictureOf(vstack({.alignment = Alignment::start, .spacing = 4}, text("wide", kTen),
                               text("in", kTen))),
              "0/0: text \"wide\" 0,0 24x12.5 size 10\n"
              "0/1: text \"in\" 0,16.5 12x12.5 size 10\n");
    EXPECT_EQ(pictureOf(vstack({.alignment = Alignment::end}, text("wide", kTen), text("in", kTen))),
              "0/0: text \"wide\" 0,0 24x12.5 size 10\n"
              "0/1: text \"in\" 12,12.5 12x12.5 size 10\n");
    EXPECT_EQ(pictureOf(hstack({}, text("a", kTen), spacer(), text("b", kTen)), Size{100, 20}),
              "0/0: text \"a\" 0,3.75 6x12.5 size 10\n"
              "0/2: text \"b\" 94,3.75 6x12.5 size 10\n");
    EXPECT_EQ(pictureOf(vstack({.spacing = 2}, text("line", kTen), divider()), Size{50, 30}),
              "0/0: text \"line\" 13,0 24x12.5 size 10\n"
              "0/1: fill 0,14.5 50x1\n");
}

TEST(Layout, WrapsATextInTheRoomThatItsNeighboursLeave) {
    EXPECT_EQ(pictureOf(hstack({.spacing = 4}, text("one two", kTen), text("fix", kTen)), Size{46, 30}),
              "0/0: text \"one two\" 0,2.5 18x25 size 10\n"
              "0/1: text \"fix\" 22,8.75 18x12.5 size 10\n")
        << "the stiffer of two texts keeps its line";
}

TEST(Layout, PadsFramesAndCards) {
    EXPECT_EQ(pictureOf(text("ab", kTen).padding({1, 2, 3, 4}).background({.radius = 5, .fill = Ink::green})),
              "0: fill 0,0 18x16.5 radius 5\n"
              "0/0/0: text \"ab\" 2,1 12x12.5 size 10\n");
    EXPECT_EQ(pictureOf(text("ab", kTen).frame({.width = 40, .height = 20})),
              "0/0: text \"ab\" 14,3.75 12x12.5 size 10\n");
    EXPECT_EQ(pictureOf(text("ab", kTen)
                            .frame({.minWidth = 48, .horizontal = Alignment::start})
                            .background({.fill = Ink::red})),
              "0: fill 0,0 48x12.5\n"
              "0/0/0: text \"ab\" 0,0 12x12.5 size 10\n");
    EXPECT_EQ(
        pictureOf(hstack({}, text("ab", kTen).frame({.maxWidth = kMost}), text("c", kTen)), Size{30, 12.5}),
        "0/0/0: text \"ab\" 6,0 12x12.5 size 10\n"
        "0/1: text \"c\" 24,0 6x12.5 size 10\n");
}

TEST(Layout, NarrowsARowThatIsTooWideAboutItsLeftEdge) {
    const auto row = [] {
        return hstack({.spacing = 4}, text("abcd", kTen), text("efgh", kTen)).condensedToFit();
    };
    EXPECT_EQ(pictureOf(row().padding(Insets::horizontal(3)), Size{58, 12.5}),
              "0/0/0/0: text \"abcd\" 3,0 24x12.5 size 10\n"
              "0/0/0/1: text \"efgh\" 31,0 24x12.5 size 10\n");
    EXPECT_EQ(pictureOf(row().padding(Insets::horizontal(3)), Size{32, 12.5}),
              "0/0/0/0: text \"abcd\" 3,0 24x12.5 size 10 condensed 0.5\n"
              "0/0/0/1: text \"efgh\" 17,0 24x12.5 size 10 condensed 0.5\n");
    EXPECT_EQ(pictureOf(hstack({}, row().frame({.width = 26})).condensedToFit(), Size{13, 12.5}),
              "0/0/0/0/0/0: text \"abcd\" 0,0 24x12.5 size 10 condensed 0.25\n"
              "0/0/0/0/0/1: text \"efgh\" 7,0 24x12.5 size 10 condensed 0.25\n")
        << "narrowings multiply";
}

}  // namespace
}  // namespace norvane
