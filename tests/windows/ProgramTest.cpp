#include <algorithm>
#include <atomic>
#include <memory>
#include <set>
#include <thread>

#include "DesktopTest.h"
#include "drawing/PanelTones.h"
#include "PaintedImage.h"
#include "platform/linux/PangoTextRuler.h"
#include "platform/scripted/ScriptedMachine.h"
#include "Program.h"
#include "shell/PassthroughHostingView.h"

namespace norvane {
namespace {

constexpr int kDashboardWidth = 520;
constexpr int kWelcomeWidth = 340;
// Of the dashboard: the pods' middle, from its top, and the most that it is
// high with all of them closed.
constexpr int kPodsMiddle = 105;
constexpr int kHeightWithoutAPanel = 220;

// The real program on a display without a window manager, as its user clicks
// it.
class ProgramTest : public DesktopTest {
 protected:
    void begin() override { start(); }
    void start(bool hasSeenWelcome = true) {
        program_.reset();  // there is one on a display
        program_ = std::make_unique<Program>(xvfb_.display(), hasSeenWelcome);
        ASSERT_TRUE(comes([&] { return bystander_->windowAt(kStrip) && colours(kStrip) > 8; }))
            << program_->errors();
    }
    std::size_t colours(const PixelRect& part) const {
        const auto pixels = bystander_->pixels(part);
        return std::set<std::uint32_t>(pixels.begin(), pixels.end()).size();
    }
    // The place of a popover, by its width, once its window is there and painted.
    std::optional<PixelRect> popover(int width = kDashboardWidth) const {
        for (const xcb_window_t window : bystander_->windows()) {
            const PixelRect frame = bystander_->frameOf(window);
            if (frame.width == width && colours(frame) > 32) return frame;
        }
        return std::nullopt;
    }
    bool comesUp(int width = kDashboardWidth) {
        return comes([&] { return popover(width).has_value(); });
    }
    bool goesAway(int width = kDashboardWidth) {
        return comes([&] { return !popover(width); });
    }
    void clickStrip() { click(kStrip.x + 27, 11); }
    void expectEnd() {
        ASSERT_TRUE(comes([&] { return program_->exitStatus().has_value(); }));
        EXPECT_EQ(program_->exitStatus(), 0);
        EXPECT_EQ(program_->errors(), "");
    }

