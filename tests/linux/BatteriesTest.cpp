#include "platform/linux/Batteries.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>

#include "CountingFileObserver.h"
#include "FakeSystemCalls.h"
#include "platform/linux/BatteryFigures.h"
#include "platform/linux/BatteryHealth.h"
#include "platform/linux/LinuxKernel.h"
#include "TemporaryFolder.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

using Properties = std::vector<std::pair<std::string, std::string>>;

constexpr const char* kAcpi = "/devices/LNXSYSTM:00/PNP0C0A:00";
constexpr const char* kMouse = "/devices/pci0000:00/0000:00:14.0/usb1/1-2/0003:046D:4069.0004";
constexpr const char* kBluetooth = "/devices/pci0000:00/bluetooth/hci0/hci0:1/0005:05AC:0265.0008";
constexpr const char* kPort = "/devices/platform/USBC000:00";

const Properties kBattery{{"type", "Battery"},        {"status", "Discharging"},
                          {"present", "1"},           {"charge_full_design", "5000000"},
                          {"charge_full", "4800000"}, {"charge_now", "2400000"},
                          {"capacity", "50"}};

// Those, with some of them changed or added, or taken away where the value is "-".
Properties with(Properties properties, const Properties& changes) {
    for (const auto& [name, value] : changes) {
        std::erase_if(properties, [&name = name](const auto& each) { return each.first == name; });
        if (value != "-") properties.emplace_back(name, value);
    }
    return properties;
}

class BatteriesTest : public testing::Test {
 protected:
    TemporaryFolder machine;
    FakeSystemCalls system;
    std::shared_ptr<CountingFileObserver> observer = std::make_shared<CountingFileObserver>();
    Batteries batteries{machine.root(observer), system.calls.now};

    // As the kernel lays it out: links in the class folder, and all properties together in the uevent.
    void add(const std::string& name, const Properties& properties, const std::string& parent = kAcpi) {
        const std::string place = parent + "/power_supply/" + name;
        machine.link("/sys/class/power_supply/" + name, "../.." + place);
        set(name, properties, parent);
    }
    void set(const std::string& name, const Properties& properties, const std::string& parent = kAcpi) {
        const std::string folder = "/sys" + parent + "/power_supply/" + name + "/";
        std::string uevent = "POWER_SUPPLY_NAME=" + name + "\n";
        for (const auto& [property, value] : properties) {
            std::string key = property;
            std::transform(key.begin(), key.end(), key.begin(),
                           [](unsigned char letter) { return static_cast<char>(std::toupper(letter)); });
            uevent.append("POWER_SUPPLY_").append(key).append("=").append(value).append("\n");
            if (property == "type") machine.write(folder + "type", value + "\n");
        }
        machine.write(folder + "uevent", uevent);
    }
    void startAnew() { machine.remove("/sys"); }

    Batteries::Answer answer() { return Batteries(machine.root(), system.calls.now).read(); }
    // A property of the service as text; "none" where it is missing.
    std::string property(const char* name) {
        const auto services = answer().services;
        if (services.empty()) return "no service";
        return textOf(services.front().IORegistryEntryCreateCFProperty(name));
    }
    std::string description(const char* name) {
        const auto sources = answer().sources;
        if (sources.empty() || !sources.front()) return "no source";
        return textOf(sources.front()->find(name));
    }
    static std::string textOf(const PropertyValue* value) {
        if (value == nullptr) return "none";
        if (const auto boolean = value->boolean()) return *boolean ? "true" : "false";
        if (const auto number = value->wholeNumber()) return std::to_string(*number);
        return value->text() != nullptr ? *value->text() : "?";
    }
    std::string capacities() {
        return property("DesignCapacity") + " " + property("AppleRawMaxCapacity") + " " +
               property("AppleRawCurrentCapacity") + " " + property("CurrentCapacity") + "/" +
               property("MaxCapacity");
    }
};

