#include <array>
#include <cmath>
#include <limits>
#include <sstream>
#include <vector>

#include "platform/scripted/FixedTextRuler.h"
#include "views/DepthStack.h"
#include "views/Grid.h"
#include "views/ScreenTest.h"
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

// A thing that tells its name and has a size; without one it takes what it is offered.
Element box(std::string name, const FrameSize& size = {}) {
    return shape(Outline::rectangle(), {}).frame(size).accessible({.name = std::move(name)});
}
Element fixed(std::string name, double width, double height) {
    return box(std::move(name), {.width = width, .height = height});
}
// A text tells its frame by itself.
Element words(const std::string& words) {
    return text(words, kTen);
}

void tell(std::ostream& out, const AccessibleNode& node) {
    if (!node.name.empty()) {
        const auto& [origin, size] = node.frame;
        out << (out.tellp() > 0 ? ", " : "") << node.name << ' ' << origin.x << ',' << origin.y << ' '
            << size.width << 'x' << size.height;
    }
    for (const AccessibleNode& child : node.children)
        tell(out, child);
}

// Where the things stand that tell their names, one after another: "a 0,0 10x20, b 10,0 5x5". Laid out at
// the size that the element likes, or into the given one.
std::string laidOut(Element element, std::optional<Size> size = {}) {
    ScriptedMachine machine;
    HostedView view([&] { return std::move(element); }, machine.platform());
    const Size fitting = view.fittingSize({1000, 1000});
    view.displayList(size.value_or(fitting), {});
    std::ostringstream out;
    tell(out, view.accessibleTree());
    return out.str();
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
          Sum{"priority before stiffness", 50, {{20, 20}, {10, 90, 1}}, {20, 30}},
          Sum{"three priorities", 60, {{5, 30, -1}, {5, 30, 2}, {5, 30}}, {5, 30, 25}}}) {
        EXPECT_EQ(sharedOut(c.room, c.members), c.want) << c.name;
    }
}

TEST(Layout, SharesTheRoomOfRowsAndColumns) {
    EXPECT_EQ(laidOut(vstack({.spacing = 4}, fixed("a", 30, 10), fixed("b", 10, 5))),
              "a 0,0 30x10, b 10,14 10x5");
    EXPECT_EQ(laidOut(hstack({.alignment = Alignment::end, .spacing = -4}, fixed("a", 30, 10),
                             when(false, [] { return box("?"); }), Element::none(), fixed("b", 10, 5))),
              "a 0,0 30x10, b 26,5 10x5")
        << "what is absent leaves no gap";
    EXPECT_EQ(laidOut(hstack({}, words("aaaa bbbbbb"), spacer(), fixed("b", 10, 10)), Size{60, 25}),
              "aaaa bbbbbb 0,0 36x25, b 50,7.5 10x10")
        << "what a text leaves that breaks";
    EXPECT_EQ(laidOut(hstack({}, fixed("a", 30, 10), spacer(8), fixed("b", 30, 10)), Size{50, 10}),
              "a 0,0 30x10, b 38,0 30x10")
        << "a spacer's least, beyond the end";
    EXPECT_EQ(laidOut(hstack({}, words("aaaa aaaa"), words("bbbb bbbb").layoutPriority(1)), Size{80, 25}),
              "aaaa aaaa 0,0 24x25, bbbb bbbb 24,6.25 54x12.5");
    EXPECT_EQ(laidOut(hstack({.spacing = 4}, words("one two"), words("fix")), Size{46, 30}),
              "one two 0,2.5 18x25, fix 22,8.75 18x12.5")
        << "the stiffer of two texts keeps its line";
}

TEST(Layout, FillsDepthStacksAndGrids) {
    EXPECT_EQ(laidOut(zstack({}, fixed("a", 30, 10), fixed("b", 10, 20))), "a 0,5 30x10, b 10,0 10x20");
    EXPECT_EQ(laidOut(zstack({.horizontal = Alignment::end, .vertical = Alignment::start}, box("a"),
                             fixed("b", 10, 10)),
                      Size{40, 20}),
              "a 0,0 40x20, b 30,0 10x10");

    const auto of = [](const GridOptions& options, int count) {
        std::vector<Element> members;
        for (int i = 0; i < count; ++i)
            members.push_back(fixed(std::to_string(i), 10, 10 + i));
        return grid(options, std::move(members));
    };
    const GridOptions two{.columns = 2, .columnSpacing = 4, .rowSpacing = 3};
    EXPECT_EQ(laidOut(of(two, 3), Size{44, 40}), "0 5,0 10x10, 1 29,0 10x11, 2 5,14 10x12");
    EXPECT_EQ(laidOut(of({.columns = 4, .alignment = Alignment::start}, 1), Size{80, 10}), "0 0,0 10x10");
    EXPECT_EQ(laidOut(of({.columns = 0}, 2)), "0 -5,0 10x10, 1 -5,10 10x11") << "no columns are as one";
}

