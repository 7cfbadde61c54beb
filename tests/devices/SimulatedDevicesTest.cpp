#include <gtest/gtest.h>
#include <umockdev.h>

#include <fstream>
#include <memory>

#include "linux/FakeSystemCalls.h"
#include "linux/PropertyText.h"
#include "platform/linux/LinuxKernel.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

// Devices as the peer library lays them out below /sys, which it puts in the place of the real one: nothing
// of ours knows. Works only in a program that it has been loaded into before all else.
class SimulatedDevicesTest : public testing::Test {
 protected:
    void SetUp() override {
        devices_.reset(umockdev_testbed_new());
        ASSERT_TRUE(umockdev_in_mock_environment()) << "to be started by umockdev-wrapper";
        kernel_ =
            std::make_unique<LinuxKernel>(RootFolder(""), system_.calls, LinuxKernel::Lanes::sameThread());
    }

    // In the library's own language: "P:" a device's place, "E:" a line of its uevent, "A:" a file.
    void add(const std::string& description) {
        EXPECT_TRUE(umockdev_testbed_add_from_string(devices_.get(), description.c_str(), nullptr))
            << description;
    }
    // In place, as the kernel does it, whereas the library would put another file there.
    void setFile(const std::string& device, const char* file, const char* text) {
        const std::unique_ptr<char, void (*)(gpointer)> root(umockdev_testbed_get_root_dir(devices_.get()),
                                                             g_free);
        std::ofstream stream(root.get() + ("/sys" + device + "/") + file,
                             std::ios::in | std::ios::out | std::ios::trunc);
        stream << text << '\n';
        ASSERT_TRUE(stream.flush()) << "no such file";
    }
    void setUeventLine(const std::string& device, const char* key, const char* value) {
        umockdev_testbed_set_property(devices_.get(), ("/sys" + device).c_str(), key, value);
    }
    void remove(const std::string& device) {
        umockdev_testbed_remove_device(devices_.get(), ("/sys" + device).c_str());
    }

    void pass(std::chrono::seconds time) { system_.advance(time); }
    std::vector<RegistryEntry> batteries() {
        return kernel_->registry()
            .IOServiceGetMatchingServices(RegistryService::AppleSmartBattery, TickToken::none())
            .value();
    }
    // What the only battery says, and the only source.
    std::string battery(const char* property) {
        const auto found = batteries();
        return found.size() == 1 ? propertyText(found[0].IORegistryEntryCreateCFProperty(property))
                                 : "no battery";
    }
    std::string source(const char* key) {
        const auto sources = kernel_->powerSources().IOPSCopyPowerSourcesInfo(TickToken::none());
        const bool isOne = sources && sources->size() == 1 && sources->front();
        return isOne ? propertyText(sources->front()->find(key)) : "no source";
    }
    int thermalState() { return kernel_->processInfo().thermalState(TickToken::none()); }

 private:
    struct Release {
        void operator()(gpointer object) const { g_object_unref(object); }
    };
    std::unique_ptr<UMockdevTestbed, Release> devices_;
    FakeSystemCalls system_;
    std::unique_ptr<LinuxKernel> kernel_;
};

TEST_F(SimulatedDevicesTest, TheMachinesBatteryIsReadBesideAMouses) {
    EXPECT_TRUE(batteries().empty());
    EXPECT_EQ(source("Is Charged"), "no source");

    const std::string bat0 = "/devices/LNXSYSTM:00/LNXSYBUS:00/PNP0C0A:00/power_supply/BAT0";
    const std::string mouse =
        "/devices/pci0000:00/0000:00:14.0/usb1/1-2/0003:046D:4069.0004/power_supply/hidpp_battery_0";
    add("P: " + mouse +
        "\nE: SUBSYSTEM=power_supply\nE: POWER_SUPPLY_NAME=hidpp_battery_0\nE: POWER_SUPPLY_TYPE=Battery\n"
        "E: POWER_SUPPLY_STATUS=Full\nE: POWER_SUPPLY_CAPACITY=100\nA: type=Battery\n");
    add("P: " + bat0 +
        "\nE: SUBSYSTEM=power_supply\nE: POWER_SUPPLY_NAME=BAT0\nE: POWER_SUPPLY_TYPE=Battery\n"
        "E: POWER_SUPPLY_STATUS=Discharging\nE: POWER_SUPPLY_PRESENT=1\nE: POWER_SUPPLY_CYCLE_COUNT=312\n"
        "E: POWER_SUPPLY_VOLTAGE_MIN_DESIGN=10000000\nE: POWER_SUPPLY_VOLTAGE_NOW=12000000\n"
        "E: POWER_SUPPLY_POWER_NOW=10000000\nE: POWER_SUPPLY_ENERGY_FULL_DESIGN=60000000\n"
        "E: POWER_SUPPLY_ENERGY_FULL=50000000\nE: POWER_SUPPLY_ENERGY_NOW=40000000\n"
        "E: POWER_SUPPLY_CAPACITY=80\nA: type=Battery\nA: charge_control_end_threshold=80\n");
    add("P: /devices/LNXSYSTM:00/ACPI0003:00/power_supply/AC\nE: SUBSYSTEM=power_supply\n"
        "E: POWER_SUPPLY_NAME=AC\nE: POWER_SUPPLY_TYPE=Mains\nE: POWER_SUPPLY_ONLINE=0\nA: type=Mains\n");
    EXPECT_TRUE(batteries().empty()) << "a machine without supplies is not looked at all the time";
    pass(60s);
    EXPECT_EQ(batteries().size(), 1u);
    EXPECT_EQ(battery("DesignCapacity"), "6000");
    EXPECT_EQ(battery("AppleRawMaxCapacity"), "5000");
    EXPECT_EQ(battery("AppleRawCurrentCapacity"), "4000");
    EXPECT_EQ(battery("CurrentCapacity"), "805");
    EXPECT_EQ(battery("ExternalConnected"), "false");
    pass(10s);
    EXPECT_EQ(source("Time to Empty"), "240");

    setUeventLine("/devices/LNXSYSTM:00/ACPI0003:00/power_supply/AC", "POWER_SUPPLY_ONLINE", "1");
    setUeventLine(bat0, "POWER_SUPPLY_STATUS", "Not charging");
    EXPECT_EQ(battery("ExternalConnected"), "true");
    EXPECT_EQ(source("Is Charged"), "true") << "held at 80 %";

    remove(bat0);
    EXPECT_TRUE(batteries().empty());
    EXPECT_EQ(source("Is Charged"), "no source");
}

TEST_F(SimulatedDevicesTest, AThermalZoneIsJudgedByItsTrips) {
    EXPECT_EQ(thermalState(), 0);
    const std::string zone = "/devices/virtual/thermal/thermal_zone0";
    add("P: " + zone +
        "\nE: SUBSYSTEM=thermal\nA: type=acpitz\nA: mode=enabled\nA: temp=45000\n"
        "A: trip_point_0_type=passive\nA: trip_point_0_temp=90000\n"
        "A: trip_point_1_type=hot\nA: trip_point_1_temp=100000\n");
    pass(60s);
    EXPECT_EQ(thermalState(), 0);
    setFile(zone, "temp", "91000");
    EXPECT_EQ(thermalState(), 1);
    setFile(zone, "temp", "95000");
    EXPECT_EQ(thermalState(), 2);
    setFile(zone, "temp", "100000");
    EXPECT_EQ(thermalState(), 3);
    remove(zone);
    pass(60s);
    EXPECT_EQ(thermalState(), 0);
}

}  // namespace
}  // namespace norvane
