#include "platform/linux/ThermalZones.h"

#include <gtest/gtest.h>

#include "CountingFileObserver.h"
#include "FakeSystemCalls.h"
#include "TemporaryFolder.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

struct Trip {
    const char* type;
    const char* temperature;
};

struct Device {
    const char* type;
    const char* curState;
    const char* maxState;
};

class ThermalZonesTest : public testing::Test {
 protected:
    TemporaryFolder machine;
    FakeSystemCalls system;
    std::shared_ptr<CountingFileObserver> observer = std::make_shared<CountingFileObserver>();
    ThermalZones zones{machine.root(observer), system.calls.now};

    // As the kernel lays it out: the class folder holds links, a zone's devices are links beside it.
    void addZone(int number, const char* type, const char* temperature, const std::vector<Trip>& trips,
                 const std::vector<Device>& devices = {}) {
        const std::string name = "thermal_zone" + std::to_string(number);
        const std::string zone = "/sys/devices/virtual/thermal/" + name + "/";
        machine.link("/sys/class/thermal/" + name, "../../devices/virtual/thermal/" + name);
        machine.write(zone + "type", std::string(type) + "\n");
        machine.write(zone + "temp", std::string(temperature) + "\n");
        for (std::size_t k = 0; k < trips.size(); ++k) {
            const std::string trip = zone + "trip_point_" + std::to_string(k);
            machine.write(trip + "_type", std::string(trips[k].type) + "\n");
            machine.write(trip + "_temp", std::string(trips[k].temperature) + "\n");
            machine.write(trip + "_hyst", "0\n");
        }
        for (std::size_t k = 0; k < devices.size(); ++k) {
            const std::string device = "cooling_device" + std::to_string(number * 10 + static_cast<int>(k));
            const std::string folder = "/sys/devices/virtual/thermal/" + device + "/";
            machine.write(folder + "type", std::string(devices[k].type) + "\n");
            machine.write(folder + "cur_state", std::string(devices[k].curState) + "\n");
            machine.write(folder + "max_state", std::string(devices[k].maxState) + "\n");
            machine.link(zone + "cdev" + std::to_string(k), "../" + device);
            machine.write(zone + "cdev" + std::to_string(k) + "_trip_point", "0\n");
        }
    }
    static std::string temp(int number) {
        return "/sys/devices/virtual/thermal/thermal_zone" + std::to_string(number) + "/temp";
    }

    void setThrottled(int processor, int package, const char* milliseconds) {
        const std::string folder = "/sys/devices/system/cpu/cpu" + std::to_string(processor);
        machine.write(folder + "/topology/physical_package_id", std::to_string(package) + "\n");
        machine.write(folder + "/thermal_throttle/package_throttle_total_time_ms",
                      std::string(milliseconds) + "\n");
    }
};