TEST(Layout, FramesAndPaddingHaveASizeOfTheirOwn) {
    const auto outer = [](Element inner) {
        return std::move(inner).accessible({.name = "out", .containsMore = true});
    };
    const auto framed = [&](const FrameSize& size) { return outer(fixed("in", 10, 10).frame(size)); };
    EXPECT_EQ(laidOut(framed({.width = 40, .horizontal = Alignment::end})), "out 0,0 40x10, in 30,0 10x10");
    EXPECT_EQ(laidOut(framed({.maxWidth = 30})), "out 0,0 10x10, in 0,0 10x10") << "nothing is offered";
    EXPECT_EQ(laidOut(hstack({}, framed({.minWidth = 50, .maxWidth = kMost}), spacer()), Size{40, 10}),
              "out 0,0 50x10, in 20,0 10x10");
    EXPECT_EQ(laidOut(outer(fixed("in", 10, 10).padding({1, 2, 3, 4}))), "out 0,0 16x14, in 2,1 10x10");
    EXPECT_EQ(laidOut(box("in").padding(Insets::all(50)), Size{30, 20}), "in 50,50 0x0");
    EXPECT_EQ(laidOut(fixed("in", 10, 20).background(fixed("behind", 99, 99)).overlay(box("before"))),
              "behind 0,0 10x20, in 0,0 10x20, before 0,0 10x20");
}

TEST(Layout, AScrollAreaGivesWayDownToItsLeast) {
    const auto panel = [](double contents, double height) {
        return laidOut(vstack({}, fixed("top", 30, 20),
                              scrollArea(fixed("in", 30, contents)).accessible({.name = "area"})),
                       Size{30, height});
    };
    EXPECT_EQ(panel(200, 120), "top 0,0 30x20, area 0,20 30x100");
    EXPECT_EQ(panel(200, 30), "top 0,0 30x20, area 0,20 30x60");
    EXPECT_EQ(panel(40, 30), "top 0,0 30x20, area 0,20 30x40");
}

class CountingRuler final : public TextRuler {
 public:
    TextMetrics measure(std::string_view text, const TextStyle& style, double maxWidth) override {
        ++questions;
        return FixedTextRuler().measure(text, style, maxWidth);
    }
    int questions = 0;
};

// One level of a deep tree.
Element wrapped(Element inner, int level) {
    const FrameSize size{.minWidth = 5, .maxWidth = kMost};
    if (level % 4 == 0) return hstack({}, std::move(inner), spacer(), words("x"));
    if (level % 4 == 1) return vstack({}, std::move(inner).padding(Insets::all(1)).frame(size));
    if (level % 4 == 2) return zstack({}, std::move(inner).background(words("b")).condensedToFit());
    std::vector<Element> members;
    members.push_back(std::move(inner));
    return grid({.columns = 2}, std::move(members));
}

TEST(Layout, MeasuresEachTextAFewTimesHoweverDeepItIs) {
    constexpr int kLevels = 200;
    Element element = words("one two three four");
    for (int level = 0; level < kLevels; ++level)
        element = wrapped(std::move(element), level);
    const auto tree = childrenOf(listOf(std::move(element)));
    CountingRuler ruler;
    tree.at(0).node->measure(ruler, {1000, {}});
    tree.at(0).node->place(ruler, {{}, {300, 400}});
    EXPECT_LE(ruler.questions, 5 * kLevels);
    EXPECT_GT(ruler.questions, kLevels / 5);
}

