#include <chrono>
#include <functional>

#include "platform/linux/LinuxAppearance.h"
#include "platform/linux/LinuxMainQueue.h"
#include "platform/linux/LinuxMonotonicClock.h"
#include "platform/linux/X11WindowServer.h"
#include "platform/StatusItem.h"
#include "RealDesktop.h"
#include "windows/Program.h"
#include "windows/SwatchContent.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr const char* kWatcher = "org.kde.StatusNotifierWatcher";
constexpr int kDashboardWidth = 520;
constexpr int kWelcomeWidth = 340;

struct Panel {
    std::vector<std::string> command;
    std::string item;  // what carries it there
};

const Panel kTrayer{{"trayer", "--edge", "top", "--height", "24", "--widthtype", "request"}, "wide "};
const Panel kTint2{{"tint2"}, "square "};
const Panel kXfcePanel{{"xfce4-panel", "--disable-wm-check"}, "picture "};

// Real window managers and panels, and the real program, or an item of our own, beside them.
class PanelsTest : public RealDesktop {
 protected:
    void startProgram(bool hasSeenWelcome = true) {
        program_.reset();  // there is one on a display
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
        const bool isOpenbox = name == "openbox";
        run("xsetroot -name ''");
        auto manager =
            isOpenbox ? start({name, "--sm-disable", "--startup", "xsetroot -name started"}) : start({name});
        EXPECT_TRUE(eventually([&] {
            const xcb_window_t root = bystander_.root();
            return isOpenbox ? bystander_.text(root, "WM_NAME") == "started"
                             : !bystander_.numbers(root, "_NET_SUPPORTING_WM_CHECK").empty();
        })) << name;
        return manager;
    }

    // What carries the item: "strip", "wide", "square" in a tray, or "picture" in a panel, as many as there
    // are; an item that is nowhere is "".
    std::string items() const {
        std::string found;
        collect(bystander_.root(), found);
        const auto registered =
            peer_.call(kWatcher, "/StatusNotifierWatcher", "org.freedesktop.DBus.Properties", "Get",
                       g_variant_new("(ss)", kWatcher, "RegisteredStatusNotifierItems"));
        if (!registered) return found;
        const GVariantPointer boxed(g_variant_get_child_value(registered.get(), 0));
        const GVariantPointer list(g_variant_get_variant(boxed.get()));
        for (gsize i = 0; i < g_variant_n_children(list.get()); ++i)
            found += "picture ";
        return found;
    }
    void collect(xcb_window_t parent, std::string& found) const {
        for (const xcb_window_t child : bystander_.childrenOf(parent)) {
            const PixelRect frame = bystander_.frameOf(child);
            if (!bystander_.text(child, "WM_CLASS").starts_with("norvane") || frame.height >= 100 ||
                !bystander_.isShown(child)) {
                collect(child, found);
            } else if (!bystander_.numbers(child, "_NET_WM_STRUT").empty()) {
                found += "strip ";
            } else {
                found += frame.width >= 50 ? "wide " : "square ";
            }
        }
    }
    void expect(const std::string& wanted) const {
        EXPECT_TRUE(eventually([&] { return items() == wanted; })) << wanted << "expected, not " << items();
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
            EXPECT_EQ(run(NORVANE_BINARY_DIR "/norvane"), 0);
            return popover(kDashboardWidth) > 0;
        });
    }

    std::unique_ptr<Program> program_;
};

TEST_F(PanelsTest, EachPanelCarriesOneItemAndGetsItBackWhenItStartsAgain) {
    for (const char* const manager : {"openbox", "xfwm4", ""}) {
        const auto windowManager = *manager != '\0' ? startManager(manager) : nullptr;
        for (const Panel& kind : {kTrayer, kTint2, kXfcePanel}) {
            SCOPED_TRACE(std::string(manager) + " " + kind.command.front());
            startProgram();
            auto panel = start(kind.command);
            expect(kind.item);
            panel.reset();
            expect("strip ");
            panel = start(kind.command);
            expect(kind.item);
            EXPECT_TRUE(opens());
            program_->terminate();
            EXPECT_TRUE(runUntil([&] { return program_->exitStatus().has_value(); }));
            EXPECT_EQ(program_->exitStatus(), 0) << program_->errors();
            panel.reset();
            expect("");
        }
    }
}

TEST_F(PanelsTest, AStripAndAWelcomeWaitForAPanelOnlyUnderAWindowManager) {
    startProgram();
    expect("strip ");
    const auto manager = startManager("xfwm4");
    const auto begin = std::chrono::steady_clock::now();
    startProgram();
    expect("strip ");
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 2s);
    startProgram(false);
    const auto panel = start(kXfcePanel.command);
    expect(kXfcePanel.item);
    EXPECT_TRUE(eventually([&] { return popover(kWelcomeWidth) > 0; }));
}

