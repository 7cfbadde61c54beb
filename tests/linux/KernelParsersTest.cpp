#include <gtest/gtest.h>

#include <string>

#include "platform/linux/ArcStats.h"
#include "platform/linux/BlockStat.h"
#include "platform/linux/CPUList.h"
#include "platform/linux/DesktopMountOptions.h"
#include "platform/linux/DrmFdinfo.h"
#include "platform/linux/KernelText.h"
#include "platform/linux/MemInfo.h"
#include "platform/linux/MmStat.h"
#include "platform/linux/OsReleaseName.h"
#include "platform/linux/PowerSupply.h"
#include "platform/linux/PowerSupplyUevent.h"
#include "platform/linux/Pressure.h"
#include "platform/linux/ProcStat.h"
#include "platform/linux/Swaps.h"
#include "platform/linux/UdevData.h"
#include "platform/linux/VmStat.h"

// The small parsers of what the kernel and its neighbours write. What must hold for any bytes is in
// tests/fuzz; that ordinary text is understood, the captured machines tell.
namespace norvane {
namespace {

template <auto parse>
void expectRefused(const char* name, std::initializer_list<const char*> texts) {
    for (const char* text : texts)
        EXPECT_FALSE(parse(text).has_value()) << name << ": " << text;
}

TEST(KernelParsers, RefuseWhatIsDamaged) {
    expectRefused<parseHundredths>("hundredths", {"1.", ".5", "1.x", "-1.00", "", "1.2.3"});
    expectRefused<parseVmStat>("vmstat", {"", "pswpin 20\n", "pswpin x\npswpout 3", "pswpin20\npswpout 3"});
    expectRefused<parsePressure>("pressure",
                                 {"full avg10=5\n", "some avg10=x\nfull avg10=5", "some avg10", ""});
    expectRefused<parseMmStat>("mm_stat", {"1 2", ""});
    expectRefused<parseBlockStat>("a disk's stat", {"1 2 3 4 5 6", "1 2 3 4 5 6 -7"});
    expectRefused<parseArcStats>("arcstats", {"name type data\nsize 4 300\n", "size\nc_min"});
    expectRefused<parseMachineTicks>("ticks", {"cpu 10 2 3\n", "cpu 10 2 3 4x", "cpu 10 -2 3 4 5\n",
                                               "cpu0 1 2 3 4\n", "", "\xff\xfe\n\n cpux 1 2 3 4"});
    expectRefused<parseCPUList>("processors", {"0-", "-3", "3-1", "a", "0-4000000000", "0,0,0",
                                               "0-65535,0-65535", "1,,2", "0-3:1/2"});
    expectRefused<parseDrmFdinfo>(
        "fdinfo", {"", "drm-engine-x: 5 ns\n", "drm-client-id:\ndrm-client-id: \t \n", "drm-client-id 5\n",
                   "\xff::\n:::\n\xfe:\x80\n"});
    expectRefused<parseOsReleaseName>(
        "name", {"", "PRETTY_NAME=\"A 1\"\nID=a\n", "NAME=\"\"\n", "NAME=\"open\n", "NAME=open\\"});
}

TEST(KernelText, NumbersAreWholeWordsThatFit) {
    const auto taken = [](std::string_view rest) {
        const std::string_view text = rest;
        const auto number = takeNumber(rest);
        EXPECT_EQ(rest == text, !number) << text << ": what is no number must stay";
        return number;
    };
    EXPECT_EQ(taken("\t 12 34"), 12u);
    EXPECT_EQ(taken("18446744073709551615"), ~std::uint64_t{0});
    for (const char* none : {"18446744073709551616", "-1", "+1", "12kB", " ", "0x10"})
        EXPECT_EQ(taken(none), std::nullopt) << none;
    EXPECT_EQ(parseHundredths("12.349"), 1234u) << "cut off, not rounded";
    for (const char* none : {"cpu", "cpu1x", "cpu-1", "cpu70000", "xcpu1"})
        EXPECT_EQ(numberAfter("cpu", none), std::nullopt) << none;
    EXPECT_EQ(collapsed(std::string_view("a\0\x7f\x1b b\xc3\xa9\n", 9)), "a b\xc3\xa9");
}

TEST(MemInfoParser, KeepsAMissingLineApartFromAZeroAndBearsDamagedOnes) {
    const MemInfo info = parseMemInfo(
        "MemTotal\nMemFree: many kB\n: 3 kB\nCached:5 kB\nCached: 9 kB\nSwapCached: 7 kB\n"
        "Shmem: 99999999999999999999999 kB\nBuffers: 18446744073709551615 kB\nSwapFree:    0 "
        "kB\nMemAvailable: 12");
    EXPECT_FALSE(info.memTotal || info.memFree || info.shmem);
    EXPECT_EQ(info.cached, 5u * 1024) << "the first of two lines counts, and SwapCached is another one";
    EXPECT_EQ(info.buffers, ~std::uint64_t{0});
    EXPECT_EQ(info.swapFree, 0u);
    EXPECT_EQ(info.memAvailable, 12u * 1024);
}

TEST(SwapsParser, TellsZramFromEverythingElse) {
    const std::string head = "Filename\t\t\t\tType\t\tSize\t\tUsed\t\tPriority\n";
    std::vector<SwapArea> areas{{1, 2, 3}};
    EXPECT_TRUE(parseSwaps(head + "/dev/zram12\\040(deleted) partition\t4 2 100\n/home/zram0 file 4 2 -2\n"
                                  "/my\\040swap\\011file file 4 2 -2\n/dev/zramdisk partition 4 0 "
                                  "-2\n/dev/sda2 partition 4\n\xff\n\n/a file x 1\n",
                           areas));
    EXPECT_EQ(areas,
              (std::vector<SwapArea>{{12, 4096, 2048}, {{}, 4096, 2048}, {{}, 4096, 2048}, {{}, 4096, 0}}));
    EXPECT_TRUE(parseSwaps(head, areas));
    EXPECT_TRUE(areas.empty());
    EXPECT_FALSE(parseSwaps("/dev/sda2 partition 4 0 -2\n", areas)) << "without its head it is no table";
}

TEST(ProcStat, ProcessorsAreKnownByTheirNumberNotTheirLine) {
    constexpr std::uint64_t kMost = ~std::uint64_t{0};
    EXPECT_EQ(parseMachineTicks("cpu 1 2 18446744073709551615 18446744073709551615 5 6 7\n"),
              (CPUTicks{1, kMost, kMost, 2}));
    EXPECT_EQ(parseMachineTicks("cpu0 9 9 9 9\ncpu  10 2 3 40\n"), (CPUTicks{10, 3, 40, 2}))
        << "an older kernel's";
    std::vector<ProcessorTicks> processors{{99, {}}};
    parseProcessorTicks(
        "cpu  1 2 3 4\ncpu0 1 0 0 4\ncpu8 2 0 0 5\ncpu3 bad\ncpu4000000000 1 2 3 4\ncpu5 3 0 0 6",
        processors);
    EXPECT_EQ(processors,
              (std::vector<ProcessorTicks>{{0, {1, 0, 4, 0}}, {8, {2, 0, 5, 0}}, {5, {3, 0, 6, 0}}}));
}

TEST(DrmFdinfo, ReadsEachEngineAsFarAsItCanBeUnderstood) {
    const auto engineOf = [](const char* lines) {
        const auto info = parseDrmFdinfo(std::string("drm-client-id: 1\ndrm-engine-: 5 ns\n") + lines);
        return info && info->engines.contains("x") ? info->engines.at("x") : DrmEngine{};
    };
    EXPECT_EQ(engineOf("drm-engine-capacity-x:  4\ndrm-cycles-x: 1000\ndrm-total-cycles-x: 7655183225\n"),
              (DrmEngine{{}, 1000, 7655183225, 4}));
    EXPECT_FALSE(engineOf("drm-cycles-x: 5").isMeasured()) << "cycles of how many?";
    for (const char* five : {"drm-engine-x: 5\n", "drm-engine-x: 5 ns\ndrm-engine-x: 6 ns\n",
                             "drm-engine-x:5 ns\r\n", "drm-engine-x: 5 ns\ndrm-engine-capacity-x: 0\n",
                             "drm-engine-x: 5 ns\ndrm-engine-capacity-x: many\n"}) {
        EXPECT_EQ(engineOf(five), (DrmEngine{5, {}, {}, 1})) << five;
    }
    for (const char* none :
         {"drm-engine-x: 5 us\n", "drm-engine-x: 5%\n", "drm-engine-x: 5 ns 6\n", "drm-cycles-x: 5 ns\n",
          "drm-engine-x: -5 ns\n", "drm-engine-x:\n", "drm-engine-x: 18446744073709551616 ns\n"}) {
        EXPECT_EQ(engineOf(none), DrmEngine{}) << none;
    }
}

TEST(PowerSupplyUeventParser, NamesPropertiesLikeTheirFilesAndBearsDamagedText) {
    using Properties = std::map<std::string, std::string, std::less<>>;
    EXPECT_EQ(
        parsePowerSupplyUevent(
            "POWER_SUPPLY_HEALTH=\nPOWER_SUPPLY_TYPE\nX_POWER_SUPPLY_A=1\n POWER_SUPPLY_A=2\n"
            "POWER_SUPPLY_STATUS= Full \r\nPOWER_SUPPLY_\xff\xc4=\xfe\n\n=\nPOWER_SUPPLY_TEMP=-12\nPOWER_SUP")
            .properties,
        (Properties{{"health", ""}, {"status", "Full"}, {"\xff\xc4", "\xfe"}, {"temp", "-12"}}));
    EXPECT_EQ(parsePowerSupplyUevent(
                  "POWER_SUPPLY_CAPACITY=50\nPOWER_SUPPLY_MODEL_NAME=x=y\nPOWER_SUPPLY_CAPACITY=99\n")
                  .properties,
              (Properties{{"capacity", "50"}, {"model_name", "x=y"}}))
        << "a model name with a line of its own";
}

TEST(PowerSupplyPlace, TellsPeripheralsFromTheMachine) {
    for (const char* place :
         {"pci0000:00/0000:00:14.0/usb1/1-2/1-2:1.2/0003:046D:C52B.0003/power_supply/hidpp_battery_0",
          "platform/soc/usb12/12-1/power_supply/x", "pci0000:00/bluetooth/hci0/hci0:256/power_supply/x",
          "virtual/misc/uhid/0005:046D:B023.0009/power_supply/x"})
        EXPECT_TRUE(isPlaceOfPeripheral(std::string("../../devices/") + place)) << place;
    for (const char* place : {"LNXSYSTM:00/LNXSYBUS:00/PNP0C0A:00/power_supply/BAT0",
                              "pci0000:00/usb/power_supply/x", "platform/usb-phy/power_supply/usb",
                              "platform/USBC000:00/power_supply/ucsi-source-psy-USBC000:001", "", "///"})
        EXPECT_FALSE(isPlaceOfPeripheral(std::string("../../devices/") + place)) << place;
}

TEST(DesktopMountOptions, AreReadByMountPoint) {
    const std::unordered_map<std::string, DesktopMountOptions> want{
        {"/srv/my films", {false, true}}, {"/other", {false, false}}, {"/twice", {false, true}}};
    EXPECT_EQ(parseUtab("ID=7 SRC=//nas/x TARGET=/srv/my\\040films OPTS=x-systemd.automount,x-gvfs-show\n"
                        "SRC=/dev/sda3 TARGET=/other OPTS=x-gvfs-hidden,ax-gvfs-show ATTRS=x-gvfs-hide\n"
                        "TARGET=/twice OPTS=x-gvfs-hide\nTARGET=/twice OPTS=uhelper=udisks2,x-gvfs-show\n"
                        "TARGET= OPTS=x-gvfs-hide\nOPTS=x-gvfs-hide\n\n\xff\n"),
              want);
}

TEST(UdevData, HasLabelAndIgnoreMark) {
    EXPECT_EQ(parseUdevData("E:ID_FS_LABEL_ENC=\xc3\xa4\\x2f\\x5Cx\\xg0\\x2\\x00\\x\nE:UDISKS_IGNORE=0\nG:"
                            "UDISKS_IGNORE=1\nE:UDISKS_IGNORE=11\n"),
              (UdevData{"\xc3\xa4/\\x\\xg0\\x2\\x00\\x", false}));
    EXPECT_EQ(parseUdevData("E:ID_FS_LABEL_ENC=\nE:UDISKS_IGNORE=1\n"), (UdevData{std::nullopt, true}));
}

TEST(OsReleaseName, IsUnquotedAsAShellDoes) {
    for (const auto& [text, want] : std::vector<std::pair<const char*, const char*>>{
             {"VERSION_NAME=x\n  NAME=Plain\t\r\n", "Plain"},
             {"NAME=Plain # not for people", "Plain"},
             {"#NAME=Old\nNAME='Single \\ \"q\"'\n", "Single \\ \"q\""},
             {R"(NAME="a \"b\" \$c \`d\` \\ \e")", R"(a "b" $c `d` \ \e)"},
             {R"(NAME=a\ b"c "'d')", "a bc d"},
             {"NAME=one\nNAME=two\n", "two"},
         }) {
        EXPECT_EQ(parseOsReleaseName(text), want) << text;
    }
}

}  // namespace
}  // namespace norvane