// Something of everything, with a number in every place where one can be.
Element everything(const std::array<double, 23>& n) {
    const ShapeStyle style{.fill = Ink::red,
                           .stroke = Stroke{Ink::blue, {.width = n[0], .dashOn = n[1]}},
                           .shadows = {{.paint = Ink::blue, .radius = n[2], .offset = {n[3], -n[3]}}},
                           .leadingPart = n[4]};
    const GridOptions options{.columns = 0, .columnSpacing = n[5], .rowSpacing = n[6]};
    return vstack(
        {.spacing = n[7]}, shape(Outline::arc(n[8], 1), style),
        scrollArea(words("one").frame({.height = n[9]}), n[10]),
        grid(options, forEach(std::vector{n[11], 9.0}, [](double x) { return fixed("", x, 9); })),
        hstack({}, words("two").layoutPriority(n[12]), spacer(n[13]), symbol("pin", {.size = n[14]}),
               text("x", {.font = {.size = n[15]}, .lineSpacing = n[16]}))
            .padding(Insets::all(n[17]))
            .frame({.minWidth = n[18], .maxHeight = n[19]}),
        words("three").offset({n[20], 0}).scaled(n[21]).clipped(n[22]).opacity(n[22]));
}

// In rooms of every kind, moving from one number to the next; what cannot be painted is left out.
TEST(Layout, BearsNumbersThatAreNone) {
    constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinite = std::numeric_limits<double>::infinity();
    std::array<double, 23> numbers;
    numbers.fill(1);
    for (double& number : numbers) {
        ScriptedMachine machine;
        HostedView view([&] { return everything(numbers); }, machine.platform());
        view.appear();
        for (const double hostile : {kNaN, kInfinite, -kInfinite, -7.0, 1e300, -1e300, 1.0}) {
            view.animate(Animation::spring(0.5, 0.6), [&] { number = hostile; });
            SCOPED_TRACE(std::to_string(&number - numbers.data()) + ": " + std::to_string(hostile));
            for (const double room : {500.0, kNaN, -3.0}) {
                const Size size = view.fittingSize({room, room});
                EXPECT_TRUE(size.width >= 0 && size.width <= 500 && size.height >= 0 && size.height <= 500);
                view.pointer({PointerEvent::Kind::scroll, {5, 5}, {hostile, hostile}});
                machine.advance(std::chrono::milliseconds(100));
                const DisplayList list = view.displayList(size, machine.time.monotonic());
                for (const DisplayItem* item : flatItems(list.items))
                    EXPECT_TRUE(std::isfinite(item->bounds.maxX()) && std::isfinite(item->bounds.maxY()));
            }
        }
    }
}

// A figure beside a text, and a paragraph above a narrowed row.
class SteadyLayoutTest : public ScreenTest {
 protected:
    Element body() override {
        return vstack({.alignment = Alignment::start}, hstack({}, words(figure_), words("beside")),
                      words(paragraph_).frame({.width = 60}),
                      hstack({.spacing = 4}, words("abcdefgh"), words("ijklmnop")).condensedToFit());
    }
    std::string figure_, paragraph_;
};

// What keeps its room is not laid out again.
TEST_F(SteadyLayoutTest, MovesTheNeighboursOfATextWhereItTakesAnotherRoom) {
    show();
    struct Change {
        const char *figure, *paragraph;
        double beside, below;
    };
    // A line has ten letters. The last two paragraphs are as long as each other, and break differently.
    for (const Change& c :
         {Change{"38 %", "two", 24, 25}, Change{"9 %", "two", 18, 25},
          Change{"99 %", "aaaa bbbbb cc", 24, 37.5}, Change{"99 %", "a bbbbbbbbb c", 24, 50}}) {
        change([&] {
            figure_ = c.figure;
            paragraph_ = c.paragraph;
        });
        EXPECT_EQ(frameOf("beside").minX(), c.beside) << c.figure;
        EXPECT_EQ(frameOf("ijklmnop"), (Rect{{52, c.below}, {48, 12.5}})) << c.paragraph;
    }
    for (int evaluation = 0; evaluation < 2; ++evaluation) {
        view_.invalidate();
        paint(Size{75, picture_.size.height});
        EXPECT_EQ(frameOf("ijklmnop").minX(), 39) << "narrowed rather than wrapped";
        EXPECT_EQ(shown("ijklmnop").text.scaleX, 0.75) << "also after an evaluation that leads to no layout";
        EXPECT_EQ(shown("ijklmnop").text.scaleY, 1);
    }
}

}  // namespace
}  // namespace norvane