TEST_F(ThermalZonesTest, JudgeAZoneByItsOwnTrips) {
    const std::vector<Trip> laptop{{"active", "50000"}, {"passive", "90000"}, {"critical", "105000"}};
    const std::vector<Trip> chassis{{"critical", "100000"}};
    const std::vector<Trip> withHot{{"passive", "80000"}, {"hot", "100000"}, {"critical", "110000"}};
    const auto level = [this](const char* temperature, const std::vector<Trip>& trips,
                              const std::vector<Device>& devices = {}) {
        machine.remove("/sys");
        addZone(0, "acpitz", temperature, trips, devices);
        return ThermalZones(machine.root(), system.calls.now).read().level;
    };
    EXPECT_EQ(level("84999", laptop), 0);
    EXPECT_EQ(level("85000", laptop), 1) << "5 °C under passive";
    EXPECT_EQ(level("94999", laptop), 1);
    EXPECT_EQ(level("95000", laptop), 2) << "5 °C above passive";
    EXPECT_EQ(level("99999", laptop), 2);
    EXPECT_EQ(level("100000", laptop), 3) << "5 °C under critical";
    EXPECT_EQ(level("84999", chassis), 0);
    EXPECT_EQ(level("85000", chassis), 1) << "15 °C under critical";
    EXPECT_EQ(level("99999", withHot), 2);
    EXPECT_EQ(level("100000", withHot), 3) << "hot";

    EXPECT_EQ(level("89999", laptop, {{"Processor", "5", "10"}}), 1) << "just below passive, though limited";
    EXPECT_EQ(level("90000", laptop, {{"Processor", "5", "10"}}), 2) << "passive and limited by half";
    EXPECT_EQ(level("90000", laptop, {{"Processor", "4", "10"}}), 1);
    EXPECT_EQ(level("90000", laptop, {{"cpufreq-cpu0", "2", "3"}}), 2) << "half of an odd number of states";
    EXPECT_EQ(level("90000", laptop, {{"cpufreq-cpu0", "1", "3"}}), 1);
    EXPECT_EQ(level("90000", laptop, {{"Fan", "1", "1"}, {"thermal-devfreq-0", "9", "9"}}), 2)
        << "one of several";
    EXPECT_EQ(level("90000", laptop, {{"Processor", "0", "0"}}), 1) << "without states";
    EXPECT_EQ(level("90000", laptop, {{"Fan", "1", "1"}}), 1) << "a fan at full speed";
    EXPECT_EQ(level("90000", laptop, {{"TCC Offset", "63", "63"}}), 1)
        << "a setting in the guise of a device";
    EXPECT_EQ(level("90000", laptop, {{"intel_powerclamp", "-1", "50"}}), 1) << "injected idling at rest";
    EXPECT_EQ(level("90000", laptop, {{"Processor", "-1", "10"}}), 1);
    EXPECT_EQ(level("40000", laptop, {{"Processor", "5", "10"}}), 0) << "limited while cool";

    EXPECT_EQ(level("60000",
                    {{"passive", "0"}, {"critical", "-274000"}, {"hot", "-32768000"}, {"passive", "256000"}}),
              0);
    EXPECT_EQ(level("86000", {{"passive", "39999"}, {"passive", "90000"}}), 1)
        << "a broken trip beside a good one";
    EXPECT_EQ(level("100000", {{"passive", "x"}, {"critical", ""}}), 0);
    EXPECT_EQ(level("27800", laptop), 0) << "a frozen sensor";
    EXPECT_EQ(level("150001", laptop), 0) << "impossible";
    EXPECT_EQ(level("", laptop), 0);
}

TEST_F(ThermalZonesTest, TheHottestZoneDecidesAndABrokenOneSpoilsNothing) {
    addZone(0, "iwlwifi_1", "100000", {{"critical", "50000"}});
    addZone(1, "INT3400 Thermal", "100000", {{"critical", "50000"}});
    addZone(2, "switched off", "100000", {{"critical", "50000"}});
    machine.write("/sys/class/thermal/thermal_zone2/mode", "disabled\n");
    addZone(3, "says nothing", "", {{"passive", "50000"}});
    addZone(4, "x86_pkg_temp", "86000", {{"passive", "90000"}});
    machine.write("/sys/class/thermal/thermal_zone4/mode", "enabled\n");
    addZone(5, "acpitz", "96000", {{"passive", "90000"}});
    addZone(10, "acpitz", "30000", {{"passive", "90000"}});
    machine.makeFolder(temp(6));  // a sensor that cannot be read
    machine.link("/sys/class/thermal/thermal_zone6", "../../devices/virtual/thermal/thermal_zone6");
    EXPECT_EQ(zones.read().level, 2);
}

