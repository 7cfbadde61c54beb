#include "platform/linux/ThermalZones.h"

#include <gtest/gtest.h>

#include "CountingFileObserver.h"
#include "FakeSystemCalls.h"
#include "Fixture.h"
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
    const Device half{"Processor", "5", "10"};
    struct Case {
        const char* name;
        const char* temperature;
        std::vector<Trip> trips;
        std::vector<Device> devices;
        int want;
    };
    const std::vector<Case> cases{
        {"just below 5 °C under passive", "84999", laptop, {}, 0},
        {"5 °C under passive", "85000", laptop, {}, 1},
        {"just below passive, though limited", "89999", laptop, {half}, 1},
        {"passive", "90000", laptop, {}, 1},
        {"passive and limited by half", "90000", laptop, {half}, 2},
        {"limited by less than half", "90000", laptop, {{"Processor", "4", "10"}}, 1},
        {"half of an odd number of states", "90000", laptop, {{"cpufreq-cpu0", "2", "3"}}, 2},
        {"less than half of an odd number", "90000", laptop, {{"cpufreq-cpu0", "1", "3"}}, 1},
        {"one of several devices", "90000", laptop, {{"Fan", "1", "1"}, {"thermal-devfreq-0", "9", "9"}}, 2},
        {"a device without states", "90000", laptop, {{"Processor", "0", "0"}}, 1},
        {"a fan at full speed", "90000", laptop, {{"Fan", "1", "1"}}, 1},
        {"a setting in the guise of a device", "90000", laptop, {{"TCC Offset", "63", "63"}}, 1},
        {"injected idling at rest", "90000", laptop, {{"intel_powerclamp", "-1", "50"}}, 1},
        {"a state below 0", "90000", laptop, {{"Processor", "-1", "10"}}, 1},
        {"limited while cool", "40000", laptop, {half}, 0},
        {"just below 5 °C above passive", "94999", laptop, {}, 1},
        {"5 °C above passive", "95000", laptop, {}, 2},
        {"just below 5 °C under critical", "99999", laptop, {}, 2},
        {"5 °C under critical", "100000", laptop, {}, 3},
        {"just below 15 °C under critical", "84999", chassis, {}, 0},
        {"15 °C under critical", "85000", chassis, {}, 1},
        {"hot", "100000", withHot, {}, 3},
        {"just below hot", "99999", withHot, {}, 2},
        {"trips that were never set up",
         "60000",
         {{"passive", "0"}, {"critical", "-274000"}, {"hot", "-32768000"}, {"passive", "256000"}},
         {},
         0},
        {"a broken trip beside a good one", "86000", {{"passive", "39999"}, {"passive", "90000"}}, {}, 1},
        {"trips that are no numbers", "100000", {{"passive", "x"}, {"critical", ""}}, {}, 0},
        {"a frozen sensor", "27800", laptop, {}, 0},
        {"an impossible temperature", "150001", laptop, {}, 0},
        {"a temperature that is none", "", laptop, {}, 0},
    };
    for (const Case& c : cases) {
        machine.remove("/sys");
        addZone(0, "acpitz", c.temperature, c.trips, c.devices);
        EXPECT_EQ(ThermalZones(machine.root(), system.calls.now).read().level, c.want) << c.name;
    }
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
    struct Case {
        const char* name;
        const char* before;
        const char* after;
        int want;
    };
    for (const Case& c : {
             Case{"not at all", "1000", "1000", 0},
             Case{"just below 5 %", "1000", "1099", 0},
             Case{"5 %", "1000", "1100", 1},
             Case{"just below half", "1000", "1999", 1},
             Case{"half", "1000", "2000", 2},
             Case{"more than there was", "1000", "9000", 2},
             Case{"the counter started anew", "1000", "900", 0},
             Case{"the counter is no number", "1000", "", 0},
         }) {
        machine.remove("/sys");
        setThrottled(0, 0, "5");
        setThrottled(4, 1, c.before);
        ThermalZones fresh(machine.root(), system.calls.now);
        EXPECT_EQ(fresh.read().level, 0) << c.name << ": nothing to compare with";
        setThrottled(4, 1, c.after);
        system.advance(2s);
        EXPECT_EQ(fresh.read().level, c.want) << c.name;
    }
}

TEST_F(ThermalZonesTest, ThrottlingIsFollowedAcrossALook) {
    setThrottled(0, 0, "0");
    zones.read();
    system.advance(60s);
    setThrottled(0, 0, "30000");
    EXPECT_EQ(zones.read().level, 2);
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

    struct Case {
        const char* temperature;
        int want;
    };
    for (const Case& c :
         {Case{"89999\n", 0}, Case{"90000\n", 1}, Case{"99999\n", 1}, Case{"100000\n", 2}, Case{"\n", 0}}) {
        machine.write(device + "temp1_input", c.temperature);
        EXPECT_EQ(ThermalZones(machine.root(), system.calls.now).read().level, c.want) << c.temperature;
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

TEST_F(ThermalZonesTest, ABoardWithLinksEverywhereIsRead) {
    machine.copyFrom(fixture("arm-board-three-tiers"));
    const std::string zone = "/sys/class/thermal/thermal_zone0/";
    EXPECT_EQ(zones.read().level, 0);
    EXPECT_TRUE(zones.read().hasSources);
    machine.write(zone + "temp", "75000\n");
    EXPECT_EQ(zones.read().level, 1);
    machine.write("/sys/class/thermal/cooling_device0/cur_state", "4\n");
    EXPECT_EQ(zones.read().level, 2);
}

}  // namespace
}  // namespace norvane
