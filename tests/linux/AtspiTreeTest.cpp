#include "platform/linux/AtspiTree.h"

#include <gtest/gtest.h>

#include "platform/linux/AtspiAnswers.h"
#include "platform/linux/AtspiText.h"
#include "platform/linux/GVariantPointer.h"

namespace norvane {
namespace {

using Lines = std::vector<std::string>;

AccessibleNode node(AccessibleRole role, const std::string& name, Rect frame = {{10, 10}, {20, 5}}) {
    AccessibleNode made;
    made.role = role;
    made.name = made.key = name;
    made.frame = frame;
    return made;
}

// How objects read aloud is in docs/accessibility.md, which the tests of the desktop compare.
class AtspiTreeTest : public testing::Test {
 protected:
    // "Swap PropertyChange accessible-name 0 = ...", by the names of before and now.
    Lines update(const std::vector<AccessibleNode>& children) {
        AtspiTree::Surface surface;
        surface.tree.children = children;
        surface.frame = {100, 50, 400, 300};
        surface.scale = 2;
        surface.hasKeyboard = true;
        auto names = namesNow();
        const auto events = tree.update({surface});
        names.merge(namesNow());
        Lines lines;
        for (const AtspiEvent& event : events) {
            std::string& line = lines.emplace_back(names[event.source] + ' ' + event.member);
            if (event.kind == AtspiEvent::Kind::disappeared) line += "disappeared";
            if (!event.detail.empty()) line += event.detail + ' ' + std::to_string(event.first);
            if (const auto* id = std::get_if<AtspiId>(&event.value)) line += " = " + names[*id];
            if (const auto* text = std::get_if<std::string>(&event.value)) line += " = " + *text;
        }
        return lines;
    }
    std::map<AtspiId, std::string> namesNow() const {
        std::map<AtspiId, std::string> names;
        for (const auto& [id, object] : tree.objects())
            names[id] = object.name;
        return names;
    }

    AtspiTree tree;
};

TEST_F(AtspiTreeTest, TellsWhatComesChangesAndGoes) {
    AccessibleNode status = node(AccessibleRole::text, "All is well.");
    status.key = "status";
    status.isLive = true;
    AccessibleNode pod = node(AccessibleRole::button, "CPU");
    pod.isExpanded = false;
    const AccessibleNode title = node(AccessibleRole::heading, "Board");
    EXPECT_EQ(update({title, status, pod}).size(), 4U + 4U);
    pod.value = "5 %";
    EXPECT_EQ(update({title, status, pod}), Lines{}) << "a value is read when it is asked for";
    status.name = "It is busy.";
    pod.isExpanded = pod.isFocused = true;
    EXPECT_EQ(
        update({title, status, pod}),
        (Lines{"All is well. PropertyChangeaccessible-name 0 = It is busy.",
               "All is well. TextChangeddelete 0 = All is well.",
               "All is well. TextChangedinsert 0 = It is busy.", "All is well. Announcement = It is busy.",
               "CPU StateChangedchecked 1", "CPU StateChangedexpanded 1", "CPU StateChangedpressed 1",
               "CPU StateChangedfocused 1"}));
    AccessibleNode bar = node(AccessibleRole::meter, "Used");
    bar.number = AccessibleNumber{5};
    EXPECT_EQ(update({title, bar, pod}),
              (Lines{"Board ChildrenChangedremove 1 = It is busy.", "It is busy. disappeared", "Used ",
                     "Board ChildrenChangedadd 1 = Used"}));
    bar.number->now = 6;
    EXPECT_EQ(update({title, bar, pod}), Lines{"Used PropertyChangeaccessible-value 0"});
    EXPECT_EQ(update({pod, title, bar}).size(), 6U) << "in another order, each goes and comes";
    EXPECT_EQ(tree.update({}).size(), 3U + 4U) << "the frame, and each that was there";
    EXPECT_EQ(tree.objects().size(), 1U);
}

TEST_F(AtspiTreeTest, KnowsWhereThingsAreAndBearsPlacesThatAreNone) {
    AccessibleNode area = node(AccessibleRole::scrollArea, "", {{0, 0}, {100, 20}});
    area.children = {node(AccessibleRole::text, "seen \xFF"),
                     node(AccessibleRole::text, "below", {{10, 30}, {20, 5}})};
    update({area});
    const AtspiObject* const seen = tree.find(tree.at(0, 125, 75));
    ASSERT_NE(seen, nullptr);
    EXPECT_EQ(seen->name, "seen \xEF\xBF\xBD");
    EXPECT_EQ(seen->extents, (PixelRect{120, 70, 40, 10}));
    EXPECT_EQ(tree.find(tree.at(0, 125, 112))->role, AtspiRole::frame) << "scrolled out of sight";
    EXPECT_EQ(tree.at(0, 5, 5), 0U);
    AtspiAnswers answers(tree, {});
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

TEST(AtspiText, IsReadPieceByPieceWhateverTheOffset) {
    using Unit = AtspiText::Unit;
    using Piece = AtspiText::Piece;
    const AtspiText text("30 °C now");
    EXPECT_EQ(text.part(3, -1), "°C now");
    EXPECT_EQ(text.part(-5, 400) + text.part(6, 2), "30 °C now");
    EXPECT_EQ(text.character(3) + text.character(9), 0xB0);
    EXPECT_EQ(text.at(4, Unit::word), (Piece{"°C ", 3, 6}));
    EXPECT_EQ(text.before(4, Unit::word), (Piece{"30 ", 0, 3}));
    EXPECT_EQ(text.after(4, Unit::word), (Piece{"now", 6, 9}));
    EXPECT_EQ(text.at(3, Unit::character), (Piece{"°", 3, 4}));
    EXPECT_EQ(text.before(0, Unit::character).text + text.after(8, Unit::whole).text, "");
    EXPECT_EQ(text.at(-1, Unit::word).text + AtspiText("").at(0, Unit::whole).text, "");
}

}  // namespace
}  // namespace norvane