TEST_F(PanelsTest, ACompositorThatComesAndGoesLeavesTheDashboardOpen) {
    const auto manager = startManager("openbox");
    const auto panel = start(kTrayer.command);
    startProgram();
    expect(kTrayer.item);
    ASSERT_TRUE(opens());
    for (int i = 0; i < 2; ++i) {
        auto compositor = start({"picom", "--backend", "xrender", "--config", "/dev/null"});
        EXPECT_TRUE(eventually([&] { return popover(kDashboardWidth) > kDashboardWidth; }));
        compositor.reset();
        EXPECT_TRUE(eventually([&] { return popover(kDashboardWidth) == kDashboardWidth; }));
    }
    EXPECT_EQ(program_->exitStatus(), std::nullopt);
}

TEST_F(PanelsTest, ThePanelsOwnPictureIsTheContentAndTakesClicksAndHasAMenu) {
    const auto panel = start(kXfcePanel.command);
    ASSERT_TRUE(peer_.comesToHaveOwner(kWatcher)) << "the panel does not start";
    LinuxMainQueue queue;
    const LinuxMonotonicClock clock;
    BusConnection bus(queue, bus_.address(), {.firstAttempt = 0ns, .firstPause = 5ms, .longestPause = 20ms});
    BusConnection noBus(queue, "");
    const Published<XSettings> settings;
    LinuxAppearance appearance(bus, settings);
    TextLayouts layouts;
    const auto connection = X11Connection::open(xvfb_.display().c_str());
    ASSERT_NE(connection, nullptr);
    X11WindowServer windows(*connection, bus, noBus, layouts, appearance, clock, queue);
    int clicks = 0;
    int said = 0;
    SwatchContent content;
    auto item = windows.statusItemWithLength(StatusItem::kSquareLength);
    item->setAction([&] { ++clicks; });
    item->setContextMenu({{"Say_it", [&said] { ++said; }}});
    item->setContent(&content);
    expect("picture ");

    const auto paint = [&](const Color& color, double rate) {
        content.swatches = {{{{}, {22, 22}}, color}};
        content.rate = rate;
        content.change();
    };
    // Of the screen's pixels, those of that colour.
    const auto found = [&](std::uint32_t color) {
        const auto pixels = bystander_.pixels({0, 0, Xvfb::kWidth, Xvfb::kHeight});
        PixelRect square;
        for (int at = 0; at < Xvfb::kWidth * Xvfb::kHeight; ++at) {
            const PixelRect one{at % Xvfb::kWidth, at / Xvfb::kWidth, 1, 1};
            if (pixels[static_cast<std::size_t>(at)] == color)
                square = square.isEmpty() ? one : square.united(one);
        }
        return square.width > 9 && square.height > 9 ? square : PixelRect{};
    };
    paint({0, 1, 0, 1}, 0);
    ASSERT_TRUE(eventually([&] { return !found(0x00FF00).isEmpty(); }));
    paint({1, 0, 0, 1}, 60);
    EXPECT_TRUE(runUntil([&, before = content.pictures] { return content.pictures >= before + 2; }));
    paint({0, 0, 1, 1}, 0);
    ASSERT_TRUE(eventually([&] { return !found(0x0000FF).isEmpty(); })) << "what lay halfway is not shown";

    // There is no window manager to tell what the panel leaves free.
    constexpr int kThickness = 30;
    bystander_.setNumbers(bystander_.root(), "_NET_WORKAREA",
                          {0, kThickness, Xvfb::kWidth, Xvfb::kHeight - 30});
    const Rect atTheEnd{{Xvfb::kWidth - 22, 0}, {22, kThickness}};
    ASSERT_TRUE(runUntil([&] { return item->buttonFrame() == atTheEnd; }));
    const PixelRect place = found(0x0000FF);
    const int x = place.x + place.width / 2;
    ASSERT_EQ(run("xdotool mousemove " + std::to_string(x) + ' ' + std::to_string(place.y + 5) + " click 1"),
              0);
    ASSERT_TRUE(runUntil([&] { return clicks == 1; }));
    EXPECT_EQ(item->buttonFrame(), (Rect{{x - 11.0, 0}, {22, kThickness}}));
    ASSERT_EQ(run("xdotool click 3"), 0);
    // The keys reach nobody until the menu is there.
    EXPECT_TRUE(runUntil([&] { return run("xdotool key Down Return") != 0 || said > 0; }));
    EXPECT_GT(said, 0);
    EXPECT_EQ(clicks, 1);
    item.reset();
    expect("");
}

}  // namespace
}  // namespace norvane