TEST_F(BatteriesTest, AreThoseThatTheMachineRunsOn) {
    struct Case {
        const char* name;
        Properties properties;
        const char* parent;
        bool counts;
    };
    for (const Case& c : {
             Case{"an ordinary one", kBattery, kAcpi, true},
             Case{"that says so", with(kBattery, {{"scope", "System"}}), kAcpi, true},
             Case{"that does not know", with(kBattery, {{"scope", "Unknown"}}), kAcpi, true},
             Case{"of some device", with(kBattery, {{"scope", "Device"}}), kAcpi, false},
             Case{"of a mouse at a USB receiver", kBattery, kMouse, false},
             Case{"of a keyboard on Bluetooth", kBattery, kBluetooth, false},
             Case{"an empty bay", with(kBattery, {{"present", "0"}}), kAcpi, false},
             Case{"that does not tell whether it is there", with(kBattery, {{"present", "-"}}), kAcpi, true},
             Case{"an uninterruptible supply", with(kBattery, {{"type", "UPS"}}), kAcpi, false},
             Case{"of an unknown type", with(kBattery, {{"type", "Unknown"}}), kAcpi, false},
             Case{"of no type", with(kBattery, {{"type", "-"}}), kAcpi, false},
             Case{"an adapter", {{"type", "Mains"}, {"online", "1"}}, kAcpi, false},
         }) {
        startAnew();
        add("supply", c.properties, c.parent);
        EXPECT_EQ(answer().services.size(), c.counts ? 1u : 0u) << c.name;
        EXPECT_EQ(answer().sources.size(), c.counts ? 1u : 0u) << c.name;
    }
    startAnew();
    EXPECT_TRUE(answer().services.empty()) << "no supply at all";
}

TEST_F(BatteriesTest, APeripheralsDriverIsNotAsked) {
    add("BAT0", kBattery);
    add("a_mouse", kBattery, kMouse);
    add("a_ups", {{"type", "UPS"}}, kMouse);
    EXPECT_EQ(batteries.read().services.size(), 1u);
    for (const std::string& path : observer->opened) {
        const bool isOfOther = path.find("/a_") != std::string::npos;
        EXPECT_TRUE(!isOfOther || path.ends_with("/type")) << path;
    }
}

TEST_F(BatteriesTest, EachTellsItsCapacitiesInItsOwnWay) {
    const Properties bare =
        with(kBattery,
             {{"charge_full_design", "-"}, {"charge_full", "-"}, {"charge_now", "-"}, {"capacity", "-"}});
    const Properties energies = with(bare, {{"energy_full_design", "57000000"},
                                            {"energy_full", "50000000"},
                                            {"energy_now", "14500000"},
                                            {"voltage_min_design", "11400000"},
                                            {"voltage_now", "12500000"}});
    struct Case {
        const char* name;
        Properties properties;
        const char* want;  // design, full, now, and the pair of the percentage
    };
    for (const Case& c : {
             Case{"charges", kBattery, "5000 4800 2400 505/1000"},
             Case{"charges, rounded", with(kBattery, {{"charge_full", "4800500"}, {"charge_now", "2400499"}}),
                  "5000 4801 2400 505/1000"},
             Case{"energies", energies, "5000 4386 1272 295/1000"},
             Case{"energies at the voltage of the moment", with(energies, {{"voltage_min_design", "0"}}),
                  "4560 4000 1160 295/1000"},
             Case{"energies without a voltage",
                  with(energies, {{"voltage_min_design", "-"}, {"voltage_now", "-1"}}), "none 0 0 295/1000"},
             Case{"both", with(kBattery, {{"energy_full", "1"}, {"voltage_now", "1"}}),
                  "5000 4800 2400 505/1000"},
             Case{"a percentage alone", with(bare, {{"capacity", "29"}}), "none 0 0 295/1000"},
             Case{"a percentage in place of what is left", with(kBattery, {{"charge_now", "-"}}),
                  "5000 4800 0 505/1000"},
             Case{"nothing", bare, "none 0 0 none/none"},
             Case{"the percentage of the desktop, not of the charges", with(kBattery, {{"capacity", "53"}}),
                  "5000 4800 2400 535/1000"},
             Case{"no percentage", with(kBattery, {{"capacity", "-"}}), "5000 4800 2400 505/1000"},
             Case{"a percentage cut to a whole one",
                  with(kBattery, {{"capacity", "-"}, {"charge_now", "2447999"}}), "5000 4800 2448 505/1000"},
             Case{"an impossible percentage", with(kBattery, {{"capacity", "255"}}),
                  "5000 4800 2400 505/1000"},
             Case{"a percentage below 0", with(bare, {{"capacity", "-1"}}), "none 0 0 none/none"},
             Case{"a percentage that is no number", with(kBattery, {{"capacity", "half"}}),
                  "5000 4800 2400 505/1000"},
             Case{"empty", with(kBattery, {{"capacity", "-"}, {"charge_now", "0"}}), "5000 4800 0 5/1000"},
             Case{"fuller than full", with(kBattery, {{"capacity", "-"}, {"charge_now", "5100000"}}),
                  "5000 4800 5100 1000/1000"},
             Case{"new, holding more than its design", with(kBattery, {{"charge_full", "5200000"}}),
                  "5000 5200 2400 505/1000"},
             Case{"figures of 0 and below",
                  with(kBattery,
                       {{"charge_full_design", "0"}, {"charge_full", "-1"}, {"charge_now", "-4800000"}}),
                  "none 0 0 505/1000"},
             Case{"numbers without end",
                  with(kBattery, {{"charge_full_design", "9223372036854775807"},
                                  {"charge_full", "92233720368547758070"}}),
                  "9223372036854776 0 2400 505/1000"},
         }) {
        startAnew();
        add("BAT0", c.properties);
        EXPECT_EQ(capacities(), c.want) << c.name;
    }
}

