#include "platform/linux/AtspiTree.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/linux/AtspiAnswers.h"
#include "platform/linux/AtspiText.h"
#include "platform/linux/GVariantPointer.h"

namespace norvane {
namespace {

AccessibleNode node(AccessibleRole role, const std::string& name, const std::string& value = "") {
    AccessibleNode made;
    made.role = role;
    made.name = name;
    made.value = value;
    made.key = name;
    made.frame = {{10, 10}, {20, 5}};
    return made;
}

// The states that say something, by their names.
std::string statesOf(const AtspiStates& states) {
    std::string names;
    for (const auto& [state, name] : kChangingStates)
        if (states.has(state) && state != AtspiState::enabled && state != AtspiState::sensitive)
            names += ' ' + std::string(name);
    if (states.has(AtspiState::transient)) names += " transient";
    if (!states.has(AtspiState::enabled)) names += " disabled";
    return names.substr(names.empty() ? 0 : 1);
}

TEST(AtspiObject, IsWhatItsNodeIs) {
    using Role = AccessibleRole;
    // Its role, name, description and states.
    const auto expect = [](const AccessibleNode& node, const char* want) {
        const AtspiObject object = AtspiObject::of(node);
        EXPECT_EQ(nameOf(object.role) + ("|" + object.name) + '|' + object.description + '|' +
                      statesOf(object.states),
                  want);
    };
    expect(node(Role::text, "Swap", "0.00 GB"), "label|Swap, 0.00 GB||");
    expect(node(Role::image, "Graph", "Level."), "image|Graph|Level.|transient");
    expect(node(Role::button, "Eject \xFF"), "push button|Eject \xEF\xBF\xBD||");
    expect(node(Role::meter, "Heat", "30 C"), "level bar|Heat|30 C|transient");
    expect(node(Role::progress, "Ejecting"), "progress bar|Ejecting||busy");
    AccessibleNode pod = node(Role::button, "CPU", "4 %");
    pod.isExpanded = true;
    expect(pod, "toggle button|CPU|4 %|checked expanded pressed transient");
    AccessibleNode pin = node(Role::toggle, "Pin");
    pin.isOn = false;
    expect(pin, "toggle button|Pin||");
    expect(node(Role::heading, "Settings"), "heading|Settings||");
    AccessibleNode radio = node(Role::radioButton, "C");
    radio.isOn = radio.isFocused = true;
    expect(radio, "radio button|C||checked focused");
    AccessibleNode core = node(Role::meter, "Core", "5 %");
    core.number = AccessibleNumber{5};
    expect(core, "level bar|Core||");
    AccessibleNode link = node(Role::link, "Feedback");
    link.isEnabled = false;
    expect(link, "link|Feedback||disabled");
}

class AtspiTreeTest : public testing::Test {
 protected:
    static AtspiTree::Surface surface(std::vector<AccessibleNode> children) {
        AtspiTree::Surface made;
        made.number = 7;
        made.tree.children = std::move(children);
        made.frame = {100, 50, 400, 300};
        made.scale = 2;
        made.hasKeyboard = true;
        return made;
    }
    // "Swap PropertyChange accessible-name 0 0 = ...", by the names of before and now.
    std::vector<std::string> update(const std::vector<AtspiTree::Surface>& surfaces) {
        auto names = namesNow();
        const auto events = tree_.update(surfaces);
        names.merge(namesNow());
        std::vector<std::string> lines;
        for (const AtspiEvent& event : events) {
            const bool hasCome = event.kind == AtspiEvent::Kind::appeared;
            if (hasCome || event.kind == AtspiEvent::Kind::disappeared) {
                lines.push_back((hasCome ? "+ " : "- ") + names[event.source]);
                continue;
            }
            std::string& line = lines.emplace_back(names[event.source] + ' ' + event.member);
            if (!event.detail.empty()) line += ' ' + event.detail;
            line += ' ' + std::to_string(event.first);
            if (const auto* id = std::get_if<AtspiId>(&event.value)) line += " = " + names[*id];
            if (const auto* text = std::get_if<std::string>(&event.value)) line += " = " + *text;
        }
        return lines;
    }
    std::map<AtspiId, std::string> namesNow() const {
        std::map<AtspiId, std::string> names;
        for (const auto& [id, object] : tree_.objects())
            names[id] = id == 0 ? "application" : object.name;
        return names;
    }
    using Lines = std::vector<std::string>;

