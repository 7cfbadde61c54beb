#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "dashboard/ShownPanel.h"
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
        const auto treeOf = [](ScriptedPopoverWindow* window) {
            window->picture();
            return window->content().accessibleTree();
        };
        const auto& windows = machine_.windowServer.windows();
        std::vector<AccessibleNode> before;
        std::transform(windows.begin(), windows.end(), std::back_inserter(before), treeOf);
        machine_.windowServer.press(KeyEvent::Key::tab);
        std::string hears;
        for (std::size_t i = 0; i < before.size(); ++i)
            if (!(treeOf(windows[i]) == before[i])) hears += nameOf(*windows[i]);
        return hears;
    }
    // What is in the one of that name.
    ShownPanel panel(std::string_view name) {
        window(name).picture();  // what is told goes with a picture
        return {machine_, window(name).content()};
    }
    // As assistive programs do it: it reaches what is covered, too.
    void press(std::string_view windowName, std::string_view name) {
        const std::string key = panel(windowName).node(name).key;
        EXPECT_TRUE(window(windowName).content().perform(key, "press")) << name;
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
    virtual void act(const std::string& word) {
        if (word == "click") {
            open();
        } else if (word == "outside") {
            machine_.windowServer.click({10, 990});
        } else if (word == "focus") {
            machine_.windowServer.focusElsewhere();
        } else if (word == "esc") {
            machine_.windowServer.press(KeyEvent::Key::escape);
        } else if (word == "close-main") {
            window("main").observer().windowEscapePressed();
        } else {
            press("main", word);
        }
        machine_.settle();
        icon();  // the panel paints what has changed
    }
    void choose(MenuBarIconMode mode) {
        app_->preferences().setMenuBarIconMode(mode);
        machine_.settle();
    }
    double length() { return machine_.windowServer.statusItemLength(); }
    // The label's columns: "12% 4.0G"; empty for an icon.
    std::string label() {
        machine_.windowServer.statusItemPicture();
        std::string text;
        for (const AccessibleNode& column :
             machine_.windowServer.statusItemContent()->accessibleTree().children)
            text += (text.empty() ? "" : " ") + column.value;
        return text;
    }

    static constexpr std::chrono::milliseconds kEntrance{200};

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
