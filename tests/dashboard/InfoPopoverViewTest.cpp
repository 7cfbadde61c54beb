#include "dashboard/InfoPopoverView.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "dashboard/FeedbackAddress.h"
#include "ShownPanel.h"

namespace norvane {
namespace {

using Role = AccessibleRole;
using Told = std::pair<Role, std::string>;

class InfoPopoverViewTest : public testing::Test {
 protected:
    ScriptedMachine machine_;
    InfoPopoverView view_{machine_.platform()};
    ShownPanel panel_{machine_, view_.content()};
};

TEST_F(InfoPopoverViewTest, SaysItsTextsToTheCharacter) {
    panel_.appear();
    std::vector<Told> told;
    for (const AccessibleNode& node : panel_.nodes())
        if (node.role != Role::separator && node.role != Role::image) told.emplace_back(node.role, node.name);
    EXPECT_EQ(
        told,
        (std::vector<Told>{
            {Role::heading, "Norvane"},
            {Role::text, "Performance. Simplified."},
            {Role::text,
             "Norvane gives you a clear view of your Mac's health, right from the menu bar. Quiet when "
             "everything is fine. precise when it matters."},
            {Role::heading, "How it works"},
            {Role::text,
             "Reads CPU, memory, storage and battery in real time. Cuts through momentary spikes to tell "
             "you what's actually happening — and what it means for your Mac."},
            {Role::heading, "Privacy First"},
            {Role::text,
             "No analytics. No tracking. All telemetry processing and analysis run locally and securely on "
             "your Mac."},
            {Role::text, "Thank you for choosing Norvane."},
            {Role::text, "Version 1.0"},
            {Role::link, "Send Feedback"},
        }));
    EXPECT_EQ(panel_.size().width, 380);
    EXPECT_GT(panel_.size().height, 300) << "the texts wrap";
}

TEST_F(InfoPopoverViewTest, TellsTheVersionOfTheBundleWhereItIsAText) {
    struct Case {
        std::optional<PropertyValue> value;
        const char* told;
    };
    for (const Case& c : {Case{std::nullopt, "Version 1.0"},
                          {PropertyValue(std::string("2.3.1")), "Version 2.3.1"},
                          {PropertyValue(std::string()), "Version "},
                          {PropertyValue(std::int64_t{4}), "Version 1.0"},
                          {PropertyValue(true), "Version 1.0"}}) {
        machine_.mainBundle.information = {};
        if (c.value) machine_.mainBundle.information.set("CFBundleShortVersionString", *c.value);
        InfoPopoverView view(machine_.platform());
        ShownPanel panel(machine_, view.content());
        panel.appear();
        EXPECT_EQ(panel.node(c.told, Role::text).name, c.told);
    }
}

TEST_F(InfoPopoverViewTest, TheLinkBeginsALetterByPointerAndByAction) {
    panel_.appear();
    const AccessibleNode link = panel_.node("Send Feedback", Role::link);
    const AccessibleNode version = panel_.node("Version 1.0", Role::text);
    EXPECT_GE(link.frame.minX(), version.frame.maxX()) << "to the right";
    EXPECT_EQ(link.frame.minY(), version.frame.minY()) << "by their tops";
    panel_.click(link);
    panel_.perform(link, "press");
    const std::string url = "mailto:" + std::string(kFeedbackAddress);
    EXPECT_EQ(machine_.workspace.opened, (std::vector<std::string>{url, url}));
}

}  // namespace
}  // namespace norvane