    AtspiTree tree_;
};

TEST_F(AtspiTreeTest, TellsWhatComesChangesAndGoes) {
    AccessibleNode status = node(AccessibleRole::text, "All is well.");
    status.key = "status";
    status.isLive = true;
    AccessibleNode pod = node(AccessibleRole::button, "CPU", "4 %");
    pod.isExpanded = false;
    pod.isFocusable = true;
    const AccessibleNode title = node(AccessibleRole::heading, "Board");

    EXPECT_EQ(
        update({surface({title, status, pod})}),
        (Lines{"+ Board", "+ Board", "+ All is well.", "+ CPU", "application ChildrenChanged add 0 = Board",
               "Board Create 0 = Board", "Board Activate 0 = Board", "Board StateChanged active 1"}));
    EXPECT_EQ(update({surface({title, status, pod})}), Lines{}) << "the same";

    pod.value = "5 %";
    EXPECT_EQ(update({surface({title, status, pod})}), Lines{}) << "a value is read when it is asked for";
    status.name = "It is busy.";
    pod.isExpanded = pod.isFocused = true;
    EXPECT_EQ(
        update({surface({title, status, pod})}),
        (Lines{"All is well. PropertyChange accessible-name 0 = It is busy.",
               "All is well. TextChanged delete 0 = All is well.",
               "All is well. TextChanged insert 0 = It is busy.", "All is well. Announcement 1 = It is busy.",
               "CPU StateChanged checked 1", "CPU StateChanged expanded 1", "CPU StateChanged pressed 1",
               "CPU StateChanged focused 1"}));

    AccessibleNode bar = node(AccessibleRole::meter, "Used", "5 %");
    bar.number = AccessibleNumber{5};
    EXPECT_EQ(update({surface({title, bar, pod})}),
              (Lines{"Board ChildrenChanged remove 1 = It is busy.", "- It is busy.", "+ Used",
                     "Board ChildrenChanged add 1 = Used"}));
    bar.number->now = 6;
    EXPECT_EQ(update({surface({title, bar, pod})}), Lines{"Used PropertyChange accessible-value 0"});
    EXPECT_EQ(update({surface({title, pod, bar})}),
              (Lines{"Board ChildrenChanged remove 2 = CPU", "Board ChildrenChanged remove 1 = Used",
                     "Board ChildrenChanged remove 0 = Board", "Board ChildrenChanged add 0 = Board",
                     "Board ChildrenChanged add 1 = CPU", "Board ChildrenChanged add 2 = Used"}));
    const Lines gone = update({});
    EXPECT_EQ(gone.front(), "Board Deactivate 0 = Board");
    EXPECT_EQ(gone.size(), 3U + 4U) << "the frame, and each that was there";
    EXPECT_EQ(tree_.objects().size(), 1U);
}

TEST_F(AtspiTreeTest, KnowsWhereThingsAre) {
    AccessibleNode area = node(AccessibleRole::scrollArea, "");
    area.frame = {{0, 0}, {100, 20}};
    AccessibleNode below = node(AccessibleRole::text, "below");
    below.frame = {{10, 30}, {20, 5}};
    area.children = {node(AccessibleRole::text, "seen"), below};
    update({surface({area})});
    std::map<std::string, const AtspiObject*> named;
    for (const auto& [id, object] : tree_.objects())
        named[object.name] = &object;
    EXPECT_EQ(named["seen"]->extents, (PixelRect{120, 70, 40, 10}));
    EXPECT_TRUE(named["seen"]->states.has(AtspiState::showing));
    EXPECT_FALSE(named["below"]->states.has(AtspiState::showing)) << "scrolled out of sight";
    EXPECT_EQ(tree_.find(tree_.at(0, 125, 75)), named["seen"]);
    EXPECT_EQ(tree_.objects().at(tree_.at(0, 125, 112)).role, AtspiRole::frame);
    EXPECT_EQ(tree_.at(0, 5, 5), 0U);
}

TEST_F(AtspiTreeTest, BearsQuestionsForPlacesThatAreNone) {
    update({surface({node(AccessibleRole::text, "seen")})});
    AtspiAnswers answers(tree_, {});
    for (const char* const place : {"(2147483647, 2147483647, @u 0)", "(-2147483648, -2147483648, @u 1)",
                                    "(-2147483648, 2147483647, @u 4294967295)"}) {
        const GVariantPointer asked(g_variant_ref_sink(g_variant_new_parsed(place)));
        const GVariantPointer answer(
            g_variant_ref_sink(answers.called("1", "org.a11y.atspi.Component", "Contains", asked.get())));
        gboolean contains = TRUE;
        g_variant_get(answer.get(), "(b)", &contains);
        EXPECT_FALSE(contains) << place;
    }
}

TEST_F(AtspiTreeTest, TheItemIsOneButtonThatSaysItsParts) {
    AtspiTree::Surface item =
        surface({node(AccessibleRole::text, "CPU", "4%"), node(AccessibleRole::text, "RAM", "3.1G")});
    item.isButton = true;
    update({item});
    ASSERT_EQ(tree_.objects().size(), 3U);
    const AtspiObject& button = tree_.objects().rbegin()->second;
    EXPECT_EQ(button.role, AtspiRole::pushButton);
    EXPECT_EQ(button.description, "CPU 4%, RAM 3.1G");
    EXPECT_EQ(button.actions, std::vector<std::string>{"press"});
}

TEST(AtspiText, IsReadPieceByPiece) {
    using Unit = AtspiText::Unit;
    using Piece = AtspiText::Piece;
    const AtspiText text("30 °C now");
    EXPECT_EQ(text.length(), 9);
    EXPECT_EQ(text.part(3, -1), "°C now");
    EXPECT_EQ(text.part(-5, 400), "30 °C now");
    EXPECT_EQ(text.part(6, 2), "");
    EXPECT_EQ(text.character(3), 0xB0);
    EXPECT_EQ(text.character(9), 0);
    EXPECT_EQ(text.at(4, Unit::word), (Piece{"°C ", 3, 6}));
    EXPECT_EQ(text.at(8, Unit::word), (Piece{"now", 6, 9}));
    EXPECT_EQ(text.before(4, Unit::word), (Piece{"30 ", 0, 3}));
    EXPECT_EQ(text.after(4, Unit::word), (Piece{"now", 6, 9}));
    EXPECT_EQ(text.at(3, Unit::character), (Piece{"°", 3, 4}));
    EXPECT_EQ(text.before(0, Unit::character).text, "");
    EXPECT_EQ(text.after(8, Unit::whole).text, "");
    EXPECT_EQ(text.at(-1, Unit::word).text, "");
    EXPECT_EQ(AtspiText("").at(0, Unit::whole).text, "");
}

}  // namespace
}  // namespace norvane
