#include "platform/linux/Batteries.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "CountingFileObserver.h"
#include "FakeSystemCalls.h"
#include "PropertyText.h"
#include "TemporaryFolder.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using Properties = std::map<std::string, std::string>;

constexpr const char* kAcpi = "/devices/LNXSYSTM:00/PNP0C0A:00";
constexpr const char* kMouse = "/devices/pci0000:00/0000:00:14.0/usb1/1-2/0003:046D:4069.0004";
constexpr const char* kBluetooth = "/devices/pci0000:00/bluetooth/hci0/hci0:1/0005:05AC:0265.0008";
constexpr const char* kPort = "/devices/platform/USBC000:00";

// The properties "name=value;name=value" changed or added, or taken away where the value is "-".
Properties with(std::string_view changes, Properties properties = {}) {
    while (!changes.empty()) {
        const auto end = std::min(changes.find(';'), changes.size());
        const auto equals = changes.find('=');
        const std::string name(changes.substr(0, equals));
        properties[name] = changes.substr(equals + 1, end - equals - 1);
        if (properties[name] == "-") properties.erase(name);
        changes.remove_prefix(std::min(end + 1, changes.size()));
    }
    return properties;
}
const Properties kBattery = with(
    "type=Battery;status=Discharging;present=1;charge_full_design=5000000;charge_full=4800000;"
    "charge_now=2400000;capacity=50");
// 50 Wh, half full, that gives 10 W.
const Properties kEnergies = with(
    "type=Battery;status=Discharging;energy_full_design=60000000;energy_full=50000000;"
    "energy_now=25000000;power_now=10000000");

// Batteries with these changes, the second only where there are any, and what is told of them.
struct BatteryCase {
    std::string first;
    std::string second;
    std::string want;
};
using BatteryCases = std::vector<BatteryCase>;

class BatteriesTest : public testing::Test {
 protected:
    TemporaryFolder machine;
    FakeSystemCalls system;
    std::shared_ptr<CountingFileObserver> observer = std::make_shared<CountingFileObserver>();
    Batteries batteries{machine.root(observer), system.calls.now};

    // As the kernel lays it out: links in the class folder, and all properties together in the uevent.
    void add(const std::string& name, const Properties& properties, const std::string& parent = kAcpi) {
        const std::string place = parent + "/power_supply/" + name;
        machine.remove("/sys/class/power_supply/" + name);
        machine.link("/sys/class/power_supply/" + name, "../.." + place);
        std::string uevent;
        for (const auto& [property, value] : properties) {
            uevent += "POWER_SUPPLY_";
            for (const char letter : property)
                uevent += letter == '_' ? letter : static_cast<char>(letter - 'a' + 'A');
            uevent += '=' + value + '\n';
            if (property == "type") machine.write("/sys" + place + "/type", value + "\n");
        }
        machine.write("/sys" + place + "/uevent", uevent);
    }
    void addAll(const std::string& first, const std::string& second = "", const Properties& base = kBattery) {
        machine.remove("/sys");
        add("BAT0", with(first, base));
        if (!second.empty()) add("BAT1", with(second, base));
    }
    // What is told once the rate has settled.
    std::string told(const char* name) {
        Batteries fresh(machine.root(), system.calls.now);
        fresh.read();
        system.advance(10s);
        const Batteries::Answer answer = fresh.read();
        if (answer.services.empty() || answer.sources.empty()) return "no battery";
        const PropertyValue* const found = answer.services[0].IORegistryEntryCreateCFProperty(name);
        return propertyText(found != nullptr ? found : answer.sources[0]->find(name));
    }
    // Design, full, now, and the pair of the percentage.
    std::string capacities() {
        return told("DesignCapacity") + ' ' + told("AppleRawMaxCapacity") + ' ' +
               told("AppleRawCurrentCapacity") + ' ' + told("CurrentCapacity") + '/' + told("MaxCapacity");
    }
    void expectTold(const char* property, const BatteryCases& cases, const Properties& base = kBattery) {
        for (const auto& [first, second, want] : cases) {
            addAll(first, second, base);
            EXPECT_EQ(property == std::string("capacities") ? capacities() : told(property), want)
                << property << ": " << first << " | " << second;
        }
    }
    // What is told to be left by the battery that is read again and again.
    std::string leftAfter(std::chrono::nanoseconds time) {
        system.advance(time);
        return propertyText(batteries.read().sources.at(0)->find("Time to Empty"));
    }
};