TEST_F(ThermalZonesTest, ReadOnlyTemperaturesBetweenLooks) {
    addZone(0, "acpitz", "40000", {{"passive", "90000"}}, {{"Processor", "0", "10"}});
    zones.read();
    observer->forget();
    system.advance(59s);
    zones.read();
    EXPECT_EQ(observer->read, std::vector<std::string>{"/sys/class/thermal/thermal_zone0/temp"});
    EXPECT_TRUE(observer->opened.empty());

    addZone(1, "new", "96000", {{"passive", "90000"}});
    EXPECT_EQ(zones.read().level, 0) << "not noticed yet";
    system.advance(1s);
    EXPECT_EQ(zones.read().level, 2);
}

TEST_F(ThermalZonesTest, JudgeThrottlingByItsShareOfTheTime) {
    const auto level = [this](const char* after, std::chrono::seconds time = 2s) {
        machine.remove("/sys");
        setThrottled(0, 0, "5");
        setThrottled(4, 1, "1000");
        ThermalZones fresh(machine.root(), system.calls.now);
        EXPECT_EQ(fresh.read().level, 0) << after << ": nothing to compare with";
        setThrottled(4, 1, after);
        system.advance(time);
        return fresh.read().level;
    };
    EXPECT_EQ(level("1000"), 0);
    EXPECT_EQ(level("1099"), 0);
    EXPECT_EQ(level("1100"), 1) << "5 %";
    EXPECT_EQ(level("1999"), 1);
    EXPECT_EQ(level("2000"), 2) << "half";
    EXPECT_EQ(level("9000"), 2) << "more than there was";
    EXPECT_EQ(level("900"), 0) << "the counter started anew";
    EXPECT_EQ(level(""), 0);
    EXPECT_EQ(level("31000", 60s), 2) << "across a look";
}

TEST_F(ThermalZonesTest, TheProcessorsOwnSensorsCountOnlyWithoutAnyZone) {
    const std::string device = "/sys/devices/platform/coretemp.0/hwmon/hwmon3/";
    machine.link("/sys/class/hwmon/hwmon3", "../../devices/platform/coretemp.0/hwmon/hwmon3");
    machine.write(device + "name", "coretemp\n");
    machine.write(device + "temp1_crit", "100000\n");
    machine.write(device + "temp2_input", "99000\n");  // without its critical temperature
    const std::string other = "/sys/class/hwmon/hwmon1/";
    machine.write(other + "name", "nvme\n");
    machine.write(other + "temp1_input", "99000\n");
    machine.write(other + "temp1_crit", "80000\n");

    for (const auto& [temperature, want] : std::vector<std::pair<const char*, int>>{
             {"89999\n", 0}, {"90000\n", 1}, {"99999\n", 1}, {"100000\n", 2}, {"\n", 0}}) {
        machine.write(device + "temp1_input", temperature);
        EXPECT_EQ(ThermalZones(machine.root(), system.calls.now).read().level, want) << temperature;
    }
    machine.write(device + "temp1_input", "100000\n");
    addZone(0, "acpitz", "30000", {{"passive", "90000"}});
    EXPECT_EQ(zones.read().level, 0);
    machine.write(temp(0), "\n");
    EXPECT_EQ(zones.read().level, 2) << "the zone says nothing this time";
}

TEST_F(ThermalZonesTest, AMachineWithoutSourcesIsAskedOnceAMinute) {
    machine.write("/sys/class/thermal/cooling_device0/type", "Processor\n");
    const ThermalZones::Answer none = zones.read();
    EXPECT_EQ(none.level, 0);
    EXPECT_FALSE(none.hasSources);
    EXPECT_TRUE(ThermalZones::isDue({}, system.calls.now()));
    EXPECT_FALSE(ThermalZones::isDue(none, *none.readAt + 59s));
    EXPECT_TRUE(ThermalZones::isDue(none, *none.readAt + 60s));

    addZone(0, "acpitz", "30000", {{"passive", "90000"}});
    system.advance(60s);
    const ThermalZones::Answer some = zones.read();
    EXPECT_TRUE(some.hasSources);
    EXPECT_TRUE(ThermalZones::isDue(some, *some.readAt + 1s));
}

}  // namespace
}  // namespace norvane