TEST_F(BatteriesTest, SeveralAreOneByTheirSums) {
    const Properties small = with(kBattery, {{"charge_full_design", "1000000"},
                                             {"charge_full", "1200000"},
                                             {"charge_now", "0"},
                                             {"capacity", "0"}});
    add("BAT0", kBattery);
    add("BAT1", small);
    EXPECT_EQ(capacities(), "6000 6000 2400 405/1000") << "not the mean of 50 and 0";
    set("BAT1", with(small, {{"charge_full_design", "-"}}));
    EXPECT_EQ(capacities(), "none 6000 2400 405/1000") << "half a design would show more than 100 % health";
    set("BAT1", {{"type", "Battery"}});
    EXPECT_EQ(capacities(), "5000 4800 2400 505/1000") << "one that tells nothing takes nothing away";

    // In one unit or the other.
    const Properties energy{{"type", "Battery"},
                            {"energy_full", "12000000"},
                            {"energy_now", "12000000"},
                            {"voltage_min_design", "10000000"}};
    set("BAT1", energy);
    EXPECT_EQ(property("AppleRawMaxCapacity"), "6000");
    set("BAT0", with(kBattery, {{"voltage_min_design", "10000000"}}));
    EXPECT_EQ(property("CurrentCapacity"), "605");
    set("BAT0", with(energy, {{"energy_now", "0"}, {"voltage_min_design", "-"}, {"capacity", "0"}}));
    EXPECT_EQ(property("CurrentCapacity"), "505");
    EXPECT_EQ(property("AppleRawMaxCapacity"), "0");

    set("BAT0", {{"type", "Battery"}, {"capacity", "29"}});
    set("BAT1", {{"type", "Battery"}, {"capacity", "29"}});
    EXPECT_EQ(property("CurrentCapacity"), "295") << "nothing is known of their sizes";
    add("BAT2", with(kBattery, {{"present", "0"}, {"capacity", "100"}}));
    EXPECT_EQ(property("CurrentCapacity"), "295") << "an empty bay";
}

TEST(BatteryPercentage, ComesOutAsItWentIn) {
    for (int percent = 0; percent <= 100; ++percent) {
        Battery battery;
        battery.capacity = percent;
        const PropertyDictionary properties = batteryProperties({battery}, {});
        const auto current = properties.find("CurrentCapacity")->wholeNumber();
        const auto max = properties.find("MaxCapacity")->wholeNumber();
        EXPECT_EQ(static_cast<int>(static_cast<double>(*current) / static_cast<double>(*max) * 100.0),
                  percent);

        battery.capacity.reset();
        battery.energy = {100, {}, percent};
        EXPECT_EQ(chargePercent({battery}), percent);
    }
}

