#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "bus/BusPeer.h"
#include "bus/ChildProcess.h"
#include "linux/RunLoop.h"
#include "PanelBus.h"
#include "platform/linux/GVariantPointer.h"
#include "platform/linux/X11Reply.h"
#include "windows/Bystander.h"
#include "windows/Program.h"
#include "windows/Xvfb.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr const char* kWatcher = "org.kde.StatusNotifierWatcher";
constexpr const char* kWatcherPath = "/StatusNotifierWatcher";
constexpr int kDashboardWidth = 520;
constexpr int kWelcomeWidth = 340;

// The real program beside real window managers and panels, on a screen and a bus of its own.
class PanelsTest : public testing::Test {
 protected:
    std::unique_ptr<ChildProcess> start(const std::vector<std::string>& command) const {
        return std::make_unique<ChildProcess>(
            command, ChildProcess::Environment{{"DISPLAY", xvfb_.display()},
                                               {"DBUS_SESSION_BUS_ADDRESS", bus_.address()},
                                               {"HOME", bus_.folder()},
                                               {"XDG_CONFIG_HOME", bus_.folder()},
                                               {"XDG_CACHE_HOME", bus_.folder()},
                                               {"NO_AT_BRIDGE", "1"},
                                               {"GTK_A11Y", "none"}});
    }
    void startProgram(bool hasSeenWelcome = true) {
        program_ = std::make_unique<Program>(xvfb_.display(), hasSeenWelcome, bus_.address());
    }

    // Looks seldom: what is looked at is a tree of windows, and somebody else's time.
    static bool eventually(const std::function<bool()>& holds) {
        for (int i = 0; i < 200; ++i) {
            if (holds()) return true;
            const auto next = std::chrono::steady_clock::now() + 100ms;
            runUntil([&] { return std::chrono::steady_clock::now() >= next; });
        }
        return false;
    }

    // Ready: openbox loses what is shown while it starts, and says when it has.
    std::unique_ptr<ChildProcess> startManager(const std::string& name) const {
        auto manager = name == "openbox"
                           ? start({name, "--sm-disable", "--startup", "xsetroot -name started"})
                           : start({name});
        EXPECT_TRUE(eventually([&] {
            return name == "openbox"
                       ? bystander_.text(bystander_.root(), "WM_NAME") == "started"
                       : !bystander_.numbers(bystander_.root(), "_NET_SUPPORTING_WM_CHECK").empty();
        })) << name;
        return manager;
    }

    // What carries the item: "strip", "wide", "square" in a tray, or "picture" in a panel, as many as there
    // are; an item that is nowhere is "".
    std::string items() const {
        std::string found;
        collect(bystander_.root(), found);
        const auto registered = peer_.call(kWatcher, kWatcherPath, "org.freedesktop.DBus.Properties", "Get",
                                           g_variant_new("(ss)", kWatcher, "RegisteredStatusNotifierItems"));
        if (!registered) return found;
        const GVariantPointer boxed(g_variant_get_child_value(registered.get(), 0));
        const GVariantPointer list(g_variant_get_variant(boxed.get()));
        for (gsize i = 0; i < g_variant_n_children(list.get()); ++i)
            found += "picture ";
        return found;
    }
    void collect(xcb_window_t parent, std::string& found) const {
        const X11Reply<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(bystander_.get(), xcb_query_tree(bystander_.get(), parent), nullptr));
        if (!tree) return;
        const std::vector<xcb_window_t> children(
            xcb_query_tree_children(tree.get()),
            xcb_query_tree_children(tree.get()) + xcb_query_tree_children_length(tree.get()));
        for (const xcb_window_t child : children) {
            const PixelRect frame = bystander_.frameOf(child);
            const bool isOurs =
                bystander_.text(child, "WM_CLASS").starts_with("norvane") && frame.height < 100;
            if (!isOurs || !isViewable(child)) {
                collect(child, found);
                continue;
            }
            const bool isDock = !bystander_.numbers(child, "_NET_WM_STRUT").empty();
            found += isDock ? "strip " : frame.width >= 50 ? "wide " : "square ";
        }
    }
    bool isViewable(xcb_window_t window) const {
        const X11Reply<xcb_get_window_attributes_reply_t> reply(xcb_get_window_attributes_reply(
            bystander_.get(), xcb_get_window_attributes(bystander_.get(), window), nullptr));
        return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
    }
    bool comesToBe(const std::string& wanted) const {
        return eventually([&] { return items() == wanted; });
    }

    // How wide the popover is that has this width, and under a compositor room for its shadow around; 0 while
    // it is not shown.
    int popover(int width) const {
        for (const xcb_window_t window : bystander_.windows()) {
            const PixelRect frame = bystander_.frameOf(window);
            if (frame.width >= width && frame.width < width + 100) return frame.width;
        }
        return 0;
    }
    // By another start of the program, which never closes what is open. A panel that still comes up takes the
    // keyboard, and an unpinned dashboard then goes: it is asked for until it stays.
    bool opens() const {
        return eventually([&] {
            EXPECT_EQ(run({NORVANE_BINARY_DIR "/norvane"}), 0);
            return popover(kDashboardWidth) > 0;
        });
    }
    int run(const std::vector<std::string>& command) const { return runOn(xvfb_.display(), command); }

    Xvfb xvfb_;
    PanelBus bus_;
    BusPeer peer_{bus_.address()};
    Bystander bystander_{xvfb_.display()};
    std::unique_ptr<Program> program_;
};

