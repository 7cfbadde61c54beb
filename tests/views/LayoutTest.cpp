#include <gtest/gtest.h>

#include <cmath>
#include <limits>
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

struct Case {
    const char* name;
    std::function<Element()> element;
    std::optional<Size> size;
    const char* want;
};
void expectLaidOut(const std::vector<Case>& cases) {
    for (const Case& c : cases)
        EXPECT_EQ(laidOut(c.element, c.size), c.want) << c.name;
}

Element fixed(const char* name, double width, double height) {
    return box(name, {.width = width, .height = height});
}
// A text that tells its frame by itself.
Element words(const char* text) {
    return norvane::text(text, kTen);
}

TEST(StackLayout, GivesTheStiffWhatTheyNeedAndTheFlexibleTheRest) {
    constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
    struct Sum {
        const char* name;
        double room;
        std::vector<LengthRange> members;
        std::vector<double> want;
    };
    for (const Sum& c :
         {Sum{"nobody", 10, {}, {}}, Sum{"equal parts", 30, {{0, kMost}, {0, kMost}}, {15, 15}},
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
    EXPECT_EQ(sharedOut(kNaN, std::vector<LengthRange>{{3, 9}, {1, 1}}).size(), 2U);
}

TEST(Layout, PlacesTheMembersOfRowsAndColumns) {
    expectLaidOut({
        {"at the start",
         [] {
             return vstack({.alignment = Alignment::start, .spacing = 4}, fixed("a", 30, 10),
                           fixed("b", 10, 5));
         },
         {},
         "a 0,0 30x10, b 0,14 10x5"},
        {"in the middle",
         [] { return vstack({}, fixed("a", 30, 10), fixed("b", 10, 5)); },
         {},
         "a 0,0 30x10, b 10,10 10x5"},
        {"at the end",
         [] { return vstack({.alignment = Alignment::end}, fixed("a", 30, 10), fixed("b", 10, 5)); },
         {},
         "a 0,0 30x10, b 20,10 10x5"},
        {"a row at its top",
         [] {
             return hstack({.alignment = Alignment::start, .spacing = 2}, fixed("a", 30, 10),
                           fixed("b", 10, 5));
         },
         {},
         "a 0,0 30x10, b 32,0 10x5"},
        {"a row at its bottom",
         [] { return hstack({.alignment = Alignment::end}, fixed("a", 30, 10), fixed("b", 10, 5)); },
         {},
         "a 0,0 30x10, b 30,5 10x5"},
        {"overlapping",
         [] { return hstack({.spacing = -4}, fixed("a", 30, 10), fixed("b", 10, 10)); },
         {},
         "a 0,0 30x10, b 26,0 10x10"},
        {"one alone has no gaps",
         [] { return hstack({.spacing = 9}, fixed("a", 30, 10)); },
         {},
         "a 0,0 30x10"},
        {"what is absent leaves no gap",
         [] {
             return hstack({.spacing = 9}, fixed("a", 30, 10), when(false, [] { return box("?"); }),
                           Element::none(), fixed("b", 10, 10));
         },
         {},
         "a 0,0 30x10, b 39,0 10x10"},
        {"a list is so many members",
         [] {
             return vstack(
                 {}, fixed("a", 10, 10),
                 forEach(std::vector{"b", "c"}, [](const char* name) { return fixed(name, 10, 5); }),
                 fixed("d", 10, 10));
         },
         {},
         "a 0,0 10x10, b 0,10 10x5, c 0,15 10x5, d 0,20 10x10"},
        {"nothing at all", [] { return vstack({.spacing = 5}); }, Size{10, 10}, ""},
        {"a line across",
         [] { return vstack({.spacing = 2}, fixed("a", 10, 10), divider().accessible({.name = "line"})); },
         Size{50, 30}, "a 20,0 10x10, line 0,12 50x1"},
    });
}

TEST(Layout, SharesARowsRoom) {
    expectLaidOut({
        {"a spacer pushes apart in a row",
         [] { return hstack({}, fixed("a", 10, 10), spacer(), fixed("b", 10, 10)); }, Size{100, 20},
         "a 0,5 10x10, b 90,5 10x10"},
        {"and in a column", [] { return vstack({}, fixed("a", 10, 10), spacer(), fixed("b", 10, 10)); },
         Size{20, 100}, "a 5,0 10x10, b 5,90 10x10"},
        {"and what a text leaves that breaks",
         [] { return hstack({}, words("aaaa bbbbbb"), spacer(), fixed("b", 10, 10)); }, Size{60, 25},
         "aaaa bbbbbb 0,0 36x25, b 50,7.5 10x10"},
        {"two share what is left", [] { return hstack({}, spacer(), fixed("a", 10, 10), spacer()); },
         Size{100, 10}, "a 45,0 10x10"},
        {"a spacer keeps its least where there is no room",
         [] { return hstack({}, fixed("a", 30, 10), spacer(8), fixed("b", 30, 10)); }, Size{50, 10},
         "a 0,0 30x10, b 38,0 30x10"},
        {"flexible ones share equally", [] { return hstack({}, box("a"), box("b")); }, Size{30, 10},
         "a 0,0 15x10, b 15,0 15x10"},
        {"beside a stiff one", [] { return hstack({.spacing = 5}, box("a"), fixed("b", 20, 10), box("c")); },
         Size{100, 10}, "a 0,0 35x10, b 40,0 20x10, c 65,0 35x10"},
        {"least widths hold",
         [] { return hstack({}, box("a", {.minWidth = 30, .maxWidth = kMost}), box("b")); }, Size{40, 10},
         "a 0,0 30x10, b 30,0 10x10"},
        {"most widths too",
         [] { return hstack({}, box("a", {.maxWidth = 10}), box("b", {.maxWidth = kMost})); }, Size{40, 10},
         "a 0,0 10x10, b 10,0 30x10"},
        {"what does not fit goes beyond the end",
         [] { return hstack({}, fixed("a", 30, 10), fixed("b", 30, 10)); }, Size{40, 10},
         "a 0,0 30x10, b 30,0 30x10"},
        {"priority first",
         [] { return hstack({}, words("aaaa aaaa"), words("bbbb bbbb").layoutPriority(1)); }, Size{80, 25},
         "aaaa aaaa 0,0 24x25, bbbb bbbb 24,6.25 54x12.5"},
        {"the stiffer of two texts keeps its line",
         [] { return hstack({.spacing = 4}, words("one two"), words("fix")); }, Size{46, 30},
         "one two 0,2.5 18x25, fix 22,8.75 18x12.5"},
        {"a text wraps in a narrow column and what is below moves down",
         [] { return vstack({.alignment = Alignment::start}, words("one two"), fixed("b", 10, 10)); },
         Size{20, 40}, "one two 0,0 18x25, b 0,25 10x10"},
    });
    EXPECT_EQ(fittingSize([] { return hstack({}, fixed("a", 10, 10), spacer(8)); }), (Size{18, 10}))
        << "a spacer takes no room across";
    EXPECT_EQ(fittingSize([] { return vstack({}, fixed("a", 10, 10), spacer(8)); }), (Size{10, 18}));
}

TEST(Layout, PutsDepthStacksUponOneAnother) {
    expectLaidOut({
        {"as large as the largest in each direction",
         [] {
             return zstack({}, fixed("a", 30, 10), fixed("b", 10, 20))
                 .accessible({.name = "all", .containsMore = true});
         },
         {},
         "all 0,0 30x20, a 0,5 30x10, b 10,0 10x20"},
        {"in a corner",
         [] {
             return zstack({.horizontal = Alignment::end, .vertical = Alignment::start}, fixed("a", 30, 10),
                           fixed("b", 10, 20));
         },
         {},
         "a 0,0 30x10, b 20,0 10x20"},
        {"flexible ones fill it", [] { return zstack({}, box("a"), fixed("b", 10, 10)); }, Size{40, 20},
         "a 0,0 40x20, b 15,5 10x10"},
    });
}

std::vector<Element> boxes(int count, double width, double height) {
    std::vector<Element> members;
    for (int i = 0; i < count; ++i)
        members.push_back(fixed(std::string(1, static_cast<char>('a' + i)).c_str(), width, height + i));
    return members;
}

TEST(Layout, FillsGridsRowByRow) {
    const auto of = [](GridOptions options, int count) {
        return [=] { return grid(options, boxes(count, 10, 10)); };
    };
    const GridOptions two{.columns = 2, .columnSpacing = 4, .rowSpacing = 3};
    expectLaidOut({
        {"two rows, the last one partial", of(two, 3), Size{44, 40},
         "a 5,0 10x10, b 29,0 10x11, c 5,14 10x12"},
        {"full rows", of(two, 4), Size{44, 40}, "a 5,0 10x10, b 29,0 10x11, c 5,14 10x12, d 29,14 10x13"},
        {"at the start of the columns",
         of({.columns = 2, .columnSpacing = 4, .alignment = Alignment::start}, 2), Size{44, 40},
         "a 0,0 10x10, b 24,0 10x11"},
        {"one column", of({.columns = 1, .rowSpacing = 2}, 2), Size{20, 30}, "a 5,0 10x10, b 5,12 10x11"},
        {"fewer members than columns", of({.columns = 4}, 1), Size{40, 10}, "a 0,0 10x10"},
        {"as wide as its widest member in each column",
         of(two, 3),
         {},
         "a 0,0 10x10, b 14,0 10x11, c 0,14 10x12"},
        {"no members", of(two, 0), Size{40, 10}, ""},
    });
    EXPECT_EQ(fittingSize(of(two, 3)), (Size{24, 26}));
    EXPECT_EQ(fittingSize(of({.columns = 0}, 3)).height, 33) << "no columns are as one";

    EXPECT_EQ(columnWidth(100, 3, 5), 30);
    EXPECT_EQ(columnWidth(8, 3, 5), 0) << "the gaps take it all";
    EXPECT_EQ(columnWidth(100, 0, 5), 0);
    EXPECT_EQ(rowHeights(std::vector<double>{3, 5, 4}, 2), (std::vector<double>{5, 4}));
    EXPECT_EQ(rowHeights(std::vector<double>{3, 5}, 0), (std::vector<double>{3, 5}));
    EXPECT_EQ(rowHeights({}, 3), std::vector<double>{});
}

TEST(Layout, FramesHaveASizeOfTheirOwn) {
    const auto framed = [](const FrameSize& size) {
        return [size] {
            return fixed("in", 10, 10).frame(size).accessible({.name = "out", .containsMore = true});
        };
    };
    expectLaidOut({
        {"fixed", framed({.width = 40, .height = 20}), {}, "out 0,0 40x20, in 15,5 10x10"},
        {"in a corner",
         framed({.width = 40, .height = 20, .horizontal = Alignment::end, .vertical = Alignment::start}),
         {},
         "out 0,0 40x20, in 30,0 10x10"},
        {"one side only", framed({.width = 40}), {}, "out 0,0 40x10, in 15,0 10x10"},
        {"at least", framed({.minWidth = 30, .minHeight = 4}), {}, "out 0,0 30x10, in 10,0 10x10"},
        {"smaller than what is in it", framed({.width = 4, .height = 4}), {}, "out 0,0 4x4, in -3,-3 10x10"},
        {"at most, where nothing is offered", framed({.maxWidth = 30}), {}, "out 0,0 10x10, in 0,0 10x10"},
    });
    const auto inRow = [&](const FrameSize& size) {
        return [=] { return hstack({}, framed(size)(), spacer()); };
    };
    expectLaidOut({
        {"all that is offered", inRow({.maxWidth = kMost, .horizontal = Alignment::start}), Size{60, 10},
         "out 0,0 60x10, in 0,0 10x10"},
        {"no more than its most", inRow({.maxWidth = 20}), Size{60, 10}, "out 0,0 20x10, in 5,0 10x10"},
        {"no less than its least", inRow({.minWidth = 50, .maxWidth = kMost}), Size{40, 10},
         "out 0,0 50x10, in 20,0 10x10"},
    });
}

TEST(Layout, PadsAndLaysBehindAndBefore) {
    expectLaidOut({
        {"padding keeps it away from the edges",
         [] {
             return fixed("in", 10, 10)
                 .padding({1, 2, 3, 4})
                 .accessible({.name = "out", .containsMore = true});
         },
         {},
         "out 0,0 16x14, in 2,1 10x10"},
        {"padding takes from what is offered", [] { return box("in").padding(Insets::all(5)); }, Size{30, 20},
         "in 5,5 20x10"},
        {"padding larger than the room", [] { return box("in").padding(Insets::all(50)); }, Size{30, 20},
         "in 50,50 0x0"},
        {"what is behind and before is as large as the thing",
         [] { return fixed("in", 10, 20).background(box("behind")).overlay(box("before")); },
         {},
         "behind 0,0 10x20, in 0,0 10x20, before 0,0 10x20"},
        {"also where it would be larger",
         [] { return fixed("in", 10, 20).background(fixed("behind", 99, 99)); },
         {},
         "behind 0,0 10x20, in 0,0 10x20"},
        {"nothing behind is nothing",
         [] { return fixed("in", 10, 20).background(Element::none()).overlay(Element::none()); },
         {},
         "in 0,0 10x20"},
        {"a symbol is a square",
         [] { return symbol("gearshape", {.size = 12}).accessible({.name = "s"}); },
         {},
         "s 0,0 15x15"},
        {"a shape takes nothing where nothing is offered", [] { return box("in"); }, {}, "in 0,0 0x0"},
    });
}

TEST(Layout, AScrollAreaGivesWayDownToItsLeast) {
    const auto area = [] { return scrollArea(fixed("in", 30, 200)); };
    EXPECT_EQ(fittingSize(area), (Size{30, 200}));
    EXPECT_EQ(fittingSize(area, {1000, 100}), (Size{30, 100}));
    const auto panel = [](double contents) {
        return [contents] {
            return vstack({}, fixed("top", 30, 20),
                          scrollArea(fixed("in", 30, contents)).accessible({.name = "area"}),
                          fixed("end", 30, 20));
        };
    };
    expectLaidOut({
        {"the rest stays as it is", panel(200), Size{30, 140},
         "top 0,0 30x20, area 0,20 30x100, end 0,120 30x20"},
        {"its least", panel(200), Size{30, 50}, "top 0,0 30x20, area 0,20 30x60, end 0,80 30x20"},
        {"contents below that", panel(40), Size{30, 50}, "top 0,0 30x20, area 0,20 30x40, end 0,60 30x20"},
        {"no larger than its contents", panel(70), {}, "top 0,0 30x20, area 0,20 30x70, end 0,90 30x20"},
    });
}

}  // namespace
}  // namespace norvane