TEST_F(BatteriesTest, OtherFiguresAreLeftOutWhereFirmwareLies) {
    struct Case {
        const char* name;
        const char* property;
        Properties first;
        Properties second;
        const char* want;
    };
    for (const Case& c : {
             Case{"cycles", "CycleCount", {{"cycle_count", "317"}}, {{"cycle_count", "12"}}, "317"},
             Case{"no field for cycles", "CycleCount", {{"cycle_count", "0"}}, {}, "none"},
             Case{"cycles below 0", "CycleCount", {{"cycle_count", "-1"}}, {}, "none"},
             Case{"temperature", "Temperature", {{"temp", "305"}}, {{"temp", "310"}}, "3100"},
             Case{"frost", "Temperature", {{"temp", "-400"}}, {}, "-4000"},
             Case{"hot", "Temperature", {{"temp", "1200"}}, {}, "12000"},
             Case{"0 K", "Temperature", {{"temp", "-2731"}}, {{"temp", "250"}}, "2500"},
             Case{"too hot", "Temperature", {{"temp", "1201"}}, {}, "none"},
             Case{"too cold", "Temperature", {{"temp", "-401"}}, {}, "none"},
             Case{"no thermometer", "Temperature", {}, {}, "none"},
             Case{"one charges", "IsCharging", {}, {{"status", "Charging"}}, "true"},
             Case{"full", "IsCharging", {{"status", "Full"}}, {{"status", "Full"}}, "false"},
             Case{"not charging", "IsCharging", {{"status", "Not charging"}}, {}, "false"},
             Case{"no status", "IsCharging", {{"status", "-"}}, {{"status", "-"}}, "false"},
         }) {
        startAnew();
        add("BAT0", with(kBattery, c.first));
        add("BAT1", with(kBattery, c.second));
        EXPECT_EQ(property(c.property), c.want) << c.name;
    }
}

TEST_F(BatteriesTest, ExternalPowerIsWhatASupplySaysAndElseWhatABatteryDoes) {
    const Properties mainsOff{{"type", "Mains"}, {"online", "0"}};
    const Properties mainsOn{{"type", "Mains"}, {"online", "1"}};
    const auto usb = [](const char* type, const char* online) {
        return Properties{{"type", type}, {"online", online}};
    };
    struct Case {
        const char* name;
        const char* status;
        std::vector<Properties> supplies;
        const char* want;
    };
    for (const Case& c : {
             Case{"adapter in", "Charging", {mainsOn}, "true"},
             Case{"adapter out", "Discharging", {mainsOff}, "false"},
             Case{"discharged on purpose", "Discharging", {mainsOn}, "true"},
             Case{"an adapter that missed the news", "Charging", {mainsOff}, "false"},
             Case{"USB-C in, adapter out", "Charging", {mainsOff, usb("USB", "1")}, "true"},
             Case{"a programmable supply", "Discharging", {usb("USB", "2")}, "true"},
             Case{"an older kernel's type", "Discharging", {usb("USB_PD", "1")}, "true"},
             Case{"an odd adapter", "Discharging", {usb("BrickID", "1")}, "true"},
             Case{"a wireless one", "Discharging", {usb("Wireless", "1")}, "true"},
             Case{"something else that is online", "Discharging", {usb("UPS", "1")}, "false"},
             Case{"charging pad of a mouse",
                  "Discharging",
                  {with(usb("Wireless", "1"), {{"scope", "Device"}})},
                  "false"},
             Case{"adapter of a device, alone", "Full", {with(mainsOff, {{"scope", "Device"}})}, "true"},
             Case{"USB-C out", "Discharging", {usb("USB", "0")}, "false"},
             Case{"USB-C that is not reported: charging", "Charging", {usb("USB", "0")}, "true"},
             Case{"full", "Full", {}, "true"},
             Case{"held", "Not charging", {}, "true"},
             Case{"discharging", "Discharging", {}, "false"},
             Case{"nothing tells", "Unknown", {usb("USB", "-")}, "none"},
             Case{"not even a status", "-", {}, "none"},
             Case{"online that is no number", "Unknown", {usb("USB", "yes")}, "none"},
         }) {
        startAnew();
        add("BAT0", with(kBattery, {{"status", c.status}}));
        for (std::size_t k = 0; k < c.supplies.size(); ++k)
            add("supply" + std::to_string(k), with({}, c.supplies[k]), kPort);
        EXPECT_EQ(property("ExternalConnected"), c.want) << c.name;
    }
    startAnew();
    add("BAT0", with(kBattery, {{"status", "Discharging"}}));
    add("BAT1", with(kBattery, {{"status", "Full"}}));
    EXPECT_EQ(property("ExternalConnected"), "true") << "any battery";
    set("BAT1", with(kBattery, {{"status", "Unknown"}}));
    EXPECT_EQ(property("ExternalConnected"), "false");
}

