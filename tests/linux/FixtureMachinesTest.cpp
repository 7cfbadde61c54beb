#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "FakeSystemCalls.h"
#include "Fixture.h"
#include "platform/linux/LinuxKernel.h"
#include "TemporaryFolder.h"
#include "Tool.h"

namespace norvane {
namespace {

using Bytes = std::pair<std::int64_t, std::int64_t>;  // read, written
using Percents = std::vector<std::optional<std::int64_t>>;
using Text = std::optional<std::string>;

constexpr TickToken kNone = TickToken::none();

const PropertyDictionary* dictionary(const RegistryEntry& service, std::string_view name) {
    const PropertyValue* const value = service.IORegistryEntryCreateCFProperty(name);
    return value != nullptr ? value->dictionary() : nullptr;
}

std::optional<std::int64_t> numberIn(const PropertyDictionary* properties, std::string_view name) {
    const PropertyValue* const value = properties != nullptr ? properties->find(name) : nullptr;
    return value != nullptr ? value->wholeNumber() : std::nullopt;
}

// A volume as one line: "/home 'home' internal", with what is not known left out.
std::string printed(const VolumeURL& volume) {
    std::string line = volume.path();
    const auto& values = volume.resourceValues();
    if (!values) return line + " unreadable";
    if (values->volumeName) line += " '" + *values->volumeName + "'";
    if (values->volumeIsInternal) line += *values->volumeIsInternal ? " internal" : " external";
    if (values->volumeIsEjectable.value_or(false)) line += " ejectable";
    if (values->volumeIsRootFileSystem.value_or(false)) line += " root";
    return line;
}

// What is asked of a machine, other than its processors and its memory.
class FixtureMachinesTest : public testing::Test {
 protected:
    FakeSystemCalls system;

    FixtureMachinesTest() {
        system.calls.fileSystemSpace = [](const std::string&) {
            return FileSystemSpace{500'000'000'000, 200'000'000'000};
        };
    }
    LinuxKernel kernelOf(const std::string& folder) const {
        return {RootFolder(folder), system.calls, LinuxKernel::Lanes::sameThread()};
    }

