#include "platform/linux/Batteries.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>

#include "CountingFileObserver.h"
#include "FakeSystemCalls.h"
#include "platform/linux/BatteryFigures.h"
#include "PropertyText.h"
#include "TemporaryFolder.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

using Properties = std::vector<std::pair<std::string, std::string>>;

constexpr const char* kAcpi = "/devices/LNXSYSTM:00/PNP0C0A:00";
constexpr const char* kMouse = "/devices/pci0000:00/0000:00:14.0/usb1/1-2/0003:046D:4069.0004";
constexpr const char* kBluetooth = "/devices/pci0000:00/bluetooth/hci0/hci0:1/0005:05AC:0265.0008";
constexpr const char* kPort = "/devices/platform/USBC000:00";
constexpr const char* kConnected = "ExternalConnected";

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
Properties with(const Properties& changes) {
    return with(kBattery, changes);
}

class BatteriesTest : public testing::Test {
 protected:
    TemporaryFolder machine;
    FakeSystemCalls system;
    std::shared_ptr<CountingFileObserver> observer = std::make_shared<CountingFileObserver>();
    Batteries batteries{machine.root(observer), system.calls.now};

    // As the kernel lays it out: links in the class folder, and all properties together in the uevent.
    void add(const std::string& name, const Properties& properties, const std::string& parent = kAcpi) {
        machine.link("/sys/class/power_supply/" + name, "../.." + parent + "/power_supply/" + name);
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
    // The first battery of a machine without any other supply.
    void addAlone(const Properties& properties) {
        machine.remove("/sys");
        add("BAT0", properties);
    }

    Batteries::Answer answer() { return Batteries(machine.root(), system.calls.now).read(); }
    std::string property(const char* name) {
        const auto services = answer().services;
        if (services.empty()) return "no service";
        return propertyText(services.front().IORegistryEntryCreateCFProperty(name));
    }
    std::string description(const char* name) {
        const auto sources = answer().sources;
        return sources.empty() || !sources.front() ? "no source" : propertyText(sources.front()->find(name));
    }
    // Design, full, now, and the pair of the percentage.
    std::string capacities() {
        return property("DesignCapacity") + " " + property("AppleRawMaxCapacity") + " " +
               property("AppleRawCurrentCapacity") + " " + property("CurrentCapacity") + "/" +
               property("MaxCapacity");
    }
};

TEST_F(BatteriesTest, AreThoseThatTheMachineRunsOn) {
    EXPECT_TRUE(answer().services.empty()) << "no supply at all";
    const auto counted = [this](const Properties& properties, const char* parent = kAcpi) {
        machine.remove("/sys");
        add("supply", properties, parent);
        EXPECT_EQ(answer().services.size(), answer().sources.size());
        return answer().services.size() == 1;
    };
    EXPECT_TRUE(counted(kBattery));
    EXPECT_TRUE(counted(with({{"scope", "System"}})));
    EXPECT_TRUE(counted(with({{"scope", "Unknown"}})));
    EXPECT_TRUE(counted(with({{"present", "-"}}))) << "does not tell whether it is there";
    EXPECT_FALSE(counted(with({{"present", "0"}}))) << "an empty bay";
    EXPECT_FALSE(counted(with({{"scope", "Device"}})));
    EXPECT_FALSE(counted(kBattery, kMouse)) << "at a USB receiver";
    EXPECT_FALSE(counted(kBattery, kBluetooth));
    EXPECT_FALSE(counted(with({{"type", "UPS"}})));
    EXPECT_FALSE(counted(with({{"type", "-"}})));
    EXPECT_FALSE(counted({{"type", "Mains"}, {"online", "1"}}));
}

TEST_F(BatteriesTest, APeripheralsDriverIsNotAsked) {
    add("BAT0", kBattery);
    add("a_mouse", kBattery, kMouse);
    add("a_ups", {{"type", "UPS"}}, kMouse);
    EXPECT_EQ(batteries.read().services.size(), 1u);
    for (const std::string& path : observer->opened)
        EXPECT_TRUE(path.find("/a_") == std::string::npos || path.ends_with("/type")) << path;
}

TEST_F(BatteriesTest, EachTellsItsCapacitiesInItsOwnWay) {
    const Properties bare =
        with({{"charge_full_design", "-"}, {"charge_full", "-"}, {"charge_now", "-"}, {"capacity", "-"}});
    const Properties energies = with(bare, {{"energy_full_design", "57000000"},
                                            {"energy_full", "50000000"},
                                            {"energy_now", "14500000"},
                                            {"voltage_min_design", "11400000"},
                                            {"voltage_now", "12500000"}});
    const auto expect = [this](const char* name, const Properties& properties, const char* want) {
        addAlone(properties);
        EXPECT_EQ(capacities(), want) << name;
    };
    expect("charges, rounded", with({{"charge_full", "4800500"}, {"charge_now", "2400499"}}),
           "5000 4801 2400 505/1000");
    expect("energies", energies, "5000 4386 1272 295/1000");
    expect("energies at the voltage of the moment", with(energies, {{"voltage_min_design", "0"}}),
           "4560 4000 1160 295/1000");
    expect("energies without a voltage", with(energies, {{"voltage_min_design", "-"}, {"voltage_now", "-1"}}),
           "none 0 0 295/1000");
    expect("a percentage alone", with(bare, {{"capacity", "29"}}), "none 0 0 295/1000");
    expect("nothing", bare, "none 0 0 none/none");
    expect("the percentage of the desktop", with({{"capacity", "53"}}), "5000 4800 2400 535/1000");
    expect("a percentage cut to a whole one", with({{"capacity", "-"}, {"charge_now", "2447999"}}),
           "5000 4800 2448 505/1000");
    expect("an impossible percentage", with({{"capacity", "255"}}), "5000 4800 2400 505/1000");
    expect("a percentage below 0", with(bare, {{"capacity", "-1"}}), "none 0 0 none/none");
    expect("empty", with({{"capacity", "-"}, {"charge_now", "0"}}), "5000 4800 0 5/1000");
    expect("fuller than full", with({{"capacity", "-"}, {"charge_now", "5100000"}}),
           "5000 4800 5100 1000/1000");
    expect("new, holding more than its design", with({{"charge_full", "5200000"}}),
           "5000 5200 2400 505/1000");
    expect("figures of 0 and below",
           with({{"charge_full_design", "0"}, {"charge_full", "-1"}, {"charge_now", "-4800000"}}),
           "none 0 0 505/1000");
    expect("numbers without end",
           with({{"charge_full_design", "9223372036854775807"}, {"charge_full", "92233720368547758070"}}),
           "9223372036854776 0 2400 505/1000");
}

TEST_F(BatteriesTest, SeveralAreOneByTheirSums) {
    const Properties small = with({{"charge_full_design", "1000000"},
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
    set("BAT0", with({{"voltage_min_design", "10000000"}}));
    EXPECT_EQ(property("CurrentCapacity"), "605");
    set("BAT0", with(energy, {{"energy_now", "0"}, {"voltage_min_design", "-"}, {"capacity", "0"}}));
    EXPECT_EQ(property("CurrentCapacity"), "505");
    EXPECT_EQ(property("AppleRawMaxCapacity"), "0");

    set("BAT0", {{"type", "Battery"}, {"capacity", "29"}});
    set("BAT1", {{"type", "Battery"}, {"capacity", "29"}});
    add("BAT2", with({{"present", "0"}, {"capacity", "100"}}));
    EXPECT_EQ(property("CurrentCapacity"), "295") << "nothing is known of their sizes; a bay is empty";
}

TEST(BatteryPercentage, ComesOutAsItWentIn) {
    for (int percent = 0; percent <= 100; ++percent) {
        Battery battery;
        battery.capacity = percent;
        const PropertyDictionary properties = batteryProperties({battery}, {});
        const auto current = *properties.find("CurrentCapacity")->number();
        EXPECT_EQ(static_cast<int>(current / *properties.find("MaxCapacity")->number() * 100.0), percent);
        battery.capacity.reset();
        battery.energy = {100, {}, percent};
        EXPECT_EQ(chargePercent({battery}), percent);
    }
}

TEST_F(BatteriesTest, OtherFiguresAreLeftOutWhereFirmwareLies) {
    const auto expect = [this](const char* name, const Properties& first, const Properties& second,
                               const char* want) {
        addAlone(with(first));
        add("BAT1", with(second));
        EXPECT_EQ(property(name), want) << name << ' ' << (first.empty() ? "" : first[0].second);
    };
    expect("CycleCount", {{"cycle_count", "317"}}, {{"cycle_count", "12"}}, "317");
    expect("CycleCount", {{"cycle_count", "0"}}, {}, "none");
    expect("CycleCount", {{"cycle_count", "-1"}}, {}, "none");
    expect("Temperature", {{"temp", "305"}}, {{"temp", "310"}}, "3100");
    expect("Temperature", {{"temp", "-400"}}, {}, "-4000");
    expect("Temperature", {{"temp", "-401"}}, {}, "none");
    expect("Temperature", {{"temp", "1200"}}, {}, "12000");
    expect("Temperature", {{"temp", "1201"}}, {}, "none");
    expect("Temperature", {{"temp", "-2731"}}, {{"temp", "250"}}, "2500");
    expect("Temperature", {}, {}, "none");
    expect("IsCharging", {}, {{"status", "Charging"}}, "true");
    expect("IsCharging", {{"status", "Full"}}, {{"status", "Not charging"}}, "false");
    expect("IsCharging", {{"status", "-"}}, {{"status", "-"}}, "false");
}

TEST_F(BatteriesTest, ExternalPowerIsWhatASupplySaysAndElseWhatABatteryDoes) {
    const auto supply = [](const char* type, const char* online) {
        return Properties{{"type", type}, {"online", online}};
    };
    const auto connected = [this](const char* status, const std::vector<Properties>& supplies) {
        addAlone(with({{"status", status}}));
        for (std::size_t k = 0; k < supplies.size(); ++k)
            add("supply" + std::to_string(k), with({}, supplies[k]), kPort);
        return property(kConnected);
    };
    EXPECT_EQ(connected("Discharging", {supply("Mains", "1")}), "true") << "discharged on purpose";
    EXPECT_EQ(connected("Discharging", {supply("Mains", "0")}), "false");
    EXPECT_EQ(connected("Charging", {supply("Mains", "0")}), "false") << "an adapter that missed the news";
    EXPECT_EQ(connected("Charging", {supply("Mains", "0"), supply("USB", "1")}), "true");
    EXPECT_EQ(connected("Discharging", {supply("USB", "2")}), "true") << "a programmable supply";
    for (const char* type : {"USB_PD", "BrickID", "Wireless"})
        EXPECT_EQ(connected("Discharging", {supply(type, "1")}), "true") << type;
    EXPECT_EQ(connected("Discharging", {supply("UPS", "1")}), "false");
    EXPECT_EQ(connected("Discharging", {with(supply("Wireless", "1"), {{"scope", "Device"}})}), "false");
    EXPECT_EQ(connected("Full", {with(supply("Mains", "0"), {{"scope", "Device"}})}), "true");
    EXPECT_EQ(connected("Discharging", {supply("USB", "0")}), "false");
    EXPECT_EQ(connected("Charging", {supply("USB", "0")}), "true") << "USB-C that is not reported";
    EXPECT_EQ(connected("Full", {}), "true");
    EXPECT_EQ(connected("Not charging", {}), "true");
    EXPECT_EQ(connected("Discharging", {}), "false");
    EXPECT_EQ(connected("Unknown", {supply("USB", "-")}), "none");
    EXPECT_EQ(connected("Unknown", {supply("USB", "yes")}), "none");
    EXPECT_EQ(connected("-", {}), "none");

    addAlone(kBattery);
    add("BAT1", with({{"status", "Full"}}));
    EXPECT_EQ(property(kConnected), "true") << "any battery";
    set("BAT1", with({{"status", "Unknown"}}));
    EXPECT_EQ(property(kConnected), "false");
}

TEST_F(BatteriesTest, APortThatFeedsATelephoneIsNoExternalPower) {
    const std::string ports = std::string("/sys") + kPort + "/typec/";
    const auto connected = [&](const std::vector<const char*>& roles, bool hasLink) {
        addAlone(kBattery);
        add("ucsi-source-psy-USBC000:001", {{"type", "USB"}, {"online", "1"}}, kPort);
        const std::string link =
            std::string("/sys") + kPort + "/power_supply/ucsi-source-psy-USBC000:001/device";
        if (hasLink) machine.link(link, "../..");
        for (std::size_t k = 0; k < roles.size(); ++k)
            machine.write(ports + "port" + std::to_string(k) + "/power_role", roles[k]);
        machine.write(ports + "port0-partner/power_role", "source [sink]\n");
        return property(kConnected);
    };
    for (const bool hasLink : {true, false}) {
        SCOPED_TRACE(hasLink);
        EXPECT_EQ(connected({"[source] sink\n"}, hasLink), "false");
        EXPECT_EQ(connected({"[source] sink\n", "source [sink]\n"}, hasLink), "true");
        EXPECT_EQ(connected({"[source] sink\n", "[source] sink\n"}, hasLink), "false");
        EXPECT_EQ(connected({}, hasLink), "true");
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

    for (const auto& [name, value] : with({{"scope", "System"}, {"status", "Not charging"}}))
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
    const auto isNormal = [this](const Properties& changes) {
        addAlone(kBattery);
        add("BAT1", with(changes));
        const std::string condition = description("BatteryHealthCondition");
        EXPECT_TRUE(condition == "Normal" || condition == "Service Recommended") << condition;
        return condition == "Normal";
    };
    EXPECT_TRUE(isNormal({{"charge_full", "2500000"}})) << "half of the design";
    EXPECT_FALSE(isNormal({{"charge_full", "2499999"}}));
    EXPECT_TRUE(isNormal({{"charge_full", "0"}})) << "full unknown";
    EXPECT_FALSE(isNormal({{"charge_full", "-"},
                           {"charge_full_design", "-"},
                           {"energy_full", "20000000"},
                           {"energy_full_design", "50000000"}}))
        << "in energies, without a voltage";
    for (const char* passing : {"Good", "Unknown", "Overheat", "Cold", "Warm", "Cool", "Hot", ""})
        EXPECT_TRUE(isNormal({{"health", passing}})) << passing;
    for (const char* damage :
         {"Dead", "Unspecified failure", "Over voltage", "Over current", "Calibration required",
          "Watchdog timer expire", "Safety timer expire", "Cell imbalance", "Blown fuse"}) {
        EXPECT_FALSE(isNormal({{"health", damage}})) << damage;
    }
}

TEST_F(BatteriesTest, TellTimesOnceTheRateHasSettled) {
    const auto timeToEmpty = [&] {
        return propertyText(batteries.read().sources.at(0)->find("Time to Empty"));
    };
    const Properties discharging =
        with({{"current_now", "-1200000"}, {"voltage_now", "11000000"}, {"voltage_min_design", "11000000"}});
    add("BAT0", discharging);
    EXPECT_EQ(timeToEmpty(), "-1");
    system.advance(10s);
    EXPECT_EQ(timeToEmpty(), "120");
    machine.remove("/sys");
    EXPECT_TRUE(batteries.read().sources.empty());
    system.advance(3s);
    add("BAT0", discharging);
    EXPECT_EQ(timeToEmpty(), "-1") << "it was out in between";
}

TEST_F(BatteriesTest, AMachineWithoutSuppliesIsLookedAtEveryMinute) {
    const auto isDueLater = [](const Batteries::Answer& answer) {
        return Batteries::isDue(answer, *answer.readAt + 3s);
    };
    EXPECT_TRUE(Batteries::isDue({}, system.calls.now()));
    const Batteries::Answer none = batteries.read();
    EXPECT_FALSE(isDueLater(none));
    EXPECT_TRUE(Batteries::isDue(none, *none.readAt + 59'990ms));
    add("hidpp_battery_0", kBattery, kMouse);
    add("hidpp_battery_1", with({{"scope", "Device"}}));
    EXPECT_FALSE(isDueLater(batteries.read())) << "a mouse is none of the machine's";
    add("BAT1", with({{"present", "0"}}));
    EXPECT_TRUE(isDueLater(batteries.read())) << "a battery may be put in";
}

}  // namespace
}  // namespace norvane
