#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "dashboard/MenuRootView.h"
#include "dashboard/ShownPanel.h"
#include "linux/FakeSystemCalls.h"
#include "linux/Fixture.h"
#include "linux/TemporaryFolder.h"
#include "MachineSampler.h"

namespace norvane {
namespace {

using Told = std::vector<std::string>;

constexpr const char* kBattery = "/sys/class/power_supply/BAT0/uevent";
constexpr const char* kMains = "/sys/class/power_supply/AC/uevent";

// What the energy panel tells on a machine with these files, from its first line to the last.
Told panelOn(const TemporaryFolder& files) {
    FakeSystemCalls system;
    LinuxKernel kernel(files.root(), system.calls, LinuxKernel::Lanes::sameThread());
    MachineSampler machine(kernel);
    machine.rest().userDefaults.setObject("isSmartAutoExpandEnabled", false);
    const SmartPodManager smartPodManager;
    const CPUHardwareInfo hardware(kernel.sysctl());
    MenuRootView view(machine.platform(), machine.preferences(), machine.sampler(), smartPodManager,
                      [&]() -> const CPUHardwareInfo& { return hardware; }, {});
    ShownPanel panel(machine.rest(), view.content());
    machine.openDashboard();
    panel.appear();
    panel.perform(panel.node("Impact", AccessibleRole::button), "press");
    machine.tick();
    panel.settle();

    Told told;
    for (const AccessibleNode& node : panel.nodes())
        told.push_back(node.name + (node.value.empty() ? "" : ": " + node.value));
    while (!told.empty() && !told.front().starts_with("Battery Level"))
        told.erase(told.begin());
    if (!told.empty()) told.pop_back();  // "Quit"
    return told;
}

class BatteryPanelTest : public testing::Test {
 protected:
    BatteryPanelTest() { files.copyFrom(fixture("hybrid-laptop")); }
    // The captured battery with other lines.
    void change(const std::string& line, const std::string& other) {
        std::string text = files.root().read(kBattery).value_or("");
        const std::size_t at = text.find(line);
        ASSERT_NE(at, std::string::npos) << line;
        files.write(kBattery, text.replace(at, text.find('\n', at) - at, other));
    }

    TemporaryFolder files;
};

TEST_F(BatteryPanelTest, TellsWhatTheFilesOfTheMachineSay) {
    // 77 of 86 Wh, at 15.4 V.
    EXPECT_EQ(
        panelOn(files),
        (Told{"Battery Level: 60%", "Power Source: Battery", "Estimating…", "Energy mode: Automatic",
              "Battery Temperature: —",
              "Battery is healthy.\nCompute demand, memory pressure, and energy consumption are currently "
              "within optimal ranges.",
              "Battery Health: 89.5%", "Normal", "Degradation", "Charge Cycles: 183",
              "Max Capacity: 5000 mAh", "Design Capacity: 5584 mAh"}));

    files.write(kMains, "POWER_SUPPLY_NAME=AC\nPOWER_SUPPLY_TYPE=Mains\nPOWER_SUPPLY_ONLINE=1\n");
    change("POWER_SUPPLY_STATUS=", "POWER_SUPPLY_STATUS=Charging");
    change("POWER_SUPPLY_CAPACITY=", "POWER_SUPPLY_CAPACITY=7");
    change("POWER_SUPPLY_ENERGY_NOW=", "POWER_SUPPLY_ENERGY_NOW=3500000");
    change("POWER_SUPPLY_ENERGY_FULL=", "POWER_SUPPLY_ENERGY_FULL=50000000\nPOWER_SUPPLY_TEMP=431");
    const Told worn = panelOn(files);
    ASSERT_EQ(worn.size(), 12U);
    EXPECT_EQ(worn[0], "Battery Level: 7%");
    EXPECT_EQ(worn[1], "Power Source: Power Adapter");
    EXPECT_EQ(worn[4], "Battery Temperature: 43°C");
    EXPECT_EQ(worn[6], "Battery Health: 58.1%");
    EXPECT_EQ(worn[10], "Max Capacity: 3247 mAh");
}

TEST_F(BatteryPanelTest, IsEmptyWithoutABattery) {
    files.remove("/sys/class/power_supply/BAT0");
    EXPECT_EQ(panelOn(files), Told{});
}

}  // namespace
}  // namespace norvane
