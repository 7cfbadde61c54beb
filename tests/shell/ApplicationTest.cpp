#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "ShellTest.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

// What a user sees of the machine, in the label and on the dashboard.
class ApplicationTest : public ShellTest {
 protected:
    bool isOpen() { return shown() == "main"; }
    // "12% 4.0G"
    std::string label() {
        machine_.windowServer.statusItemPicture();
        std::string text;
        for (const AccessibleNode& column :
             machine_.windowServer.statusItemContent()->accessibleTree().children) {
            text += (text.empty() ? "" : " ") + column.value;
        }
        return text;
    }
    AccessibleNode tree() {
        window("main").picture();
        return window("main").content().accessibleTree();
    }
    // The sentence and two of the pods, separated by bars.
    std::string dashboard() {
        const AccessibleNode all = tree();
        std::string told;
        for (const AccessibleNode& node : all.children) {
            if (node.role == AccessibleRole::text && told.empty()) told = node.name;
        }
        for (const char* pod : {"CPU", "RAM"}) {
            const AccessibleNode* const node = find(all, pod);
            told += std::string(" | ") + pod + ' ' + (node != nullptr ? node->value : "?");
        }
        return told;
    }
};

constexpr const char* kOptimal = "System is operating optimally within comfortable parameters.";
constexpr const char* kSaturated = "Critical processor load. Every available cycle is currently utilized.";
constexpr const char* kInitializing = "Initializing system telemetry...";

std::string told(const std::string& status, const std::string& cpu, const std::string& ram) {
    return status + " | CPU " + cpu + " % | RAM " + ram + " GB used";
}

// "7% 4.0G", "100% 12G": a whole percentage up to 100, and gigabytes with one place below ten.
bool isLegalLabel(const std::string& label) {
    const auto isNumber = [](std::string_view digits, std::size_t most) {
        const bool hasLeadingZero = digits.size() > 1 && digits.front() == '0';
        return !digits.empty() && digits.size() <= most && !hasLeadingZero &&
               digits.find_first_not_of("0123456789") == std::string_view::npos;
    };
    const std::string_view text = label;
    const auto percent = text.find("% ");
    if (percent == std::string_view::npos || text.back() != 'G') return false;
    const std::string_view cpu = text.substr(0, percent);
    const std::string_view ram = text.substr(percent + 2, text.size() - percent - 3);
    if (!isNumber(cpu, 3) || (cpu.size() == 3 && cpu != "100")) return false;
    const auto point = ram.find('.');
    if (point == std::string_view::npos) return isNumber(ram, 4) && ram.size() >= 2;
    return (isNumber(ram.substr(0, point), 1) || ram == "10.0") && ram.size() == point + 2;
}

TEST_F(ApplicationTest, ComesUpAsALabelOfFiftyFourPointsThatFollowsTheMachine) {
    machine_.hostPort.processors.setLoad(37);
    store(defaultskey::kHasSeenWelcome, true);
    app_.emplace(machine_.platform());
    app_->launch();
    EXPECT_EQ(machine_.windowServer.statusItemLength(), 54);
    EXPECT_EQ(label(), "0% 0.0G") << "before the first tick";
    EXPECT_EQ(ticks(), 0U) << "the sampler starts after the launch";
    machine_.settle();
    EXPECT_EQ(label(), "0% 4.0G");
    EXPECT_EQ(machine_.application.activations, 1);
    machine_.advance(1s);
    EXPECT_EQ(label(), "37% 4.0G");
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(machine_.sysctl.text(SysctlText::machdep_cpu_brand_string).asked(), 1U)
        << "warmed up before any click";
    EXPECT_EQ(app_->cpuHardwareInfo().chipName(), "Scripted Processor");
}

