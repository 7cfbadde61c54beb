#include <gtest/gtest.h>
#include <umockdev.h>

#include <memory>
#include <optional>
#include <string>

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
        kernel_.emplace(RootFolder(""), system_.calls, LinuxKernel::Lanes::sameThread());
    }
    // In the library's own language: "E:" is a line of its uevent, "A:" a file.
    void add(const std::string& device, const std::string& description) {
        const std::string text = "P: " + device + "\n" + description;
        EXPECT_TRUE(umockdev_testbed_add_from_string(devices_.get(), text.c_str(), nullptr)) << text;
    }
    void setUeventLine(const std::string& device, const char* key, const char* value) {
        umockdev_testbed_set_property(devices_.get(), ("/sys" + device).c_str(), key, value);
    }
    void remove(const std::string& device) {
        umockdev_testbed_remove_device(devices_.get(), ("/sys" + device).c_str());
    }
    // What the only battery says, and the only source.
    std::string battery(const char* property) {
        const auto found = kernel_->registry().IOServiceGetMatchingServices(
            RegistryService::AppleSmartBattery, TickToken::none());
        return found->size() == 1 ? propertyText(found->front().IORegistryEntryCreateCFProperty(property))
                                  : std::to_string(found->size()) + " batteries";
    }
    std::string source(const char* key) {
        const auto sources = kernel_->powerSources().IOPSCopyPowerSourcesInfo(TickToken::none());
        const bool isOne = sources && sources->size() == 1 && sources->front();
        return isOne ? propertyText(sources->front()->find(key)) : "no source";
    }

    struct Release {
        void operator()(gpointer object) const { g_object_unref(object); }
    };
    std::unique_ptr<UMockdevTestbed, Release> devices_;
    FakeSystemCalls system_;
    std::optional<LinuxKernel> kernel_;
};

TEST_F(SimulatedDevicesTest, TheMachinesBatteryIsReadBesideAMousesAndAZoneByItsTrips) {
    const std::string bat0 = "/devices/LNXSYSTM:00/LNXSYBUS:00/PNP0C0A:00/power_supply/BAT0";
    const std::string ac = "/devices/LNXSYSTM:00/ACPI0003:00/power_supply/AC";
    const auto heat = [this] { return kernel_->processInfo().thermalState(TickToken::none()); };
    EXPECT_EQ(battery("DesignCapacity"), "0 batteries");
    EXPECT_EQ(heat(), 0);
    add("/devices/pci0000:00/0000:00:14.0/usb1/1-2/0003:046D:4069.0004/power_supply/hidpp_battery_0",
        "E: SUBSYSTEM=power_supply\nE: POWER_SUPPLY_NAME=hidpp_battery_0\nE: POWER_SUPPLY_TYPE=Battery\n"
        "E: POWER_SUPPLY_STATUS=Full\nE: POWER_SUPPLY_CAPACITY=100\nA: type=Battery\n");
    add(bat0,
        "E: SUBSYSTEM=power_supply\nE: POWER_SUPPLY_NAME=BAT0\nE: POWER_SUPPLY_TYPE=Battery\n"
        "E: POWER_SUPPLY_STATUS=Discharging\nE: POWER_SUPPLY_PRESENT=1\nE: POWER_SUPPLY_CYCLE_COUNT=312\n"
        "E: POWER_SUPPLY_VOLTAGE_MIN_DESIGN=10000000\nE: POWER_SUPPLY_POWER_NOW=10000000\n"
        "E: POWER_SUPPLY_ENERGY_FULL=50000000\nE: POWER_SUPPLY_ENERGY_NOW=40000000\n"
        "E: POWER_SUPPLY_CAPACITY=80\nA: type=Battery\nA: charge_control_end_threshold=80\n");
    add(ac,
        "E: SUBSYSTEM=power_supply\nE: POWER_SUPPLY_NAME=AC\nE: POWER_SUPPLY_TYPE=Mains\n"
        "E: POWER_SUPPLY_ONLINE=0\nA: type=Mains\n");
    add("/devices/virtual/thermal/thermal_zone0",
        "E: SUBSYSTEM=thermal\nA: type=acpitz\nA: mode=enabled\nA: temp=95000\n"
        "A: trip_point_0_type=passive\nA: trip_point_0_temp=90000\n");
    EXPECT_EQ(battery("DesignCapacity"), "0 batteries") << "without supplies it is looked at now and then";
    system_.advance(60s);
    EXPECT_EQ(battery("AppleRawMaxCapacity"), "5000");
    EXPECT_EQ(battery("ExternalConnected"), "false");
    EXPECT_EQ(heat(), 2);
    system_.advance(10s);
    EXPECT_EQ(source("Time to Empty"), "240");

    setUeventLine(ac, "POWER_SUPPLY_ONLINE", "1");
    setUeventLine(bat0, "POWER_SUPPLY_STATUS", "Not charging");
    EXPECT_EQ(battery("ExternalConnected"), "true");
    EXPECT_EQ(source("Is Charged"), "true") << "held at 80 %";
    remove(bat0);
    EXPECT_EQ(battery("ExternalConnected"), "0 batteries");
    EXPECT_EQ(source("Is Charged"), "no source");
}

}  // namespace
}  // namespace norvane