TEST_F(BatteriesTest, AreThoseThatTheMachineRunsOn) {
    EXPECT_EQ(told("MaxCapacity"), "no battery") << "no supply at all";
    const auto counts = [this](const char* changes, const char* parent = kAcpi) {
        machine.remove("/sys");
        add("supply", with(changes, kBattery), parent);
        return told("MaxCapacity") == "1000";
    };
    EXPECT_TRUE(counts("scope=System") && counts("scope=Unknown") && counts("present=-"));
    for (const char* changes : {"present=0", "scope=Device", "type=UPS", "type=-"})
        EXPECT_FALSE(counts(changes)) << changes;
    EXPECT_FALSE(counts("", kBluetooth) || counts("", kMouse));
    EXPECT_FALSE(batteries.read().hasSupplies) << "so it is looked for less often";
    addAll("present=0");
    EXPECT_TRUE(batteries.read().hasSupplies) << "a battery may be put in";
    add("a_mouse", kBattery, kMouse);
    add("a_ups", with("type=UPS"), kMouse);
    observer->forget();
    batteries.read();
    for (const std::string& path : observer->opened)
        EXPECT_TRUE(path.find("/a_") == std::string::npos || path.ends_with("/type"))
            << path << ": a peripheral's driver is not asked";
}

TEST_F(BatteriesTest, EachTellsItsCapacitiesInItsOwnWayAndSeveralAreOneByTheirSums) {
    const std::string bare = "charge_full_design=-;charge_full=-;charge_now=-;capacity=-;";
    const std::string energies = bare +
                                 "energy_full_design=57000000;energy_full=50000000;energy_now=14500000;"
                                 "voltage_now=12500000;voltage_min_design=";
    const std::string full = bare + "energy_full=12000000;energy_now=12000000;voltage_min_design=10000000";
    expectTold(
        "capacities",
        {{"charge_full=4800500;charge_now=2400499", "", "5000 4801 2400 505/1000"},
         // Half a per cent more than 29, as who cuts 29.0 / 100.0 * 100.0 to a whole number gets 28.
         {energies + "11400000", "", "5000 4386 1272 295/1000"},
         {energies + "0", "", "4560 4000 1160 295/1000"},
         {energies + "-;voltage_now=-1", "", "none 0 0 295/1000"},
         {"capacity=53", "", "5000 4800 2400 535/1000"},  // the one that the desktop shows
         {"capacity=-;charge_now=5100000", "", "5000 4800 5100 1000/1000"},
         {"charge_full_design=0;charge_full=-1;charge_now=-4800000", "", "none 0 0 505/1000"},
         {"charge_full_design=9223372036854775807;charge_full=92233720368547758070", "",
          "9223372036854776 0 2400 505/1000"},
         // Not the mean of 50 and 0; half a design would show more than 100 % health.
         {"", "charge_full_design=1000000;charge_full=1200000;charge_now=0;capacity=0",
          "6000 6000 2400 405/1000"},
         {"", "charge_full_design=-;charge_full=1200000;charge_now=0;capacity=0", "none 6000 2400 405/1000"},
         {"", bare, "5000 4800 2400 505/1000"},
         {"capacity=0", "", "5000 4800 2400 5/1000"},
         {"voltage_min_design=10000000", full, "none 6000 3600 605/1000"},
         {bare + "energy_full=12000000;energy_now=0", full, "none 0 0 505/1000"},
         {bare + "capacity=29", bare + "capacity=29", "none 0 0 295/1000"}});
}

TEST_F(BatteriesTest, OtherFiguresAreLeftOutWhereFirmwareLies) {
    expectTold("CycleCount", {{"cycle_count=317", "cycle_count=12", "317"}, {"cycle_count=0", "", "none"}});
    expectTold("Temperature", {{"temp=305", "temp=310", "3100"}, {"temp=-2731", "temp=250", "2500"}});
    expectTold("IsCharging", {{"", "status=Charging", "true"}, {"status=-", "status=Full", "false"}});
    const std::string worn = "Service Recommended";
    expectTold("BatteryHealthCondition",
               {{"", "charge_full=2500000;health=Overheat", "Normal"},
                {"", "charge_full=2499999", worn},
                {"energy_full=20000000;energy_full_design=50000000;charge_full=-", "", worn},
                {"", "health=Dead", worn}});
}

TEST_F(BatteriesTest, ExternalPowerIsWhatASupplySaysAndElseWhatABatteryDoes) {
    for (const auto& [status, supply, want] :
         BatteryCases{{"Discharging", "type=Mains;online=1", "true"},  // on purpose
                      {"Charging", "type=Mains;online=0", "false"},    // an adapter that missed the news
                      {"Discharging", "type=USB;online=2", "true"},    // a programmable supply
                      {"Discharging", "type=USB_PD;online=1", "true"},
                      {"Discharging", "type=UPS;online=1", "false"},
                      {"Discharging", "type=Wireless;online=1;scope=Device", "false"},
                      {"Charging", "type=USB;online=0", "true"},  // USB-C that is not reported
                      {"Not charging", "", "true"},
                      {"Unknown", "type=USB;online=yes", "none"}}) {
        addAll("status=" + status);
        if (!supply.empty()) add("supply", with(supply), kPort);
        EXPECT_EQ(told("ExternalConnected"), want) << status << ' ' << supply;
    }
    expectTold("ExternalConnected", {{"", "status=Full", "true"}, {"", "status=Unknown", "false"}});
}

