#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "platform/Decimal.h"
#include "platform/scripted/ScriptedMachine.h"
#include "platform/scripted/ScriptedPopoverWindow.h"
#include "preferences/DefaultsKeys.h"
#include "shell/NorvaneApp.h"

namespace norvane {

// The whole application on a scripted machine, as its user sees and clicks it.
class ShellTest : public testing::Test {
 protected:
    // A user who has been welcomed before; otherwise this is the first start.
    void launch(bool hasSeenWelcome = true) {
        if (hasSeenWelcome) store(defaultskey::kHasSeenWelcome, true);
        app_.emplace(machine_.platform());
        app_->launch();
        machine_.settle();
    }
    void store(std::string_view key, DefaultsValue value) {
        machine_.userDefaults.changeFromOutside(key, std::move(value));
        machine_.settle();
    }
    StatusBarController& controller() { return *app_->delegate().statusBarController(); }
    bool isUIVisible() { return controller().sampler().isUIVisible().get(); }
    // Each tick asks for this once.
    std::uint64_t ticks() { return machine_.hostPort.statistics.asked(); }

    void click() {
        machine_.windowServer.clickStatusItem();
        machine_.settle();
    }
    // Opens the dashboard, and waits until it has faded in.
    void open() {
        click();
        machine_.advance(kEntrance);
    }
    // What hangs below the item, the front one last, by the widths: "main settings".
    std::string shown() {
        std::string names;
        for (const ScriptedPopoverWindow* window : machine_.windowServer.windows())
            names += (names.empty() ? "" : " ") + nameOf(*window);
        return names;
    }
    // The one of that name; it is shown.
    ScriptedPopoverWindow& window(std::string_view name) {
        for (ScriptedPopoverWindow* window : machine_.windowServer.windows())
            if (nameOf(*window) == name) return *window;
        ADD_FAILURE() << name << " is not shown";
        std::abort();
    }
    // The one that hears what is typed; empty for none.
    std::string keyboard() {
        std::vector<AccessibleNode> before;
        for (ScriptedPopoverWindow* window : machine_.windowServer.windows())
            before.push_back(treeOf(*window));
        machine_.windowServer.press(KeyEvent::Key::tab);
        std::string hears;
        for (std::size_t i = 0; i < before.size(); ++i) {
            ScriptedPopoverWindow& window = *machine_.windowServer.windows()[i];
            if (!(treeOf(window) == before[i])) hears += nameOf(window);
        }
        return hears;
    }
    // A click of the pointer on what bears that name in the window.
    void clickOn(std::string_view windowName, std::string_view name) {
        ScriptedPopoverWindow& target = window(windowName);
        const AccessibleNode tree = treeOf(target);
        const AccessibleNode* const node = find(tree, name);
        ASSERT_NE(node, nullptr) << name << " in " << windowName;
        machine_.windowServer.click(
            {target.frame().minX() + node->frame.midX(), target.frame().minY() + node->frame.midY()});
        machine_.settle();
    }
    static const AccessibleNode* find(const AccessibleNode& node, std::string_view name) {
        if (node.name == name && node.role != AccessibleRole::group) return &node;
        for (const AccessibleNode& child : node.children)
            if (const AccessibleNode* const found = find(child, name)) return found;
        return nullptr;
    }
    void clickOutside() {
        machine_.windowServer.click({10, 990});
        machine_.settle();
    }
    void focusElsewhere() {
        machine_.windowServer.focusElsewhere();
        machine_.settle();
    }
    void pressEscape() {
        machine_.windowServer.press(KeyEvent::Key::escape);
        machine_.settle();
    }
    // The same by what assistive programs do: it reaches what is covered, too.
    void press(std::string_view windowName, std::string_view name) {
        ScriptedPopoverWindow& target = window(windowName);
        const AccessibleNode tree = treeOf(target);
        const AccessibleNode* const node = find(tree, name);
        ASSERT_NE(node, nullptr) << name << " in " << windowName;
        EXPECT_TRUE(target.content().perform(node->key, "press")) << name;
        machine_.settle();
    }
    // What the status item's button shows: "MenuIconNormal 0.50", or nothing.
    std::string icon() {
        const DisplayList picture = machine_.windowServer.statusItemPicture();
        return picture.items.empty() ? "" : iconIn(picture.items.front(), 1);
    }

    // Starts from the beginning.
    void restart() {
        app_.reset();
        launch();
    }
    // What a user does, written as words.
    void actAll(const std::string& words) {
        std::istringstream all(words);
        for (std::string word; all >> word;)
            act(word);
    }
    virtual void act(const std::string& word) { ADD_FAILURE() << word; }

    static constexpr std::chrono::milliseconds kEntrance{200};
    static constexpr const char* kOptimal = "System is operating optimally within comfortable parameters.";

    ScriptedMachine machine_;
    std::optional<NorvaneApp> app_;

    // Time in which the panel paints what changes in it.
    void watchIcon(std::chrono::milliseconds time) {
        icon();
        for (auto passed = std::chrono::milliseconds(0); passed < time;
             passed += std::chrono::milliseconds(25)) {
            machine_.advance(std::chrono::milliseconds(25));
            icon();
        }
    }
    static AccessibleNode treeOf(ScriptedPopoverWindow& window) {
        window.picture();  // the tree goes with a picture
        return window.content().accessibleTree();
    }

 private:
    static std::string iconIn(const DisplayItem& item, double opacity) {
        if (const auto* group = std::get_if<DrawGroup>(&item.command))
            return iconIn(group->items.front(), opacity * group->opacity);
        const auto* image = std::get_if<DrawImage>(&item.command);
        if (image == nullptr) return "?";
        return image->name.empty() ? "" : image->name + ' ' + decimal(opacity, 2);
    }
    static std::string nameOf(const ScriptedPopoverWindow& window) {
        const double width = window.frame().size.width;
        if (width == MenuRootView::kWidth) return "main";
        if (width == PreferencesView::kWidth) return "settings";
        if (width == InfoPopoverView::kWidth) return "info";
        if (width == WelcomePopoverController::kContentSize.width) return "welcome";
        return "?";
    }
};

}  // namespace norvane