TEST_F(ApplicationTest, AClickOpensTheDashboardLiveAndInsideTheScreenAndASecondOneClosesIt) {
    launch();
    machine_.advance(10s);
    machine_.hostPort.processors.setLoad(50);
    machine_.advance(100ms);
    const auto before = ticks();
    click();
    ASSERT_TRUE(isOpen());
    EXPECT_EQ(ticks(), before + 1) << "the forced tick";
    EXPECT_EQ(machine_.application.activations, 2);
    machine_.advance(kEntrance);
    const Rect frame = window("main").frame();
    EXPECT_EQ(frame.size.width, 520);
    EXPECT_EQ(frame.maxX(), 1600 - 8) << "8 points inside";
    EXPECT_EQ(frame.minY(), 28);
    EXPECT_EQ(window("main").placesShown().size(), 1U) << "it came up where it stays";
    EXPECT_EQ(dashboard(), told(kInitializing, "50.00", "4.00"))
        << "the first sentence waits its three seconds";
    machine_.advance(3s);
    EXPECT_EQ(dashboard(), told(kOptimal, "50.00", "4.00"));
    click();
    EXPECT_FALSE(isOpen());
    const auto snapshot = app_->delegate().statusBarController()->sampler().snapshot().get();
    machine_.advance(10s);
    EXPECT_EQ(app_->delegate().statusBarController()->sampler().snapshot().get(), snapshot) << "hidden again";
}

TEST_F(ApplicationTest, ClosesOnEscOnAPressOutsideAndWhenTheKeyboardGoes) {
    launch();
    click();
    EXPECT_TRUE(isUIVisible());
    machine_.windowServer.press(KeyEvent::Key::escape);
    EXPECT_FALSE(isOpen());
    EXPECT_FALSE(isUIVisible());
    click();
    machine_.windowServer.click({100, 700});
    EXPECT_FALSE(isOpen());
    click();
    machine_.windowServer.focusElsewhere();
    EXPECT_FALSE(isOpen());
    click();
    machine_.windowServer.click({window("main").frame().midX(), window("main").frame().minY() + 4});
    EXPECT_TRUE(isOpen()) << "a press inside";
    machine_.windowServer.click(machine_.windowServer.buttonFrame()->origin);
    EXPECT_FALSE(isOpen()) << "a press on the item closes and does not open again";
}

TEST_F(ApplicationTest, TheSentenceWaitsForALastingLoadAndForgetsAtAReopening) {
    launch();
    click();
    machine_.advance(5s);
    EXPECT_EQ(dashboard(), told(kOptimal, "0.00", "4.00"));
    machine_.hostPort.processors.setLoad(100);
    machine_.advance(6s);  // the state turns critical at the sixth tick of load
    EXPECT_EQ(dashboard(), told(kOptimal, "100.00", "4.00"));
    machine_.advance(3s);
    EXPECT_EQ(dashboard(), told(kSaturated, "100.00", "4.00"));

    // The load ends, and the popover closes while the recovery's sentence is pending.
    machine_.hostPort.processors.setLoad(0);
    machine_.advance(12s);
    EXPECT_EQ(dashboard(), told(kSaturated, "0.00", "4.00"));
    click();
    machine_.hostPort.processors.setLoad(100);
    machine_.advance(30s + 100ms);
    click();
    EXPECT_EQ(dashboard(), told(kSaturated, "100.00", "4.00"))
        << "an opening shows the verdict of its moment";
    machine_.advance(10s);
    EXPECT_EQ(dashboard(), told(kSaturated, "100.00", "4.00"))
        << "no verdict from before the closing comes after it";
}

TEST_F(ApplicationTest, ShownWhileItIsShownTheSentenceKeepsItsWait) {
    const PreferencesStore preferences(machine_.userDefaults);
    auto sampler = PerformanceSampler::create(machine_.platform(), preferences);
    const SmartPodManager smartPodManager;
    const CPUHardwareInfo hardware(machine_.sysctl);
    MenuRootView view(machine_.platform(), preferences, sampler, smartPodManager,
                      [&]() -> const CPUHardwareInfo& { return hardware; }, {});
    const auto says = [&](const std::string& sentence) {
        view.content().displayList(view.content().fittingSize({1000, 1000}), machine_.time.monotonic());
        return find(view.content().accessibleTree(), sentence) != nullptr;
    };
    view.content().appear();
    sampler->setUIVisible(true);
    machine_.settle();
    sampler->setUIVisible(true);  // as a popover that closed under a pin is shown again
    machine_.settle();
    says("");
    machine_.advance(1s);
    EXPECT_TRUE(says(kInitializing));
    machine_.advance(2s);
    EXPECT_TRUE(says(kOptimal));
}

