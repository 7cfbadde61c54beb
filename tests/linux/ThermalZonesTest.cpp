#include "platform/linux/ThermalZones.h"

#include <gtest/gtest.h>

#include <array>
#include <sstream>

#include "CountingFileObserver.h"
#include "FakeSystemCalls.h"
#include "TemporaryFolder.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

class ThermalZonesTest : public testing::Test {
 protected:
    TemporaryFolder machine;
    FakeSystemCalls system;
    std::shared_ptr<CountingFileObserver> observer = std::make_shared<CountingFileObserver>();
    ThermalZones zones{machine.root(observer), system.calls.now};

    // Trips as "passive 90000 critical 105000", devices as "Fan 1 10": type, state now and the most.
    void addZone(int number, const std::string& type, const std::string& temperature,
                 const std::string& trips, const std::vector<std::array<std::string, 3>>& devices = {}) {
        const std::string zone = "/sys/class/thermal/thermal_zone" + std::to_string(number) + '/';
        machine.write(zone + "type", type + "\n");
        machine.write(zone + "temp", temperature + "\n");
        std::istringstream stream(trips);
        std::string tripType, tripTemperature;
        for (int k = 0; stream >> tripType >> tripTemperature; ++k) {
            machine.write(zone + "trip_point_" + std::to_string(k) + "_type", tripType + "\n");
            machine.write(zone + "trip_point_" + std::to_string(k) + "_temp", tripTemperature + "\n");
        }
        for (std::size_t k = 0; k < devices.size(); ++k) {
            const std::string device = zone + "cdev" + std::to_string(k);
            machine.write(device + "/type", devices[k][0] + "\n");
            machine.write(device + "/cur_state", devices[k][1] + "\n");
            machine.write(device + "/max_state", devices[k][2] + "\n");
            machine.write(device + "_trip_point", "0\n");
        }
    }
    void setThrottled(int processor, int package, const char* milliseconds) {
        const std::string folder = "/sys/devices/system/cpu/cpu" + std::to_string(processor);
        machine.write(folder + "/topology/physical_package_id", std::to_string(package) + "\n");
        machine.write(folder + "/thermal_throttle/package_throttle_total_time_ms", milliseconds);
    }
};

TEST_F(ThermalZonesTest, JudgeAZoneByItsOwnTrips) {
    const char* const laptop = "active 50000 passive 90000 critical 105000";
    const char* const odd = "passive 0 critical -274000 hot -32768000 passive 256000 passive x critical y";
    struct Case {
        const char* name;
        const char* temperature;
        const char* trips;
        int want;
        std::vector<std::array<std::string, 3>> devices = {};
    };
    for (const auto& [name, temperature, trips, want, devices] : std::vector<Case>{
             {"more than 5 °C under passive", "84999", laptop, 0},
             {"5 °C under passive", "85000", laptop, 1},
             {"5 °C above", "95000", laptop, 2},
             {"5 °C under critical", "100000", laptop, 3},
             {"15 °C under it", "85000", "critical 100000", 1},
             {"hot", "100000", "passive 80000 hot 100000 critical 110000", 3},
             {"just below passive, though limited", "89999", laptop, 1, {{"Processor", "5", "10"}}},
             {"passive and limited by half", "90000", laptop, 2, {{"Processor", "5", "10"}}},
             {"by less", "90000", laptop, 1, {{"Processor", "4", "10"}}},
             {"half of an odd number of states", "90000", laptop, 2, {{"cpufreq-cpu0", "2", "3"}}},
             {"one of several", "90000", laptop, 2, {{"Fan", "1", "1"}, {"thermal-devfreq-0", "9", "9"}}},
             {"no states, a fan, a setting",
              "90000",
              laptop,
              1,
              {{"Processor", "0", "0"}, {"Fan", "1", "1"}, {"TCC Offset", "63", "63"}}},
             {"a state below all", "90000", laptop, 1, {{"Processor", "-1", "10"}}},
             {"limited while cool", "40000", laptop, 0, {{"Processor", "5", "10"}}},
             {"trips that mean nothing", "60000", odd, 0},
             {"a broken trip beside a good one", "86000", "passive 39999 passive 90000", 1},
             {"a frozen sensor", "27800", laptop, 0},
             {"impossible", "150001", laptop, 0},
         }) {
        machine.remove("/sys");
        addZone(0, "acpitz", temperature, trips, devices);
        EXPECT_EQ(ThermalZones(machine.root(), system.calls.now).read().level, want) << name;
    }
    addZone(1, "iwlwifi_1", "100000", "critical 50000");
    addZone(2, "INT3400 Thermal", "100000", "critical 50000");
    addZone(3, "switched off", "100000", "critical 50000");
    machine.write("/sys/class/thermal/thermal_zone3/mode", "disabled\n");
    addZone(4, "says nothing", "", "passive 50000");
    addZone(5, "x86_pkg_temp", "86000", "passive 90000");
    addZone(6, "acpitz", "96000", "passive 90000");
    addZone(10, "acpitz", "30000", "passive 90000");
    machine.makeFolder("/sys/class/thermal/thermal_zone7/temp");  // a sensor that cannot be read
    EXPECT_EQ(zones.read().level, 2) << "the hottest of use";
}

