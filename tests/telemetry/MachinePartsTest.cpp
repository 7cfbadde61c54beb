#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/scripted/ScriptedMachine.h"
#include "telemetry/CPUHardwareInfo.h"
#include "telemetry/DeviceIdentity.h"
#include "telemetry/GPUReader.h"
#include "telemetry/VolumeReader.h"

namespace norvane {
namespace {

RegistryEntry device(PropertyValue utilization, PropertyValue activity = "none") {
    const PropertyDictionary statistics{{"GPU Activity(%)", activity}, {"Device Utilization %", utilization}};
    return RegistryEntry({{"PerformanceStatistics", statistics}});
}

TEST(GPUReader, IsTheMeanOverTheDevicesThatReportAWholeNumber) {
    const std::vector silent{RegistryEntry::unreadable(), RegistryEntry({{"PerformanceStatistics", "none"}}),
                             device("busy"), device(true), device(80.5)};
    for (const auto& [devices, want] : std::vector<std::pair<std::vector<RegistryEntry>, double>>{
             {silent, 0},
             {{device(30, 90), device("busy", 90), silent[2]}, 60},
             {{device(-10), device(250.0)}, 120}}) {
        ScriptedRegistry registry;
        registry.services(RegistryService::IOAccelerator).always(devices);
        EXPECT_EQ(GPUReader(registry).readGPUUtilization({1}), want);
    }
}

TEST(VolumeReader, FillsARowFromWhatIsKnownAndLeavesOutWhatCannotBeRead) {
    ScriptedMachine machine;
    VolumeReader reader(machine.fileManager, machine.uuidSource);
    constexpr std::int64_t kGB = 1'000'000'000;
    const std::vector<VolumeURL> volumes{{"/", {{"System", 500 * kGB, 123'500'000'000, true, true, {}}}},
                                         {"/b", std::nullopt},
                                         {"/media/ada/STICK", {{{}, 64 * kGB, 14 * kGB, false, false, {}}}},
                                         {"/c", VolumeResourceValues{}},
                                         {"/more available", {{{}, 8 * kGB, 9 * kGB, {}, {}, {}}}},
                                         {"/none available", {{{}, 8 * kGB, {}, {}, {}, {}}}},
                                         {"/a", {{"a\xFF", 0, {}, {}, {}, {}}}},
                                         {"/m/\xC3", {{{}, 0, {}, {}, {}, {}}}}};
    machine.fileManager.volumes.always(volumes);
    auto rows = reader.readMountedVolumes({1});
    EXPECT_NE(rows[0].id, reader.readMountedVolumes({2})[0].id) << "new at every read";
    for (DiskSnapshot& row : rows)
        row.id = {};
    EXPECT_EQ(rows, (std::vector<DiskSnapshot>{{{}, "System", 376.5, 500, false, true, 123.5},
                                               {{}, "STICK", 50, 64, true, false, 14},
                                               {{}, "more available", 0, 8, false, false, 9},
                                               {{}, "none available", 8, 8, false, false, 0},
                                               {{}, "a\uFFFD", 0, 0, false, false, 0},
                                               {{}, "\uFFFD", 0, 0, false, false, 0}}));
}

TEST(DeviceIdentity, NamesAModelByTheFirstTextThatItsIdentifierContainsAndAsksOnce) {
    struct Case {
        std::optional<std::string> identifier;
        const char* name;
        const char* icon;
    };
    for (const Case& c : {Case{"MacBookPro18,3", "MacBook Pro", "laptopcomputer"},
                          {"MacPro and MacBookAir", "MacBook Air", "laptopcomputer"},
                          {"MacBook10,1", "MacBook", "laptopcomputer"},
                          {"MacPro7,1", "Mac Pro", "macpro.gen3.fill"},
                          {"Mac14,2", "MacBook", "laptopcomputer"},
                          {"macbookpro18,3", "Mac", "applelogo"},
                          {std::string("Laptop\0iMac", 11), "Mac", "applelogo"},
                          {std::nullopt, "Mac", "applelogo"}}) {
        ScriptedSysctl sysctl;
        sysctl.text(SysctlText::hw_model).always(c.identifier);
        DeviceIdentity identity(sysctl);
        EXPECT_EQ(identity.deviceModel(), (DeviceModel{c.name, c.icon})) << c.identifier.value_or("none");
        EXPECT_EQ(identity.deviceModel(), (DeviceModel{c.name, c.icon}));
        EXPECT_EQ(sysctl.text(SysctlText::hw_model).asked(), 1U);
    }
}

TEST(CPUHardwareInfo, NamesTheChipAndCountsItsCores) {
    ScriptedSysctl sysctl;
    sysctl.number(SysctlNumber::hw_perflevel0_physicalcpu).always(8);
    sysctl.number(SysctlNumber::hw_perflevel1_physicalcpu).always(-3);
    sysctl.text(SysctlText::machdep_cpu_brand_string).always(std::string("Fast \xFF Chip\0junk", 16));
    const CPUHardwareInfo info(sysctl);
    EXPECT_EQ(info.performanceCores(), 8);
    EXPECT_EQ(info.efficiencyCores(), 0);
    EXPECT_EQ(info.chipName(), "Fast \uFFFD Chip");
}

}  // namespace
}  // namespace norvane