TEST_F(BatteriesTest, APortThatFeedsATelephoneIsNoExternalPower) {
    const std::string ports = std::string("/sys") + kPort + "/typec/";
    struct Case {
        const char* name;
        std::vector<const char*> roles;
        const char* want;
    };
    for (const Case& c : {
             Case{"takes power", {"source [sink]\n"}, "true"},
             Case{"gives power", {"[source] sink\n"}, "false"},
             Case{"can only give", {"[source]\n"}, "false"},
             Case{"can only take", {"[sink]\n"}, "true"},
             Case{"one takes, one gives", {"[source] sink\n", "source [sink]\n"}, "true"},
             Case{"both give", {"[source] sink\n", "[source] sink\n"}, "false"},
             Case{"says nothing", {""}, "true"},
             Case{"no ports", {}, "true"},
         }) {
        for (const bool hasLink : {true, false}) {
            startAnew();
            add("BAT0", kBattery);
            add("ucsi-source-psy-USBC000:001", {{"type", "USB"}, {"online", "1"}}, kPort);
            if (hasLink)
                machine.link("/sys" + std::string(kPort) + "/power_supply/ucsi-source-psy-USBC000:001/device",
                             "../..");
            for (std::size_t k = 0; k < c.roles.size(); ++k)
                machine.write(ports + "port" + std::to_string(k) + "/power_role", c.roles[k]);
            machine.write(ports + "port0-partner/power_role", "source [sink]\n");
            EXPECT_EQ(property("ExternalConnected"), c.want)
                << c.name << (hasLink ? "" : ", without the link");
        }
    }
}