TEST_F(BatteriesTest, APortThatFeedsATelephoneIsNoExternalPower) {
    const std::string port = std::string("/sys") + kPort;
    for (const bool hasLink : {true, false}) {
        SCOPED_TRACE(hasLink);
        addAll("");
        add("ucsi-source-psy-USBC000:001", with("type=USB;online=1"), kPort);
        if (hasLink) machine.link(port + "/power_supply/ucsi-source-psy-USBC000:001/device", "../..");
        EXPECT_EQ(told("ExternalConnected"), "true");
        machine.write(port + "/typec/port0/power_role", "[source] sink\n");
        machine.write(port + "/typec/port0-partner/power_role", "source [sink]\n");
        EXPECT_EQ(told("ExternalConnected"), "false");
        machine.write(port + "/typec/port1/power_role", "source [sink]\n");
        EXPECT_EQ(told("ExternalConnected"), "true");
    }
}

TEST_F(BatteriesTest, WhatTheUeventLacksIsReadFromTheFilesAndNothingElse) {
    const std::string folder = "/sys/class/power_supply/BAT0/";
    addAll("");
    machine.write(folder + "charge_control_end_threshold", "50\n");
    machine.write(folder + "capacity", "77\n");
    batteries.read();
    EXPECT_EQ(told("CurrentCapacity"), "505") << "told together with the others";
    EXPECT_EQ(observer->read.size(), 2u) << "the uevent and the limit";
    for (const auto& [name, value] : with("status=Not charging", kBattery))
        machine.write(folder + name, value + "\n");
    machine.write(folder + "uevent", std::string(100'000, 'x'));
    EXPECT_EQ(capacities(), "5000 4800 2400 505/1000") << "a uevent beyond measure";
    EXPECT_EQ(told("Is Charged"), "true");
}

TEST_F(BatteriesTest, TimesFollowFromWhateverUnitsTheDriverHas) {
    const std::string charges =
        "energy_full=-;energy_now=-;charge_full_design=5000000;charge_now=2500000;voltage_min_design=";
    expectTold("Time to Empty",
               {{"power_now=-10000000", "", "150"},
                {"power_now=-;current_now=-1000000;voltage_now=10000000", "", "150"},
                {charges + "10000000", "", "150"},
                {charges + "0;voltage_now=12000000", "", "180"},
                {charges + "-", "", "-1"},
                {"energy_now=0;capacity=20", "", "60"},  // a 0 that the percentage belies
                {"energy_now=100000;power_now=99999", "", "-1"},
                {"energy_now=240000001", "", "-1"},
                {"energy_now=9223372036854775807;power_now=-9223372036854775808", "", "60"},
                {"", "status=Unknown;power_now=-", "300"},
                {"", "status=Unknown;energy_now=-", "-1"},
                {"", "status=Charging", "-1"}},  // one feeds the other
               kEnergies);
    expectTold("Time to Full Charge",
               {{"charge_control_end_threshold=80", "", "90"},
                {"charge_control_end_threshold=200", "", "150"},
                {"charge_control_end_threshold=40", "", "0"},
                {"power_now=1249999", "", "-1"},
                {"energy_full=-", "", "-1"},
                {"", "status=Not charging;charge_control_end_threshold=40;power_now=0", "150"}},
               with("status=Charging", kEnergies));
}

TEST_F(BatteriesTest, TimesNeedARateThatHasSettledAndFollowItSlowly) {
    add("BAT0", kEnergies);
    EXPECT_EQ(leftAfter(0s), "-1");
    EXPECT_EQ(leftAfter(9s), "-1") << "two samples, too soon";
    EXPECT_EQ(leftAfter(1s), "150");
    for (const auto& [name, properties] : Properties{{"BAT0", "type=Battery;status=Not charging"},
                                                     {"AC", "type=Mains;online=1"},
                                                     {"BAT1", "type=Battery"}}) {
        add(name, with(properties));
        leftAfter(3s);
        addAll("", "", kEnergies);
        EXPECT_EQ(leftAfter(3s), "-1") << name << ": another situation";
        EXPECT_EQ(leftAfter(10s), "150") << name;
    }
    machine.remove("/sys");
    batteries.read();
    addAll("", "", kEnergies);
    EXPECT_EQ(leftAfter(10s), "-1") << "it was out in between";
    // The weight depends on the time that has passed, not on how often one looks.
    add("BAT0", with("power_now=30000000", kEnergies));
    for (int i = 0; i < 19; ++i)
        leftAfter(3s);
    const double power = 10 + (1 - std::exp(-1.0)) * 20;
    EXPECT_EQ(leftAfter(3s), std::to_string(static_cast<int>(25 / power * 60)));
}

TEST_F(BatteriesTest, HeldAtItsLimitCountsAsCharged) {
    const std::string held = "status=Not charging;charge_control_end_threshold=";
    expectTold("Is Charged", {{"status=Full;capacity=60", "", "true"},
                              {"status=Full", "status=Charging", "false"},
                              {held + "51", "", "true"},
                              {held + "52", "", "false"},
                              {held + "51;capacity=-", "", "true"}});
    addAll(held + "50");
    add("AC", with("type=Mains;online=0"));
    EXPECT_EQ(told("Is Charged"), "false") << "no external power";
}

}  // namespace
}  // namespace norvane
