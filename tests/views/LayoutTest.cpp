#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "views/DepthStack.h"
#include "views/Divider.h"
#include "views/Grid.h"
#include "views/GridLayout.h"
#include "views/LaidOut.h"
#include "views/ScrollArea.h"
#include "views/ShapeElement.h"
#include "views/Spacer.h"
#include "views/Stack.h"
#include "views/StackLayout.h"
#include "views/Symbol.h"
#include "views/Text.h"

namespace norvane {
namespace {

constexpr double kMost = Proposal::kMost;

Element fixed(const char* name, double width, double height) {
    return box(name, {.width = width, .height = height});
}
// A text that tells its frame by itself.
Element words(const char* text) {
    return norvane::text(text, kTen);
}

TEST(StackLayout, GivesTheStiffWhatTheyNeedAndTheFlexibleTheRest) {
    struct Sum {
        const char* name;
        double room;
        std::vector<LengthRange> members;
        std::vector<double> want;
    };
    for (const Sum& c :
         {Sum{"nobody", 10, {}, {}},
          Sum{"a stiff one first", 100, {{0, kMost}, {20, 20}, {0, kMost}}, {40, 20, 40}},
          Sum{"a bounded one takes less than its part", 100, {{0, 10}, {0, kMost}}, {10, 90}},
          Sum{"too little room", 10, {{8, 8}, {8, 8}, {0, kMost}}, {8, 8, 0}},
          Sum{"no room", -5, {{3, 9}}, {3}}, Sum{"endless room", kMost, {{3, 9}, {0, 5}}, {9, 5}},
          Sum{"priority before fairness", 50, {{10, 40}, {10, 40, 1}}, {10, 40}},
          Sum{"priority before stiffness", 50, {{20, 20}, {10, 90, 1}}, {20, 30}},
          Sum{"three priorities", 60, {{5, 30}, {5, 30, 2}, {5, 30, 1}}, {5, 30, 25}},
          Sum{"a negative priority comes last", 50, {{10, 40, -1}, {10, 40}}, {10, 40}}}) {
        EXPECT_EQ(sharedOut(c.room, c.members), c.want) << c.name;
    }
    EXPECT_EQ(
        sharedOut(std::numeric_limits<double>::quiet_NaN(), std::vector<LengthRange>{{3, 9}, {1, 1}}).size(),
        2U);
}

TEST(Layout, PlacesTheMembersOfRowsAndColumns) {
    const auto column = [](const StackOptions& options) {
        return laidOut(vstack(options, fixed("a", 30, 10), fixed("b", 10, 5)));
    };
    EXPECT_EQ(column({.alignment = Alignment::start, .spacing = 4}), "a 0,0 30x10, b 0,14 10x5");
    EXPECT_EQ(column({}), "a 0,0 30x10, b 10,10 10x5");
    EXPECT_EQ(column({.alignment = Alignment::end}), "a 0,0 30x10, b 20,10 10x5");
    const auto row = [](const StackOptions& options) {
        return laidOut(hstack(options, fixed("a", 30, 10), fixed("b", 10, 5)));
    };
    EXPECT_EQ(row({.alignment = Alignment::start, .spacing = 2}), "a 0,0 30x10, b 32,0 10x5");
    EXPECT_EQ(row({.alignment = Alignment::end, .spacing = -4}), "a 0,0 30x10, b 26,5 10x5");

    EXPECT_EQ(laidOut(hstack({.spacing = 9}, fixed("a", 30, 10), when(false, [] { return box("?"); }),
                             Element::none(), fixed("b", 10, 10))),
              "a 0,0 30x10, b 39,0 10x10")
        << "what is absent leaves no gap";
    EXPECT_EQ(
        laidOut(vstack({}, fixed("a", 10, 10),
                       forEach(std::vector{"b", "c"}, [](const char* name) { return fixed(name, 10, 5); }),
                       fixed("d", 10, 10))),
        "a 0,0 10x10, b 0,10 10x5, c 0,15 10x5, d 0,20 10x10");
    EXPECT_EQ(laidOut(vstack({.spacing = 5}), Size{10, 10}), "");
    EXPECT_EQ(laidOut(vstack({.spacing = 2}, fixed("a", 10, 10), divider().accessible({.name = "line"})),
                      Size{50, 30}),
              "a 20,0 10x10, line 0,12 50x1");
}

TEST(Layout, SharesARowsRoom) {
    EXPECT_EQ(laidOut(hstack({}, fixed("a", 30, 10), spacer(), fixed("b", 30, 10)), Size{100, 20}),
              "a 0,5 30x10, b 70,5 30x10");
    EXPECT_EQ(laidOut(vstack({}, fixed("a", 10, 10), spacer(), fixed("b", 10, 10)), Size{20, 100}),
              "a 5,0 10x10, b 5,90 10x10");
    EXPECT_EQ(laidOut(hstack({}, words("aaaa bbbbbb"), spacer(), fixed("b", 10, 10)), Size{60, 25}),
              "aaaa bbbbbb 0,0 36x25, b 50,7.5 10x10")
        << "what a text leaves that breaks";
    EXPECT_EQ(laidOut(hstack({}, spacer(), fixed("a", 10, 10), spacer()), Size{100, 10}), "a 45,0 10x10");
    EXPECT_EQ(laidOut(hstack({}, fixed("a", 30, 10), spacer(8), fixed("b", 30, 10)), Size{50, 10}),
              "a 0,0 30x10, b 38,0 30x10")
        << "a spacer's least, beyond the end";
    EXPECT_EQ(laidOut(hstack({.spacing = 5}, box("a"), fixed("b", 20, 10), box("c")), Size{100, 10}),
              "a 0,0 35x10, b 40,0 20x10, c 65,0 35x10");
    EXPECT_EQ(laidOut(hstack({}, box("a", {.minWidth = 30, .maxWidth = kMost}), box("b")), Size{40, 10}),
              "a 0,0 30x10, b 30,0 10x10");
    EXPECT_EQ(laidOut(hstack({}, box("a", {.maxWidth = 10}), box("b", {.maxWidth = kMost})), Size{40, 10}),
              "a 0,0 10x10, b 10,0 30x10");
    EXPECT_EQ(laidOut(hstack({}, words("aaaa aaaa"), words("bbbb bbbb").layoutPriority(1)), Size{80, 25}),
              "aaaa aaaa 0,0 24x25, bbbb bbbb 24,6.25 54x12.5");
    EXPECT_EQ(laidOut(hstack({.spacing = 4}, words("one two"), words("fix")), Size{46, 30}),
              "one two 0,2.5 18x25, fix 22,8.75 18x12.5")
        << "the stiffer of two texts keeps its line";
    EXPECT_EQ(
        laidOut(vstack({.alignment = Alignment::start}, words("one two"), fixed("b", 10, 10)), Size{20, 40}),
        "one two 0,0 18x25, b 0,25 10x10");
    EXPECT_EQ(fittingSize(hstack({}, fixed("a", 10, 10), spacer(8))), (Size{18, 10}))
        << "a spacer takes no room across";
    EXPECT_EQ(fittingSize(vstack({}, fixed("a", 10, 10), spacer(8))), (Size{10, 18}));
}

TEST(Layout, PutsDepthStacksUponOneAnother) {
    EXPECT_EQ(laidOut(zstack({}, fixed("a", 30, 10), fixed("b", 10, 20))
                          .accessible({.name = "all", .containsMore = true})),
              "all 0,0 30x20, a 0,5 30x10, b 10,0 10x20");
    EXPECT_EQ(laidOut(zstack({.horizontal = Alignment::end, .vertical = Alignment::start}, fixed("a", 30, 10),
                             fixed("b", 10, 20))),
              "a 0,0 30x10, b 20,0 10x20");
    EXPECT_EQ(laidOut(zstack({}, box("a"), fixed("b", 10, 10)), Size{40, 20}), "a 0,0 40x20, b 15,5 10x10");
}

TEST(Layout, FillsGridsRowByRow) {
    const auto of = [](const GridOptions& options, int count) {
        std::vector<Element> members;
        for (int i = 0; i < count; ++i)
            members.push_back(fixed(std::string(1, static_cast<char>('a' + i)).c_str(), 10, 10 + i));
        return grid(options, std::move(members));
    };
    const GridOptions two{.columns = 2, .columnSpacing = 4, .rowSpacing = 3};
    EXPECT_EQ(laidOut(of(two, 4), Size{44, 40}), "a 5,0 10x10, b 29,0 10x11, c 5,14 10x12, d 29,14 10x13");
    EXPECT_EQ(laidOut(of(two, 3)), "a 0,0 10x10, b 14,0 10x11, c 0,14 10x12");
    EXPECT_EQ(laidOut(of({.columns = 2, .columnSpacing = 4, .alignment = Alignment::start}, 2), Size{44, 40}),
              "a 0,0 10x10, b 24,0 10x11");
    EXPECT_EQ(laidOut(of({.columns = 4}, 1), Size{40, 10}), "a 0,0 10x10");
    EXPECT_EQ(laidOut(of(two, 0), Size{40, 10}), "");
    EXPECT_EQ(fittingSize(of(two, 3)), (Size{24, 26}));
    EXPECT_EQ(fittingSize(of({.columns = 0}, 3)).height, 33) << "no columns are as one";

    EXPECT_EQ(columnWidth(100, 3, 5), 30);
    EXPECT_EQ(columnWidth(8, 3, 5), 0) << "the gaps take it all";
    EXPECT_EQ(columnWidth(100, 0, 5), 0);
    EXPECT_EQ(rowHeights(std::vector<double>{3, 5, 4}, 2), (std::vector<double>{5, 4}));
    EXPECT_EQ(rowHeights(std::vector<double>{3, 5}, 0), (std::vector<double>{3, 5}));
}

TEST(Layout, FramesHaveASizeOfTheirOwn) {
    const auto framed = [](const FrameSize& size) {
        return fixed("in", 10, 10).frame(size).accessible({.name = "out", .containsMore = true});
    };
    EXPECT_EQ(laidOut(framed({.width = 40, .height = 20})), "out 0,0 40x20, in 15,5 10x10");
    EXPECT_EQ(laidOut(framed({.width = 40, .horizontal = Alignment::end})), "out 0,0 40x10, in 30,0 10x10");
    EXPECT_EQ(laidOut(framed({.minWidth = 30, .minHeight = 4})), "out 0,0 30x10, in 10,0 10x10");
    EXPECT_EQ(laidOut(framed({.width = 4, .height = 4})), "out 0,0 4x4, in -3,-3 10x10");
    EXPECT_EQ(laidOut(framed({.maxWidth = 30})), "out 0,0 10x10, in 0,0 10x10") << "nothing is offered";
    const auto inRow = [&](const FrameSize& size, double width) {
        return laidOut(hstack({}, framed(size), spacer()), Size{width, 10});
    };
    EXPECT_EQ(inRow({.maxWidth = kMost, .horizontal = Alignment::start}, 60), "out 0,0 60x10, in 0,0 10x10");
    EXPECT_EQ(inRow({.maxWidth = 20}, 60), "out 0,0 20x10, in 5,0 10x10");
    EXPECT_EQ(inRow({.minWidth = 50, .maxWidth = kMost}, 40), "out 0,0 50x10, in 20,0 10x10");
}

TEST(Layout, PadsAndLaysBehindAndBefore) {
    EXPECT_EQ(
        laidOut(fixed("in", 10, 10).padding({1, 2, 3, 4}).accessible({.name = "out", .containsMore = true})),
        "out 0,0 16x14, in 2,1 10x10");
    EXPECT_EQ(laidOut(box("in").padding(Insets::all(5)), Size{30, 20}), "in 5,5 20x10");
    EXPECT_EQ(laidOut(box("in").padding(Insets::all(50)), Size{30, 20}), "in 50,50 0x0");
    EXPECT_EQ(laidOut(fixed("in", 10, 20).background(fixed("behind", 99, 99)).overlay(box("before"))),
              "behind 0,0 10x20, in 0,0 10x20, before 0,0 10x20");
    EXPECT_EQ(laidOut(fixed("in", 10, 20).background(Element::none()).overlay(Element::none())),
              "in 0,0 10x20");
    EXPECT_EQ(laidOut(symbol("gearshape", {.size = 12}).accessible({.name = "s"})), "s 0,0 15x15");
}

TEST(Layout, AScrollAreaGivesWayDownToItsLeast) {
    EXPECT_EQ(fittingSize(scrollArea(fixed("in", 30, 200)), {1000, 100}), (Size{30, 100}));
    const auto panel = [](double contents, std::optional<double> height) {
        return laidOut(
            vstack({}, fixed("top", 30, 20),
                   scrollArea(fixed("in", 30, contents)).accessible({.name = "area"}), fixed("end", 30, 20)),
            height ? std::optional(Size{30, *height}) : std::nullopt);
    };
    EXPECT_EQ(panel(200, 140), "top 0,0 30x20, area 0,20 30x100, end 0,120 30x20");
    EXPECT_EQ(panel(200, 50), "top 0,0 30x20, area 0,20 30x60, end 0,80 30x20");
    EXPECT_EQ(panel(40, 50), "top 0,0 30x20, area 0,20 30x40, end 0,60 30x20");
    EXPECT_EQ(panel(70, {}), "top 0,0 30x20, area 0,20 30x70, end 0,90 30x20");
}

}  // namespace
}  // namespace norvane
