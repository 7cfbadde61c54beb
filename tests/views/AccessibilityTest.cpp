#include "views/Button.h"
#include "views/DepthStack.h"
#include "views/Divider.h"
#include "views/ScreenTest.h"
#include "views/ScrollArea.h"
#include "views/ShapeElement.h"
#include "views/Stack.h"
#include "views/Symbol.h"
#include "views/Text.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

class AccessibilityTest : public ScreenTest {
 protected:
    Element body() override { return make_(); }
    // Two trees that tell the same, whatever their keys are.
    static AccessibleNode withoutKeys(AccessibleNode node) {
        node.key.clear();
        for (AccessibleNode& child : node.children)
            child = withoutKeys(std::move(child));
        return node;
    }
    AccessibleNode tree() {
        paint();
        return withoutKeys(view_.accessibleTree());
    }

    std::function<Element()> make_ = [] { return Element::none(); };
    std::string heard_;
};

TEST_F(AccessibilityTest, TellsASmallScreenAsItStands) {
    make_ = [this] {
        return vstack({.alignment = Alignment::start},                                                 //
                      text("Heat", kTen),                                                              //
                      divider(),                                                                       //
                      hstack({}, symbol("pin", {.size = 8}), text("silent", kTen).accessibleHidden(),  //
                             text("", kTen)),                                                          //
                      vstack({}, text("42", kTen), text("%", kTen))
                          .accessible({.role = AccessibleRole::meter, .name = "CPU", .value = "42 %"}),
                      button({.role = AccessibleRole::toggle,
                              .name = "Wi",
                              .isOn = true,
                              .isExpanded = false,
                              .actions = {{"increment", [this] { heard_ += "more "; }}}},
                             text("wi", kTen), [this] { heard_ += "pressed "; }))
            .padding(Insets::all(5));
    };
    show();
    key(KeyEvent::Key::tab);
    const auto node = [](AccessibleRole role, const char* name, Rect frame) {
        AccessibleNode made;
        made.role = role;
        made.name = name;
        made.frame = frame;
        return made;
    };
    // The widest is the hidden text beside its symbol: 10 and 36 points.
    AccessibleNode want = node(AccessibleRole::group, "", {{0, 0}, {56, 73.5}});
    want.children.push_back(node(AccessibleRole::text, "Heat", {{5, 5}, {24, 12.5}}));
    AccessibleNode meter = node(AccessibleRole::meter, "CPU", {{5, 31}, {12, 25}});
    meter.value = "42 %";
    want.children.push_back(meter);
    AccessibleNode toggle = node(AccessibleRole::toggle, "Wi", {{5, 56}, {12, 12.5}});
    toggle.isOn = true;
    toggle.isExpanded = false;
    toggle.actions = {"press", "increment"};
    toggle.isFocusable = true;
    toggle.isFocused = true;
    want.children.push_back(toggle);
    const AccessibleNode told = tree();
    EXPECT_EQ(told.frame, want.frame);
    ASSERT_EQ(told.children.size(), want.children.size());
    for (std::size_t i = 0; i < want.children.size(); ++i)
        EXPECT_EQ(told.children[i], want.children[i]) << want.children[i].name;
    EXPECT_TRUE(perform("Wi", "increment"));
    EXPECT_TRUE(perform("Wi"));
    EXPECT_EQ(heard_, "more pressed ");
}

TEST_F(AccessibilityTest, AGroupMayTellWhatIsInsideAsWell) {
    make_ = [] {
        return scrollArea(vstack({}, text("in", kTen), text("side", kTen))
                              .accessible({.name = "list", .containsMore = true})
                              .frame({.height = 100}));
    };
    most_ = {1000, 60};
    show();
    const AccessibleNode told = tree();
    ASSERT_EQ(told.children.size(), 1U);
    EXPECT_EQ(told.children[0].role, AccessibleRole::scrollArea);
    ASSERT_EQ(told.children[0].children.size(), 1U);
    const AccessibleNode& list = told.children[0].children[0];
    EXPECT_EQ(list.name, "list");
    ASSERT_EQ(list.children.size(), 2U);
    EXPECT_EQ(list.children[1].name, "side");
}

TEST_F(AccessibilityTest, TellsWhereThingsAreSeen) {
    struct Case {
        const char* name;
        std::function<Element(Element)> wrap;
        Rect want;
    };
    for (const Case& c : {
             Case{"moved",
                  [](Element e) {
                      return std::move(e).offset({7, -3});
                  },
                  {{7, -3}, {12, 12.5}}},
             Case{"scaled", [](Element e) { return std::move(e).scaled(2); }, {{-6, -6.25}, {24, 25}}},
             Case{"moved and then scaled",
                  [](Element e) {
                      return std::move(e).offset({1, 0}).scaled(2);
                  },
                  {{-4, -6.25}, {24, 25}}},
             Case{"faded",
                  [](Element e) { return std::move(e).opacity(0.5).clipped(2); },
                  {{0, 0}, {12, 12.5}}},
         }) {
        make_ = [&] { return c.wrap(text("it", kTen)); };
        change([] {});
        ASSERT_TRUE(accessible("it")) << c.name;
        EXPECT_EQ(accessible("it")->frame, c.want) << c.name;
        EXPECT_EQ(frameOf("it").origin, c.want.origin) << c.name;
    }
}

TEST_F(AccessibilityTest, TheSameThingKeepsItsKey) {
    bool hasTop = false;
    make_ = [&] {
        return vstack({}, when(hasTop, [] { return text("top", kTen); }),
                      button("B", text("b", kTen), [] {}));
    };
    show();
    const std::string key = accessible("B")->key;
    change([&] { hasTop = true; });
    EXPECT_EQ(accessible("B")->key, key);
    EXPECT_NE(accessible("top")->key, key);
    EXPECT_FALSE(key.empty());
}

// A narrowed row is a picture: it stands where its left edge is, and is not wrapped anew.
TEST_F(AccessibilityTest, ANarrowedRowIsShownNarrower) {
    make_ = [] {
        return hstack({.spacing = 4}, text("abcd", kTen), text("efgh", kTen))
            .condensedToFit()
            .padding(Insets::horizontal(3));
    };
    show();
    EXPECT_EQ(picture_.size, (Size{58, 12.5}));
    EXPECT_EQ(frameOf("efgh"), (Rect{{31, 0}, {24, 12.5}}));
    picture_ = view_.displayList({32, 12.5}, machine_.time.monotonic());
    EXPECT_EQ(frameOf("abcd"), (Rect{{3, 0}, {24, 12.5}}));
    EXPECT_EQ(frameOf("efgh"), (Rect{{17, 0}, {24, 12.5}})) << "the box before scaling";
    EXPECT_EQ(std::get<DrawText>(textItem("efgh")->command).scaleX, 0.5);
    EXPECT_EQ(std::get<DrawText>(textItem("efgh")->command).scaleY, 1);
    view_.invalidate();
    picture_ = view_.displayList({32, 12.5}, machine_.time.monotonic());
    EXPECT_EQ(std::get<DrawText>(textItem("efgh")->command).scaleX, 0.5)
        << "after an evaluation that leads to no layout";
}

}  // namespace
}  // namespace norvane
