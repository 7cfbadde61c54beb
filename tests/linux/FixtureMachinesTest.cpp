#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "FakeSystemCalls.h"
#include "Fixture.h"
#include "platform/linux/LinuxKernel.h"
#include "PropertyText.h"
#include "TemporaryFolder.h"
#include "Tool.h"

namespace norvane {
namespace {

constexpr TickToken kNoTick = TickToken::none();

// What is asked of a captured machine.
class FixtureMachine {
 public:
    explicit FixtureMachine(const std::string& folder, std::uint64_t pageBytes = 4096) {
        system_.calls.pageBytes = pageBytes;
        system_.calls.fileSystemSpace = [](const std::string&) {
            return FileSystemSpace{500'000'000'000, 200'000'000'000};
        };
        kernel_.emplace(RootFolder(folder), system_.calls, LinuxKernel::Lanes::sameThread());
    }

    LinuxKernel& kernel() { return *kernel_; }
    std::string number(SysctlNumber name) {
        const auto value = kernel().sysctl().sysctlbyname(name, kNoTick);
        return value ? std::to_string(*value) : "none";
    }
    std::vector<RegistryEntry> services(RegistryService kind) {
        return kernel()
            .registry()
            .IOServiceGetMatchingServices(kind, kNoTick)
            .value_or(std::vector<RegistryEntry>());
    }
    // Bytes read and written of each, as in "512/1024 0/0".
    std::string drives() {
        std::string all;
        for (const RegistryEntry& drive : services(RegistryService::IOBlockStorageDriver)) {
            all += ' ' + propertyText(drive, "Statistics", "Bytes (Read)") + '/' +
                   propertyText(drive, "Statistics", "Bytes (Write)");
        }
        return all;
    }
    // Lines such as "/home 'home' internal", with what is not known left out.
    std::string volumes() {
        std::string all;
        const auto list = kernel().fileManager().mountedVolumeURLs(kNoTick);
        for (const VolumeURL& volume : list.value_or(std::vector<VolumeURL>())) {
            const VolumeResourceValues values = volume.resourceValues().value_or(VolumeResourceValues());
            all += volume.path();
            if (values.volumeName) all += " '" + *values.volumeName + "'";
            if (values.volumeIsInternal) all += *values.volumeIsInternal ? " internal" : " external";
            if (values.volumeIsEjectable.value_or(false)) all += " ejectable";
            if (values.volumeIsRootFileSystem.value_or(false)) all += " root";
            all += '\n';
        }
        return all;
    }
    // What its user would say of it.
    std::string described() {
        std::ostringstream text;
        Sysctl& sysctl = kernel().sysctl();
        text << sysctl.sysctlbyname(SysctlText::hw_model).value_or("none") << ", "
             << sysctl.sysctlbyname(SysctlText::machdep_cpu_brand_string).value_or("none") << ", "
             << number(SysctlNumber::hw_logicalcpu) << " processors";
        if (const std::string efficient = number(SysctlNumber::hw_perflevel1_logicalcpu); efficient != "none")
            text << ", " << efficient << " of them efficient";
        EXPECT_TRUE(kernel().hostPort().host_processor_info(kNoTick));
        const VMStatistics64 pages =
            kernel().hostPort().host_statistics64(kNoTick, SwapCounters::read).value_or(VMStatistics64());
        text << "\nmemory " << kernel().processInfo().physicalMemory(kNoTick) << ": " << pages.wire_count
             << ' ' << pages.active_count << ' ' << pages.compressor_page_count << ' '
             << pages.external_page_count << ' ' << pages.purgeable_count << " pages";
        if (const auto swap = sysctl.sysctlbyname_vm_swapusage(kNoTick))
            text << ", swap " << swap->xsu_total << ' ' << swap->xsu_avail << ' ' << swap->xsu_used;
        text << "\ndrives" << drives() << "\ngraphics";
        for (const RegistryEntry& device : services(RegistryService::IOAccelerator))
            text << ' ' << propertyText(device, "PerformanceStatistics", "Device Utilization %");
        const auto sources = kernel().powerSources().IOPSCopyPowerSourcesInfo(kNoTick);
        text << ", batteries " << (sources ? sources->size() : 99);
        for (const RegistryEntry& battery : services(RegistryService::AppleSmartBattery)) {
            for (const char* name :
                 {"DesignCapacity", "AppleRawMaxCapacity", "AppleRawCurrentCapacity", "CurrentCapacity",
                  "CycleCount", "Temperature", "ExternalConnected", "IsCharging"})
                text << ' ' << propertyText(battery.IORegistryEntryCreateCFProperty(name));
        }
        text << ", pressure " << number(SysctlNumber::kern_memorystatus_vm_pressure_level) << ", heat "
             << kernel().processInfo().thermalState(kNoTick) << '\n';
        return text.str() + volumes();
    }