TEST_F(ThermalZonesTest, LookForWhatThereIsOnceAMinuteAndReadOnlyTemperaturesBetween) {
    machine.write("/sys/class/thermal/cooling_device0/type", "Processor\n");
    const ThermalZones::Answer none = zones.read();
    EXPECT_FALSE(none.hasSources);
    EXPECT_TRUE(ThermalZones::isDue({}, system.calls.now()));
    EXPECT_FALSE(ThermalZones::isDue(none, *none.readAt + 59s));
    EXPECT_TRUE(ThermalZones::isDue(none, *none.readAt + 60s));

    addZone(0, "acpitz", "40000", "passive 90000", {{"Processor", "0", "10"}});
    system.advance(60s);
    const ThermalZones::Answer some = zones.read();
    EXPECT_TRUE(some.hasSources && ThermalZones::isDue(some, *some.readAt + 1s));
    addZone(1, "new", "96000", "passive 90000");
    observer->forget();
    system.advance(59s);
    EXPECT_EQ(zones.read().level, 0) << "not noticed yet";
    EXPECT_EQ(observer->read, std::vector<std::string>{"/sys/class/thermal/thermal_zone0/temp"});
    EXPECT_TRUE(observer->opened.empty());
    system.advance(1s);
    EXPECT_EQ(zones.read().level, 2);
}

TEST_F(ThermalZonesTest, JudgeThrottlingByItsShareOfTheTime) {
    struct Case {
        const char* after;
        std::chrono::seconds time;
        int want;
    };
    // 5 % and half of 2 s; more than there was; a counter that started anew; nothing; across a look.
    for (const auto& [after, time, want] : std::vector<Case>{{"1099", 2s, 0},
                                                             {"1100", 2s, 1},
                                                             {"1999", 2s, 1},
                                                             {"2000", 2s, 2},
                                                             {"9000", 2s, 2},
                                                             {"900", 2s, 0},
                                                             {"", 2s, 0},
                                                             {"31000", 60s, 2}}) {
        machine.remove("/sys");
        setThrottled(0, 0, "5\n");
        setThrottled(4, 1, "1000\n");
        ThermalZones fresh(machine.root(), system.calls.now);
        EXPECT_EQ(fresh.read().level, 0) << after << ": nothing to compare with";
        setThrottled(4, 1, after);
        system.advance(time);
        EXPECT_EQ(fresh.read().level, want) << after;
    }
}

TEST_F(ThermalZonesTest, TheProcessorsOwnSensorsCountOnlyWhereNoZoneTells) {
    const std::string device = "/sys/devices/platform/coretemp.0/hwmon/hwmon3/";
    machine.link("/sys/class/hwmon/hwmon3", "../../devices/platform/coretemp.0/hwmon/hwmon3");
    machine.write(device + "name", "coretemp\n");
    machine.write(device + "temp1_crit", "100000\n");
    machine.write(device + "temp2_input", "99000\n");  // without its critical temperature
    const std::string other = "/sys/class/hwmon/hwmon1/";
    machine.write(other + "name", "nvme\n");
    machine.write(other + "temp1_input", "99000\n");
    machine.write(other + "temp1_crit", "80000\n");
    for (const auto& [temperature, want] :
         {std::pair("89999\n", 0), std::pair("90000\n", 1), std::pair("99999\n", 1), std::pair("\n", 0),
          std::pair("100000\n", 2)}) {
        machine.write(device + "temp1_input", temperature);
        EXPECT_EQ(ThermalZones(machine.root(), system.calls.now).read().level, want) << temperature;
    }
    addZone(0, "acpitz", "30000", "passive 90000");
    EXPECT_EQ(zones.read().level, 0);
    machine.write("/sys/class/thermal/thermal_zone0/temp", "\n");
    EXPECT_EQ(zones.read().level, 2) << "the zone says nothing this time";
}

}  // namespace
}  // namespace norvane