TEST_F(ApplicationTest, QuitIsAButtonThatLightsUpUnderThePointer) {
    launch();
    open();
    const AccessibleNode quit = tree().children.back();
    ASSERT_EQ(quit.name, "Quit");
    EXPECT_EQ(quit.role, AccessibleRole::button);
    EXPECT_EQ(quit.frame.size, (Size{496, 24}));
    const std::size_t plain = flatItems(window("main").picture().items).size();
    window("main").content().pointer({PointerEvent::Kind::move, {quit.frame.midX(), quit.frame.midY()}});
    EXPECT_EQ(flatItems(window("main").picture().items).size(), plain + 1) << "the fill";
    pressEscape();
    open();
    const std::size_t reopened = flatItems(window("main").picture().items).size();
    window("main").content().pointer({PointerEvent::Kind::leave, {}});
    EXPECT_EQ(flatItems(window("main").picture().items).size(), reopened)
        << "a reopened dashboard is not hovered";
    EXPECT_FALSE(machine_.application.terminated);
    clickOn("main", "Quit");
    EXPECT_TRUE(machine_.application.terminated);
}

TEST_F(ApplicationTest, WithoutAPanelOrAScreenAClickDoesNothingAndTicksGoOn) {
    machine_.windowServer.hasPanel = false;
    launch();
    machine_.advance(5s);
    app_->delegate().statusBarController()->statusItemClicked();
    machine_.settle();
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(ticks(), 6U);
    machine_.windowServer.hasPanel = true;
    click();
    EXPECT_TRUE(isOpen());
    machine_.windowServer.screen.reset();
    machine_.advance(5s);
}

TEST_F(ApplicationTest, EndsAtAnyMoment) {
    launch();
    click();
    machine_.hostPort.processors.setLoad(100);
    machine_.advance(7s);
    machine_.windowServer.clickStatusItem();
    machine_.windowServer.clickStatusItem();  // shown, its window not up yet
    app_.reset();
    const auto asked = ticks();
    machine_.advance(1min);
    EXPECT_EQ(ticks(), asked);
    EXPECT_EQ(machine_.windowServer.statusItemContent(), nullptr);
}

TEST_F(ApplicationTest, AVirtualDayWithRandomOpenings) {
    std::mt19937 random(7);
    store(defaultskey::kHasSeenWelcome, true);
    app_.emplace(machine_.platform());
    app_->launch();
    std::uint64_t openings = 0;
    int illegal = 0;
    std::size_t longestHistory = 0;
    const PerformanceSampler& sampler = app_->delegate().statusBarController()->sampler();
    const auto stats = sampler.menuBarStats().observe([&](const auto&) {
        machine_.dispatch.mainQueue().async([&] { illegal += isLegalLabel(label()) ? 0 : 1; });
    });
    const auto history = sampler.cpuHistory().observe(
        [&](const auto& points) { longestHistory = std::max(longestHistory, points->size()); });
    const auto day = machine_.time.monotonic() + 24h - 1ms;
    while (machine_.time.monotonic() < day) {
        machine_.hostPort.processors.setLoad(static_cast<double>(random() % 101));
        machine_.hostPort.statistics64.always(VMStatistics64{.wire_count = random() % 4'194'304});
        const std::chrono::milliseconds time(random() % (isOpen() ? 20'000 : 600'000));
        machine_.advance(std::min<std::chrono::nanoseconds>(time, day - machine_.time.monotonic()));
        if (machine_.time.monotonic() >= day) break;
        if (!isOpen()) ++openings;
        click();
    }
    EXPECT_GT(openings, 100U);
    EXPECT_EQ(ticks(), 86'400 + openings);
    EXPECT_EQ(illegal, 0);
    EXPECT_EQ(longestHistory, 60U);
}

}  // namespace
}  // namespace norvane
