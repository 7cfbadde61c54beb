#include "platform/linux/DeviceModel.h"

#include <gtest/gtest.h>

#include "TemporaryFolder.h"

namespace norvane {
namespace {

using Model = std::optional<std::string>;

TEST(DeviceModel, FollowsFromWhatTheFirmwareSays) {
    const auto model = [](const DeviceFacts& facts, bool hasBattery) {
        return deviceModel(facts, [hasBattery] { return hasBattery; });
    };
    // Vendor, product, chassis, power profile, device tree.
    EXPECT_EQ(model({}, false), Model());
    EXPECT_EQ(model({"Apple Inc.", "MacBookPro11,1", 9, 2, ""}, true), "MacBookPro11,1");
    EXPECT_EQ(model({"Apple Computer, Inc.", "Macmini2,1", 16, 1, ""}, false), "Macmini2,1");
    EXPECT_EQ(model({"Apple Inc.", "", 9, 2, ""}, true), "MacBook");
    EXPECT_EQ(model({"An Apple a Day", "MacBookPro11,1", 3, 1, ""}, false), "iMac");
    EXPECT_EQ(model({"", "", {}, {}, "Apple MacBook Pro (14-inch, M1 Pro, 2021)"}, true),
              "AppleMacBookPro(14-inch,M1Pro,2021)");
    EXPECT_EQ(model({"", "", 10, 1, ""}, false), "MacBook") << "a laptop without its battery";
    EXPECT_EQ(model({"", "", 3, 2, ""}, true), "iMac") << "a battery in a desktop";
    EXPECT_EQ(model({"", "", 17, {}, ""}, true), "MacBook") << "a tablet that says server";
    EXPECT_EQ(model({"", "", 17, 4, ""}, false), Model()) << "a server";
    EXPECT_EQ(model({"QEMU", "Standard PC", 1, 0, ""}, false), Model());
    EXPECT_EQ(model({"", "", 2, 2, ""}, false), "MacBook") << "unclear, but mobile";
    EXPECT_EQ(model({"", "", 1, 8, ""}, false), "MacBook") << "unclear, but a tablet";
    EXPECT_EQ(model({"", "", 2, 1, ""}, false), Model()) << "unclear";
    EXPECT_EQ(model({"", "", {}, {}, ""}, true), "MacBook") << "a battery alone";
    EXPECT_EQ(model({"", "", 28, {}, ""}, true), Model()) << "a blade";
    EXPECT_EQ(model({"", "", ~std::uint64_t{0}, 2, ""}, true), Model()) << "no such enclosure";
    EXPECT_EQ(model({"", "", {}, {}, "Example Board Rev 1.2"}, false), "Macmini");
    EXPECT_EQ(model({"", "", {}, {}, "Example Book"}, true), "MacBook");
    EXPECT_EQ(model({"", "", 23, {}, "Example Server"}, false), "Macmini");
}

TEST(DeviceModel, KnowsEachEnclosure) {
    const auto expect = [](const std::vector<std::uint64_t>& types, const Model& want) {
        for (const std::uint64_t type : types) {
            DeviceFacts facts;
            facts.chassisType = type;
            int asked = 0;
            EXPECT_EQ(deviceModel(facts, [&] { return ++asked < 0; }), want) << type;
            EXPECT_TRUE(asked == 0 || !want) << type << ": a battery decides nothing";
        }
    };
    expect({8, 9, 10, 11, 14, 30, 31, 32}, "MacBook");
    expect({13, 3, 4, 5, 15, 16, 24}, "iMac");
    expect({6, 7}, "MacPro");
    expect({33, 34, 35, 36}, "Macmini");
    expect({1, 2, 12, 17, 18, 19, 20, 21, 22, 23, 25, 26, 27, 28, 29, 37}, {});
}

TEST(DeviceModel, TakesTheFilesAsTheyAre) {
    const TemporaryFolder machine;
    bool hasBattery = false;
    const auto model = [&] { return readDeviceModel(machine.root(), [&] { return hasBattery; }); };
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
