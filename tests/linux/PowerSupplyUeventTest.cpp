#include "platform/linux/PowerSupplyUevent.h"

#include <gtest/gtest.h>

#include "platform/linux/PowerSupply.h"

namespace norvane {
namespace {

using Properties = std::map<std::string, std::string, std::less<>>;

TEST(PowerSupplyUeventParser, NamesPropertiesLikeTheirFiles) {
    EXPECT_EQ(
        parsePowerSupplyUevent("DEVTYPE=power_supply\nPOWER_SUPPLY_NAME=BAT0\nPOWER_SUPPLY_TYPE=Battery\n"
                               "POWER_SUPPLY_STATUS=Not charging\nPOWER_SUPPLY_CURRENT_NOW=-1200000\n"
                               "POWER_SUPPLY_CHARGE_CONTROL_END_THRESHOLD=80\n")
            .properties,
        (Properties{{"name", "BAT0"},
                    {"type", "Battery"},
                    {"status", "Not charging"},
                    {"current_now", "-1200000"},
                    {"charge_control_end_threshold", "80"}}));
}

TEST(PowerSupplyUeventParser, BearsDamagedText) {
    struct Case {
        const char* name;
        std::string text;
        Properties want;
    };
    for (const Case& c : {
             Case{"nothing", "", {}},
             Case{"no value", "POWER_SUPPLY_HEALTH=\n", {{"health", ""}}},
             Case{"no equals sign", "POWER_SUPPLY_HEALTH\nPOWER_SUPPLY_TEMP=1", {{"temp", "1"}}},
             Case{"cut off", "POWER_SUPPLY_TEMP=305\nPOWER_SUP", {{"temp", "305"}}},
             Case{"a value with equals signs", "POWER_SUPPLY_MODEL_NAME=a=b=\n", {{"model_name", "a=b="}}},
             Case{"a model name with a line of its own",
                  "POWER_SUPPLY_CAPACITY=50\nPOWER_SUPPLY_MODEL_NAME=x\nPOWER_SUPPLY_CAPACITY=99\n",
                  {{"capacity", "50"}, {"model_name", "x"}}},
             Case{"blanks and a NUL around a value",
                  std::string("POWER_SUPPLY_STATUS= Full \r\0\n", 29),
                  {{"status", "Full"}}},
             Case{"a prefix elsewhere", "X_POWER_SUPPLY_TEMP=1\n POWER_SUPPLY_TEMP=2\n", {}},
             Case{"other bytes", "POWER_SUPPLY_\xff\xc4=\xfe\n\n=\n", {{"\xff\xc4", "\xfe"}}},
         }) {
        EXPECT_EQ(parsePowerSupplyUevent(c.text).properties, c.want) << c.name;
    }
}

TEST(PowerSupplyPlace, TellsPeripheralsFromTheMachine) {
    struct Case {
        const char* place;
        bool want;
    };
    for (const Case& c : {
             Case{"../../devices/LNXSYSTM:00/LNXSYBUS:00/PNP0C0A:00/power_supply/BAT0", false},
             Case{"../../devices/pci0000:00/0000:00:14.0/usb1/1-2/1-2:1.2/0003:046D:C52B.0003/"
                  "0003:046D:4069.0004/power_supply/hidpp_battery_0",
                  true},
             Case{"../../devices/platform/soc/usb12/12-1/power_supply/x", true},
             Case{"../../devices/pci0000:00/usb/power_supply/x", false},
             Case{"../../devices/platform/usb-phy/power_supply/usb", false},
             Case{"../../devices/platform/USBC000:00/power_supply/ucsi-source-psy-USBC000:001", false},
             Case{"../../devices/pci0000:00/bluetooth/hci0/hci0:256/0005:05AC:0265.0008/power_supply/x",
                  true},
             Case{"../../devices/virtual/misc/uhid/0005:046D:B023.0009/power_supply/hidpp_battery_1", true},
             Case{"", false},
             Case{"///", false},
         }) {
        EXPECT_EQ(isPlaceOfPeripheral(c.place), c.want) << c.place;
    }
}

}  // namespace
}  // namespace norvane
