#include "platform/linux/DeviceModel.h"

#include <gtest/gtest.h>

#include "TemporaryFolder.h"

namespace norvane {
namespace {

using Model = std::optional<std::string>;

TEST(DeviceModel, FollowsFromWhatTheFirmwareSays) {
    struct Case {
        const char* name;
        DeviceFacts facts;  // vendor, product, chassis, power profile, device tree
        bool hasBattery;
        Model want;
    };
    for (const Case& c : {
             Case{"nothing is known", {}, false, {}},
             Case{"a Mac", {"Apple Inc.", "MacBookPro11,1", 9, 2, ""}, true, "MacBookPro11,1"},
             Case{"an old Mac", {"Apple Computer, Inc.", "Macmini2,1", 16, 1, ""}, false, "Macmini2,1"},
             Case{"a Mac without a name", {"Apple Inc.", "", 9, 2, ""}, true, "MacBook"},
             Case{"a vendor of apples", {"An Apple a Day", "MacBookPro11,1", 3, 1, ""}, false, "iMac"},
             Case{"a Mac by its device tree",
                  {"", "", {}, {}, "Apple MacBook Pro (14-inch, M1 Pro, 2021)"},
                  true,
                  "AppleMacBookPro(14-inch,M1Pro,2021)"},
             Case{"another token in the product's name", {"Example", "MacPro", 9, 2, ""}, true, "MacBook"},
             Case{"a laptop without its battery", {"", "", 10, 1, ""}, false, "MacBook"},
             Case{"a battery in a desktop", {"", "", 3, 2, ""}, true, "iMac"},
             Case{"a tablet that says server", {"", "", 17, {}, ""}, true, "MacBook"},
             Case{"a server", {"", "", 17, 4, ""}, false, {}},
             Case{"a server in a rack", {"", "", 23, 7, ""}, false, {}},
             Case{"a virtual machine", {"QEMU", "Standard PC", 1, 0, ""}, false, {}},
             Case{"unclear, but mobile", {"", "", 2, 2, ""}, false, "MacBook"},
             Case{"unclear, but a tablet", {"", "", 1, 8, ""}, false, "MacBook"},
             Case{"unclear, and a desktop's profile", {"", "", 2, 1, ""}, false, {}},
             Case{"no firmware tables, but a battery", {"", "", {}, {}, ""}, true, "MacBook"},
             Case{"a blade", {"", "", 28, {}, ""}, true, {}},
             Case{"no such enclosure", {"", "", 0, 2, ""}, true, {}},
             Case{"far beyond", {"", "", ~std::uint64_t{0}, 2, ""}, true, {}},
             Case{"a board", {"", "", {}, {}, "Example Board Rev 1.2"}, false, "Macmini"},
             Case{"a laptop with a device tree", {"", "", {}, {}, "Example Book"}, true, "MacBook"},
             Case{"a server with a device tree", {"", "", 23, {}, "Example Server"}, false, "Macmini"},
         }) {
        EXPECT_EQ(deviceModel(c.facts, [&] { return c.hasBattery; }), c.want) << c.name;
    }
}

TEST(DeviceModel, KnowsEachEnclosure) {
    struct Row {
        std::vector<std::uint64_t> types;
        Model want;
    };
    for (const Row& row :
         {Row{{8, 9, 10, 11, 14, 30, 31, 32}, "MacBook"}, Row{{13, 3, 4, 5, 15, 16, 24}, "iMac"},
          Row{{6, 7}, "MacPro"}, Row{{33, 34, 35, 36}, "Macmini"},
          Row{{1, 2, 12, 17, 18, 19, 20, 21, 22, 23, 25, 26, 27, 28, 29, 37}, {}}}) {
        for (const std::uint64_t type : row.types) {
            DeviceFacts facts;
            facts.chassisType = type;
            EXPECT_EQ(deviceModel(facts, [] { return false; }), row.want) << type;
        }
    }
}

TEST(DeviceModel, AsksForABatteryOnlyWhereThatDecides) {
    for (const std::uint64_t type : {3u, 7u, 9u, 28u, 35u}) {
        DeviceFacts facts;
        facts.chassisType = type;
        deviceModel(facts, [type] {
            ADD_FAILURE() << type;
            return true;
        });
    }
}

class ReadDeviceModelTest : public testing::Test {
 protected:
    TemporaryFolder machine;

    bool hasBattery = false;

    Model model() const {
        return readDeviceModel(machine.root(), [this] { return hasBattery; });
    }
};

TEST_F(ReadDeviceModelTest, TakesTheFilesAsTheyAre) {
    EXPECT_EQ(model(), Model());
    machine.write("/sys/class/dmi/id/chassis_type", "3\n");
    EXPECT_EQ(model(), "iMac");
    machine.write("/sys/class/dmi/id/chassis_type", "three\n");
    EXPECT_EQ(model(), Model());
    machine.write("/sys/firmware/acpi/pm_profile", "2\n");
    EXPECT_EQ(model(), "MacBook");
    machine.write("/sys/firmware/acpi/pm_profile", "1\n");
    machine.write("/proc/device-tree/model", std::string("Example Board\0", 14));
    EXPECT_EQ(model(), "Macmini");
    machine.write("/proc/device-tree/model", std::string("\0", 1));
    EXPECT_EQ(model(), Model()) << "a device tree that says nothing";
    machine.write("/sys/class/dmi/id/product_name", "MacBookAir7,2\n");
    machine.write("/sys/class/dmi/id/sys_vendor", "Apple Inc.\n");
    EXPECT_EQ(model(), "MacBookAir7,2");
    machine.write("/sys/class/dmi/id/product_name", std::string(100'000, 'x'));
    EXPECT_EQ(model(), Model()) << "no name is that long";
    hasBattery = true;
    EXPECT_EQ(model(), "MacBook");
}

}  // namespace
}  // namespace norvane