struct Panel {
    std::vector<std::string> command;
    std::string item;
};

const Panel kPanels[] = {
    {{"trayer", "--edge", "top", "--height", "24", "--widthtype", "request"}, "wide "},
    {{"tint2"}, "square "},
    {{"xfce4-panel", "--disable-wm-check"}, "picture "},
};

TEST_F(PanelsTest, EachPanelCarriesOneItemAndGetsItBackWhenItStartsAgain) {
    for (const char* const manager : {"openbox", "xfwm4", ""}) {
        std::unique_ptr<ChildProcess> windowManager;
        if (*manager != '\0') {
            run({"xsetroot", "-name", ""});
            windowManager = startManager(manager);
        }
        for (const Panel& kind : kPanels) {
            SCOPED_TRACE(std::string(manager) + " " + kind.command.front());
            startProgram();
            auto panel = start(kind.command);
            EXPECT_TRUE(comesToBe(kind.item)) << items();
            panel.reset();
            EXPECT_TRUE(comesToBe("strip ")) << items();
            panel = start(kind.command);
            EXPECT_TRUE(comesToBe(kind.item)) << items();
            EXPECT_TRUE(opens());
            program_->terminate();
            EXPECT_TRUE(runUntil([&] { return program_->exitStatus().has_value(); }));
            EXPECT_EQ(program_->exitStatus(), 0) << program_->errors();
            panel.reset();
            EXPECT_TRUE(comesToBe("")) << items();
        }
    }
}

TEST_F(PanelsTest, WithoutAPanelTheStripWaitsForOneOnlyUnderAWindowManager) {
    startProgram();
    EXPECT_TRUE(comesToBe("strip "));
    program_.reset();
    const auto manager = startManager("openbox");
    const auto begin = std::chrono::steady_clock::now();
    startProgram();
    EXPECT_TRUE(comesToBe("strip "));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 2s);
}

TEST_F(PanelsTest, ANewUserIsWelcomedInAPanelThatComesLater) {
    const auto manager = startManager("xfwm4");
    startProgram(false);
    const auto panel = start({"xfce4-panel", "--disable-wm-check"});
    EXPECT_TRUE(comesToBe("picture ")) << items();
    EXPECT_TRUE(eventually([&] { return popover(kWelcomeWidth) > 0; }));
}

TEST_F(PanelsTest, ACompositorThatComesAndGoesLeavesTheDashboardOpen) {
    const auto manager = startManager("openbox");
    const auto panel = start(kPanels[0].command);
    startProgram();
    ASSERT_TRUE(comesToBe("wide "));
    ASSERT_TRUE(opens());
    for (int i = 0; i < 2; ++i) {
        auto compositor = start({"picom", "--backend", "xrender", "--config", "/dev/null"});
        EXPECT_TRUE(eventually([&] { return popover(kDashboardWidth) > kDashboardWidth; }));
        compositor.reset();
        EXPECT_TRUE(eventually([&] { return popover(kDashboardWidth) == kDashboardWidth; }));
    }
    EXPECT_EQ(program_->exitStatus(), std::nullopt);
}

}  // namespace
}  // namespace norvane