    static Bytes trafficOf(const RegistryEntry& drive) {
        const PropertyDictionary* const counters = dictionary(drive, "Statistics");
        return {numberIn(counters, "Bytes (Read)").value_or(-1),
                numberIn(counters, "Bytes (Write)").value_or(-1)};
    }
    static std::vector<RegistryEntry> services(LinuxKernel& kernel, RegistryService kind) {
        auto found = kernel.registry().IOServiceGetMatchingServices(kind, kNone);
        EXPECT_TRUE(found);
        return found.value_or(std::vector<RegistryEntry>());
    }
    static std::vector<Bytes> drives(LinuxKernel& kernel) {
        std::vector<Bytes> all;
        for (const RegistryEntry& drive : services(kernel, RegistryService::IOBlockStorageDriver))
            all.push_back(trafficOf(drive));
        return all;
    }
    static Percents graphics(LinuxKernel& kernel) {
        Percents all;
        for (const RegistryEntry& device : services(kernel, RegistryService::IOAccelerator))
            all.push_back(numberIn(dictionary(device, "PerformanceStatistics"), "Device Utilization %"));
        return all;
    }
    static std::vector<std::string> volumes(LinuxKernel& kernel) {
        std::vector<std::string> all;
        const auto list = kernel.fileManager().mountedVolumeURLs(kNone);
        EXPECT_TRUE(list);
        if (!list) return all;
        for (const VolumeURL& volume : *list)
            all.push_back(printed(volume));
        return all;
    }
};

TEST_F(FixtureMachinesTest, EachTellsWhatItsUserWouldSay) {
    constexpr std::int64_t kSector = 512;
    const auto sectors = [](std::int64_t read, std::int64_t written) {
        return Bytes{read * kSector, written * kSector};
    };
    struct Case {
        const char* machine;
        Text model;
        std::vector<Bytes> drives;
        std::size_t batteries;
        Percents graphics;  // no value: a device that gives no number
        std::vector<std::string> volumes;
        int thermalState;
    };
    const std::vector<Case> cases{
        {"uniform-desktop",
         "iMac",
         // An NVMe disk, a hard disk, a stick and an empty optical drive.
         {sectors(9120800, 12400640), sectors(4096000, 2048000), sectors(7168, 1024), {0, 0}},
         0,
         {7},
         {"/ 'Debian GNU/Linux' internal root", "/home 'home' internal",
          "/media/ada/HOLIDAY 2024 'HOLIDAY 2024' external ejectable"},
         0},
        {"hybrid-laptop", "MacBook", {sectors(62914560, 41943040)}, 1, {{}}, {"/ 'linux' internal root"}, 0},
        {"arm-board-three-tiers",
         "Macmini",
         // The soldered memory with its two boot areas, and the card.
         {sectors(4194304, 2097152), sectors(256, 0), sectors(256, 0), sectors(65536, 16384)},
         0,
         {{}, {}},
         {"/ 'rootfs' internal root", "/media/ada/CAMERA 'CAMERA' external ejectable"},
         0},
        {"virtual-machine",
         {},
         {sectors(39627250, 93186336)},
         0,
         {},
         {"/ 'Debian GNU/Linux' internal root"},
         0},
        {"container",
         {},
         {sectors(20971520, 83886080)},
         0,
         {},
         {"/ 'Alpine Linux' root", "/data internal"},
         0},
        {"zram-desktop",
         "MacPro",
         {sectors(5242880, 3145728)},
         0,
         {{}},
         {"/ 'system disk' internal root"},
         0},
        {"zfs-machine",
         {},
         {sectors(209715200, 104857600), sectors(209715200, 104857600), sectors(209715200, 104857600),
          sectors(209715200, 104857600), sectors(8388608, 16777216)},
         0,
         {{}},
         {"/ 'Debian GNU/Linux' root", "/tank"},
         0},
        {"old-kernel", {}, {sectors(40960, 20480), sectors(2048, 1024)}, 0, {}, {"/ internal root"}, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.machine);
        LinuxKernel kernel = kernelOf(fixture(c.machine));
        EXPECT_EQ(kernel.sysctl().sysctlbyname(SysctlText::hw_model), c.model);
        EXPECT_EQ(drives(kernel), c.drives);
        EXPECT_EQ(services(kernel, RegistryService::AppleSmartBattery).size(), c.batteries);
        const auto sources = kernel.powerSources().IOPSCopyPowerSourcesInfo(kNone);
        EXPECT_EQ(sources ? sources->size() : 99, c.batteries);
        EXPECT_EQ(graphics(kernel), c.graphics);
        EXPECT_EQ(volumes(kernel), c.volumes);
        EXPECT_EQ(kernel.processInfo().thermalState(kNone), c.thermalState);
        EXPECT_TRUE(kernel.hostPort().host_processor_info(kNone));
        EXPECT_TRUE(kernel.hostPort().host_statistics64(kNone, SwapCounters::read));
    }
}

TEST_F(FixtureMachinesTest, TheLaptopRunsOnItsBattery) {
    LinuxKernel kernel = kernelOf(fixture("hybrid-laptop"));
    const auto batteries = services(kernel, RegistryService::AppleSmartBattery);
    ASSERT_EQ(batteries.size(), 1u);
    const PropertyDictionary* const battery = batteries[0].IORegistryEntryCreateCFProperties();
    ASSERT_NE(battery, nullptr);
    // 86, 77 and 46.2 Wh at 15.4 V, in mAh.
    EXPECT_EQ(numberIn(battery, "DesignCapacity"), 5584);
    EXPECT_EQ(numberIn(battery, "AppleRawMaxCapacity"), 5000);
    EXPECT_EQ(numberIn(battery, "AppleRawCurrentCapacity"), 3000);
    EXPECT_EQ(numberIn(battery, "CurrentCapacity"), 605);
    EXPECT_EQ(numberIn(battery, "MaxCapacity"), 1000);
    EXPECT_EQ(numberIn(battery, "CycleCount"), 183);
    EXPECT_EQ(battery->find("Temperature"), nullptr);
    const auto boolean = [&](const char* name) {
        const PropertyValue* const value = battery->find(name);
        return value != nullptr ? value->boolean() : std::nullopt;
    };
    EXPECT_EQ(boolean("ExternalConnected"), false) << "the telephone at the port is fed, not feeding";
    EXPECT_EQ(boolean("IsCharging"), false);

    const auto number = [&](SysctlNumber name) { return kernel.sysctl().sysctlbyname(name, kNone); };
    EXPECT_EQ(number(SysctlNumber::hw_perflevel0_physicalcpu), 8);
    EXPECT_EQ(number(SysctlNumber::hw_perflevel0_logicalcpu), 16);
    EXPECT_EQ(number(SysctlNumber::hw_perflevel1_logicalcpu), 16);
    EXPECT_EQ(kernel.sysctl().sysctlbyname(SysctlText::machdep_cpu_brand_string),
              "13th Gen Intel(R) Core(TM) i9-13950HX");
    const auto swap = kernel.sysctl().sysctlbyname_vm_swapusage(kNone);
    ASSERT_TRUE(swap);
    EXPECT_EQ(swap->xsu_total, 8388604ull << 10);
}

TEST_F(FixtureMachinesTest, ALargeServerIsReadWhole) {
    const TemporaryFolder server;
    ASSERT_EQ(runTool("make-server-fixture", {server.path()}), 0);
    LinuxKernel kernel = kernelOf(server.path());
    EXPECT_EQ(kernel.sysctl().sysctlbyname(SysctlText::hw_model), Text());
    EXPECT_EQ(kernel.sysctl().sysctlbyname(SysctlNumber::hw_logicalcpu, kNone), 256);
    EXPECT_FALSE(kernel.sysctl().sysctlbyname(SysctlNumber::hw_perflevel1_logicalcpu, kNone));
    const auto processors = kernel.hostPort().host_processor_info(kNone);
    ASSERT_TRUE(processors);
    EXPECT_EQ(processors->processorCount, 256u);
    EXPECT_EQ(processors->ticks[4 * 255], 100255);

    const std::vector<Bytes> found = drives(kernel);
    ASSERT_EQ(found.size(), 24u);
    for (std::size_t n = 0; n < found.size(); ++n) {
        const auto mebibytes = static_cast<std::int64_t>(n + 1) << 20;
        EXPECT_EQ(found[n], Bytes(mebibytes, mebibytes / 2)) << n;
    }

    std::vector<std::string> want{"/ 'Debian GNU/Linux' internal root"};
    for (int n = 0; n < 12; ++n)
        want.push_back("/srv/data" + std::to_string(n) + " internal");
    EXPECT_EQ(volumes(kernel), want);
    EXPECT_EQ(graphics(kernel), Percents());
    EXPECT_EQ(services(kernel, RegistryService::AppleSmartBattery).size(), 0u);
    EXPECT_EQ(kernel.processInfo().thermalState(kNone), 0);
}

TEST_F(FixtureMachinesTest, AServerIsAsLargeAsItIsWanted) {
    const TemporaryFolder server;
    ASSERT_EQ(runTool("make-server-fixture", {server.path(), "16", "28", "30"}), 0);
    LinuxKernel kernel = kernelOf(server.path());
    EXPECT_EQ(kernel.sysctl().sysctlbyname(SysctlNumber::hw_logicalcpu, kNone), 16);
    EXPECT_EQ(drives(kernel).size(), 28u) << "disks beyond the alphabet";
    EXPECT_EQ(volumes(kernel).size(), 15u) << "the root, and one for each pair of disks";
    EXPECT_NE(runTool("make-server-fixture", {server.path(), "many"}), 0);
}

}  // namespace
}  // namespace norvane