TEST_F(BatteriesTest, WhatTheUeventLacksIsReadFromTheFilesAndNothingElse) {
    const std::string folder = "/sys/class/power_supply/BAT0/";
    add("BAT0", kBattery);
    machine.write(folder + "charge_control_end_threshold", "50\n");
    machine.write(folder + "capacity", "77\n");
    batteries.read();
    EXPECT_EQ(property("CurrentCapacity"), "505") << "told together with the others";
    EXPECT_EQ(std::count(observer->read.begin(), observer->read.end(), folder + "capacity"), 0);
    EXPECT_EQ(observer->read.size(), 2u) << "the uevent and the limit";

    for (const auto& [name, value] : with(kBattery, {{"scope", "System"}, {"status", "Not charging"}}))
        machine.write(folder + name, value + "\n");
    machine.remove(folder + "uevent");
    EXPECT_EQ(capacities(), "5000 4800 2400 505/1000");
    EXPECT_EQ(description("Is Charged"), "true");
    machine.write(folder + "scope", "Device\n");
    EXPECT_TRUE(answer().services.empty());
    machine.write(folder + "scope", "System\n");
    machine.write(folder + "uevent", std::string(100'000, 'x'));
    EXPECT_EQ(property("CurrentCapacity"), "505") << "a uevent beyond measure";
}

TEST_F(BatteriesTest, ConditionIsNormalUnlessABatteryIsDamagedOrWorn) {
    struct Case {
        const char* name;
        Properties changes;
        bool isNormal;
    };
    std::vector<Case> cases{
        {"nothing said", {}, true},
        {"half of the design", {{"charge_full", "2500000"}}, true},
        {"less than half", {{"charge_full", "2499999"}}, false},
        {"less than half, full unknown", {{"charge_full", "0"}}, true},
        {"in energies, without a voltage",
         {{"charge_full", "-"},
          {"charge_full_design", "-"},
          {"energy_full", "20000000"},
          {"energy_full_design", "50000000"}},
         false},
    };
    for (const char* passing : {"Good", "Unknown", "Overheat", "Cold", "Warm", "Cool", "Hot", ""})
        cases.push_back({passing, {{"health", passing}}, true});
    for (const char* damage :
         {"Dead", "Unspecified failure", "Over voltage", "Over current", "Calibration required",
          "Watchdog timer expire", "Safety timer expire", "Cell imbalance", "Blown fuse"}) {
        cases.push_back({damage, {{"health", damage}}, false});
    }
    for (const Case& c : cases) {
        startAnew();
        add("BAT0", kBattery);
        add("BAT1", with(kBattery, c.changes));
        EXPECT_EQ(description("BatteryHealthCondition"), c.isNormal ? "Normal" : "Service Recommended")
            << c.name;
    }
}

TEST_F(BatteriesTest, TellTimesOnceTheRateHasSettled) {
    const auto timeToEmpty = [&] { return textOf(batteries.read().sources.at(0)->find("Time to Empty")); };
    const Properties discharging =
        with(kBattery,
             {{"current_now", "-1200000"}, {"voltage_now", "11000000"}, {"voltage_min_design", "11000000"}});
    add("BAT0", discharging);
    EXPECT_EQ(timeToEmpty(), "-1");
    system.advance(10s);
    EXPECT_EQ(timeToEmpty(), "120");
    startAnew();
    EXPECT_TRUE(batteries.read().sources.empty());
    system.advance(3s);
    add("BAT0", discharging);
    EXPECT_EQ(timeToEmpty(), "-1") << "it was out in between";
}

TEST_F(BatteriesTest, AMachineWithoutSuppliesIsLookedAtEveryMinute) {
    const auto isDueLater = [&](const Batteries::Answer& answer) {
        return Batteries::isDue(answer, *answer.readAt + 3s);
    };
    EXPECT_TRUE(Batteries::isDue({}, system.calls.now()));
    const Batteries::Answer none = batteries.read();
    EXPECT_FALSE(isDueLater(none));
    EXPECT_TRUE(Batteries::isDue(none, *none.readAt + 59'990ms));
    add("hidpp_battery_0", kBattery, kMouse);
    add("hidpp_battery_1", with(kBattery, {{"scope", "Device"}}));
    EXPECT_FALSE(isDueLater(batteries.read())) << "a mouse is none of the machine's";
    add("BAT1", with(kBattery, {{"present", "0"}}));
    EXPECT_TRUE(isDueLater(batteries.read())) << "a battery may be put in";
}

TEST_F(BatteriesTest, BothPortsTellOfOneReading) {
    add("BAT0", with(kBattery, {{"status", "Full"}}));
    LinuxKernel kernel(machine.root(observer), system.calls, LinuxKernel::Lanes::sameThread());
    const TickToken tick{1};
    const auto services =
        kernel.registry().IOServiceGetMatchingServices(RegistryService::AppleSmartBattery, tick);
    ASSERT_TRUE(services && services->size() == 1);
    EXPECT_EQ(services->front().IORegistryEntryCreateCFProperty("IsCharging")->boolean(), false);
    const auto sources = kernel.powerSources().IOPSCopyPowerSourcesInfo(tick);
    ASSERT_TRUE(sources && sources->size() == 1);
    EXPECT_EQ(sources->front()->find("Is Charged")->boolean(), true);
    EXPECT_EQ(std::count(observer->read.begin(), observer->read.end(), "/sys/class/power_supply/BAT0/uevent"),
              1);
}

}  // namespace
}  // namespace norvane
