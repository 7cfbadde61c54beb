#include <gtest/gtest.h>

#include <sstream>

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
    explicit FixtureMachine(const RootFolder& folder, std::uint64_t pageBytes = 4096) {
        system_.calls.pageBytes = pageBytes;
        system_.calls.fileSystemSpace = [](const std::string&) {
            return FileSystemSpace{500'000'000'000, 200'000'000'000};
        };
        kernel_.emplace(folder, system_.calls, LinuxKernel::Lanes::sameThread());
    }

    LinuxKernel& kernel() { return *kernel_; }
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
        const auto pages = kernel().hostPort().host_statistics64(kNoTick, SwapCounters::read).value();
        text << "\nmemory " << kernel().processInfo().physicalMemory(kNoTick) << ": " << pages.wire_count
             << ' ' << pages.active_count << ' ' << pages.compressor_page_count << ' '
             << pages.external_page_count << ' ' << pages.purgeable_count << " pages";
        if (const auto swap = sysctl.sysctlbyname_vm_swapusage(kNoTick))
            text << ", swap " << swap->xsu_total << ' ' << swap->xsu_avail << ' ' << swap->xsu_used;
        text << "\ndrives" << drives() << "\ngraphics";
        for (const RegistryEntry& device : services(RegistryService::IOAccelerator))
            text << ' ' << propertyText(device, "PerformanceStatistics", "Device Utilization %");
        text << ", batteries " << kernel().powerSources().IOPSCopyPowerSourcesInfo(kNoTick).value().size();
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

    FakeSystemCalls system_;
    std::optional<LinuxKernel> kernel_;
};

// The text beside each machine says it. The figures of memory are: wired, active, compressed, external,
// purgeable; of a battery: design, full and current capacity, percentage, cycles, temperature, on external
// power, charging.
TEST(FixtureMachines, TellWhatTheirUsersWouldSay) {
    for (const char* machine :
         {"uniform-desktop", "hybrid-laptop", "arm-board-three-tiers", "virtual-machine", "container",
          "zram-desktop", "zfs-machine", "old-kernel", "64k-pages"}) {
        const std::uint64_t pageBytes = machine == std::string("64k-pages") ? 65536 : 4096;
        const auto want = RootFolder(fixture("")).read(std::string("/") + machine + ".txt");
        EXPECT_EQ(FixtureMachine(RootFolder(fixture(machine)), pageBytes).described(), want) << machine;
    }
}

TEST(FixtureMachines, AServerIsAsLargeAsItIsWanted) {
    const TemporaryFolder folder;
    ASSERT_EQ(runTool("make-server-fixture " + folder.path() + " 256 28 30"), 0);
    FixtureMachine server(folder.root());
    const auto processors = server.kernel().hostPort().host_processor_info(kNoTick);
    EXPECT_EQ(processors.value().ticks.at(4 * 255), 100255);
    std::string drives;
    for (int n = 1; n <= 28; ++n)  // disks beyond the alphabet
        drives += ' ' + std::to_string(n << 20) + '/' + std::to_string(n << 19);
    EXPECT_EQ(server.drives(), drives);
    std::string volumes = "/ 'Debian GNU/Linux' internal root\n";
    for (int n = 0; n < 14; ++n)  // one for each pair of disks
        volumes += "/srv/data" + std::to_string(n) + " internal\n";
    EXPECT_EQ(server.volumes(), volumes);
    EXPECT_NE(runTool("make-server-fixture " + folder.path() + " many"), 0);
}

}  // namespace
}  // namespace norvane