    std::unique_ptr<Program> program_;
};

// Of the label, inside of the strip's edge.
constexpr PixelRect kCPUColumn{3, 2, 22, 17};

// How that looks at a load, beside a memory column of so many characters.
std::vector<std::uint32_t> expectedColumn(double percent, double ramUsed) {
    ScriptedMachine machine;
    TextLayouts layouts;
    PangoTextRuler ruler(layouts);
    CairoPainter painter(layouts);
    MenuBarStatsModel model;
    PassthroughHostingView view(model, machine.platform(ruler));
    model.cpuPercent.set(percent);
    model.ramUsedGB.set(ramUsed);
    DisplayList list = view.displayList({54, 22}, machine.time.monotonic());
    const Rect all{{}, {54, 22}};
    list.items.insert(list.items.begin(),
                      {"back", all, FillShape{RoundedRect{all, 0}, panelTones(false).strip}});
    const PaintedImage image(painter, list);
    std::vector<std::uint32_t> pixels;
    for (int y = kCPUColumn.y; y < kCPUColumn.y + kCPUColumn.height; ++y) {
        for (int x = kCPUColumn.x; x < kCPUColumn.x + kCPUColumn.width; ++x)
            pixels.push_back(image.at(x, y) & 0xFFFFFF);
    }
    return pixels;
}

TEST_F(ProgramTest, TheLabelFollowsALoadStartedByHand) {
    std::vector<std::vector<std::uint32_t>> busy;
    for (int percent = 90; percent <= 100; ++percent) {
        for (const double ram : {1.0, 10.0, 100.0})
            busy.push_back(expectedColumn(percent, ram));
    }
    std::atomic<bool> goesOn = true;
    std::vector<std::thread> load;
    for (unsigned i = 0; i < std::max(1U, std::thread::hardware_concurrency()); ++i) {
        load.emplace_back([&goesOn] {
            while (goesOn) {
            }
        });
    }
    EXPECT_TRUE(comes([&] {
        const auto shown = bystander_->pixels(kCPUColumn.moved(kStrip.x, 0));
        return std::any_of(busy.begin(), busy.end(), [&](const auto& column) {
            return std::equal(shown.begin(), shown.end(), column.begin(), column.end(),
                              [](auto p, auto q) { return PaintedImage::largestBetween(p, q) <= 24; });
        });
    })) << "the label never read 90 percent or more";
    goesOn = false;
    for (std::thread& thread : load)
        thread.join();
}

TEST_F(ProgramTest, AClickOpensTheDashboardUnderTheItemAndEveryWayClosesIt) {
    const PixelRect neighbour{20, 300, 100, 100};
    bystander_->open(neighbour);
    const struct {
        const char* name;
        std::function<void()> close;
    } ways[] = {
        {"a second click on the item", [&] { clickStrip(); }},
        {"Esc", [&] { type("Escape"); }},
        {"a click on another window", [&] { click(neighbour.x + 50, neighbour.y + 50); }},
        {"a click on the empty desktop", [&] { click(400, 600); }},
    };
    for (const auto& way : ways) {
        clickStrip();
        ASSERT_TRUE(comesUp()) << way.name << program_->errors();
        const PixelRect frame = *popover();
        EXPECT_EQ(frame.x + frame.width, Xvfb::kWidth - 8) << "inside the screen";
        EXPECT_EQ(frame.y, 28) << "below the item";
        click(frame.x + 200, frame.y + 8);
        EXPECT_TRUE(popover()) << "a click inside closed it";
        way.close();
        EXPECT_TRUE(goesAway()) << way.name;
    }
    EXPECT_EQ(bystander_->presses(), 1) << "the click that closed it reached the other window";
}

TEST_F(ProgramTest, EachPodOpensItsPanelAndIsRememberedAndClosesItAgain) {
    clickStrip();
    ASSERT_TRUE(comesUp()) << program_->errors();
    const auto height = [&] { return popover().value_or(PixelRect{}).height; };
    const auto clickPod = [&](int x) {
        const PixelRect frame = *popover();
        click(frame.x + x, frame.y + kPodsMiddle);
    };
    EXPECT_GT(height(), kHeightWithoutAPanel);
    clickPod(50);
    ASSERT_TRUE(comes([&] { return height() > 0 && height() <= kHeightWithoutAPanel; })) << height();
    const int closed = height();
    for (const auto& [x, name] :
         {std::pair{180, "memory"}, {320, "storage"}, {kDashboardWidth - 50, "battery"}, {50, "cpu"}}) {
        const auto isRemembered = [&, line = "lastViewedPod=\"" + std::string(name) + "\"\n"] {
            return program_->defaults().find(line) != std::string::npos;
        };
        clickPod(x);
        EXPECT_TRUE(comes(isRemembered)) << name << program_->defaults();
        EXPECT_TRUE(comes([&] { return height() > closed; })) << name;
        clickPod(x);
        EXPECT_TRUE(comes([&] { return height() == closed; })) << name << height();
        EXPECT_TRUE(isRemembered()) << name << ": closed is not forgotten";
    }
}

TEST_F(ProgramTest, TheFirstStartWelcomesAndGoesOnToTheDashboard) {
    start(false);
    ASSERT_TRUE(comesUp(kWelcomeWidth)) << program_->errors();
    type("Escape");
    EXPECT_TRUE(goesAway(kWelcomeWidth));
    clickStrip();
    ASSERT_TRUE(comesUp(kWelcomeWidth)) << "dismissed is not seen";
    type("Tab");
    type("Return");
    EXPECT_TRUE(comesUp()) << program_->errors();
    EXPECT_FALSE(popover(kWelcomeWidth));
}

TEST_F(ProgramTest, TheQuitRowEndsItAndSoDoASignalAndTheServersEnd) {
    clickStrip();
    ASSERT_TRUE(comesUp());
    const PixelRect frame = *popover();
    click(frame.x + frame.width / 2, frame.y + frame.height - 12 - 12);
    expectEnd();
    start();
    program_->terminate();
    expectEnd();
    start();
    clickStrip();
    ASSERT_TRUE(comesUp());
    bystander_.reset();
    windowServer_.reset();
    connection_.reset();
    xvfb_.kill();
    expectEnd();
}

TEST(ProgramWithoutADisplay, SaysSoInOneLineAndFails) {
    Program program("");
    ASSERT_TRUE(comes([&] { return program.exitStatus().has_value(); }));
    EXPECT_EQ(program.exitStatus(), 1);
    EXPECT_EQ(program.errors(), "Norvane: there is no X display to show itself on.\n");
}

}  // namespace
}  // namespace norvane