 private:
    FakeSystemCalls system_;
    std::optional<LinuxKernel> kernel_;
};

// Figures of memory: wired, active, compressed, external, purgeable. Of a battery: design, full and current
// capacity, percentage, cycles, temperature, on external power, charging.
TEST(FixtureMachines, TellWhatTheirUsersWouldSay) {
    struct Case {
        const char* machine;
        const char* want;
    };
    for (const auto& [machine, want] : std::vector<Case>{
             {"uniform-desktop", R"(iMac, Intel(R) Core(TM) i7-7700K CPU @ 4.20GHz, 8 processors
memory 16693329920: 476000 1024000 0 1177600 153600 pages, swap 8589930496 8589930496 0
drives 4669849600/6349127680 2097152000/1048576000 3670016/524288 0/0
graphics 7, batteries 0, pressure 1, heat 0
/ 'Debian GNU/Linux' internal root
/home 'home' internal
/media/ada/HOLIDAY 2024 'HOLIDAY 2024' external ejectable
)"},
             {"hybrid-laptop",
              R"(MacBook, 13th Gen Intel(R) Core(TM) i9-13950HX, 32 processors, 16 of them efficient
memory 33368834048: 722688 2304000 0 2510848 153600 pages, swap 8589930496 8589930496 0
drives 32212254720/21474836480
graphics none, batteries 1 5584 5000 3000 605 183 none false false, pressure 1, heat 0
/ 'linux' internal root
)"},
             {"arm-board-three-tiers",
              R"(Macmini, Cortex-X1 + Cortex-A78 + Cortex-A55, 8 processors, 4 of them efficient
memory 8053063680: 229376 425984 0 638976 65536 pages, swap 0 0 0
drives 2147483648/1073741824 131072/0 131072/0 33554432/8388608
graphics none none, batteries 0, pressure 1, heat 0
/ 'rootfs' internal root
/media/ada/CAMERA 'CAMERA' external ejectable
)"},
             {"virtual-machine", R"(none, AMD EPYC, 2 processors
memory 25276510208: 98050 8468 0 159917 17899 pages, swap 0 0 0
drives 20289152000/47711404032
graphics, batteries 0, pressure 1, heat 0
/ 'Debian GNU/Linux' internal root
)"},
             {"container", R"(none, Intel(R) Xeon(R) Silver 4310 CPU @ 2.10GHz, 4 processors
memory 16777216000: 409600 1638400 0 1459200 102400 pages, swap 0 0 0
drives 10737418240/42949672960
graphics, batteries 0, pressure 1, heat 0
/ 'Alpine Linux' root
/data internal
)"},
             {"zram-desktop", R"(MacPro, AMD Ryzen 3 1200 Quad-Core Processor, 4 processors
memory 8321499136: 103168 896000 16640 701440 51200 pages, swap 2147479552 1976324096 171155456
drives 2684354560/1610612736
graphics none, batteries 0, pressure 1, heat 0
/ 'system disk' internal root
)"},
             {"zfs-machine", R"(none, Intel(R) Xeon(R) E-2104G CPU @ 3.20GHz, 2 processors
memory 67377299456: 2555904 2883584 0 8676352 131072 pages, swap 0 0 0
drives 107374182400/53687091200 107374182400/53687091200 107374182400/53687091200 107374182400/53687091200 4294967296/8589934592
graphics none, batteries 0, pressure 1, heat 0
/ 'Debian GNU/Linux' root
/tank
)"},
             {"old-kernel", R"(none, Intel(R) Xeon(R) CPU E5-2670 0 @ 2.60GHz, 2 processors
memory 4143972352: 99712 384000 0 352000 48000 pages, swap 2147479552 2147479552 0
drives 20971520/10485760 1048576/524288
graphics, batteries 0, pressure 1, heat 0
/ internal root
)"},
             {"64k-pages", R"(none, POWER9, altivec supported, 4 processors
memory 34225520640: 194560 66560 0 97312 16384 pages, swap 0 0 0
drives
graphics, batteries 0, pressure 1, heat 0
)"},
         }) {
        const bool isLarge = machine == std::string("64k-pages");
        EXPECT_EQ(FixtureMachine(fixture(machine), isLarge ? 65536 : 4096).described(), want) << machine;
    }
}

TEST(FixtureMachines, ALargeServerIsReadWhole) {
    const TemporaryFolder folder;
    ASSERT_EQ(runTool("make-server-fixture " + folder.path()), 0);
    FixtureMachine server(folder.path());
    EXPECT_EQ(server.number(SysctlNumber::hw_logicalcpu), "256");
    const auto processors = server.kernel().hostPort().host_processor_info(kNoTick);
    ASSERT_TRUE(processors);
    EXPECT_EQ(processors->processorCount, 256u);
    EXPECT_EQ(processors->ticks[4 * 255], 100255);

    std::string drives;
    for (int n = 1; n <= 24; ++n)
        drives += ' ' + std::to_string(n << 20) + '/' + std::to_string(n << 19);
    EXPECT_EQ(server.drives(), drives);
    std::string volumes = "/ 'Debian GNU/Linux' internal root\n";
    for (int n = 0; n < 12; ++n)
        volumes += "/srv/data" + std::to_string(n) + " internal\n";
    EXPECT_EQ(server.volumes(), volumes);
}

TEST(FixtureMachines, AServerIsAsLargeAsItIsWanted) {
    const TemporaryFolder folder;
    ASSERT_EQ(runTool("make-server-fixture " + folder.path() + " 16 28 30"), 0);
    FixtureMachine server(folder.path());
    EXPECT_EQ(server.number(SysctlNumber::hw_logicalcpu), "16");
    EXPECT_EQ(server.services(RegistryService::IOBlockStorageDriver).size(), 28u)
        << "disks beyond the alphabet";
    const auto volumes = server.kernel().fileManager().mountedVolumeURLs(kNoTick);
    EXPECT_EQ(volumes ? volumes->size() : 0, 15u) << "the root, and one for each pair of disks";
    EXPECT_NE(runTool("make-server-fixture " + folder.path() + " many"), 0);
}

}  // namespace
}  // namespace norvane
