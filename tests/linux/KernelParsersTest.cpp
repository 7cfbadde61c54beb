#include <gtest/gtest.h>

#include <algorithm>
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
// tests/fuzz.
namespace norvane {
namespace {

TEST(KernelText, NumbersAreWholeWordsThatFit) {
    using Number = std::optional<std::uint64_t>;
    for (const auto& [text, want] :
         std::vector<std::pair<const char*, Number>>{{"12 34", 12},
                                                     {"\t 7", 7},
                                                     {"18446744073709551615", ~std::uint64_t{0}},
                                                     {"18446744073709551616", {}},
                                                     {"-1", {}},
                                                     {"+1", {}},
                                                     {"12kB", {}},
                                                     {" ", {}},
                                                     {"0x10", {}}}) {
        std::string_view rest = text;
        EXPECT_EQ(takeNumber(rest), want) << text;
        EXPECT_EQ(rest == text, !want) << "what is no number must stay";
    }
    EXPECT_EQ(parseHundredths("12.349"), 1234u) << "cut off, not rounded";
    for (const char* none : {"1.", ".5", "1.x", "-1.00", "", "1.2.3"})
        EXPECT_EQ(parseHundredths(none), std::nullopt) << none;
    for (const char* none : {"cpu", "cpu1x", "cpu-1", "cpu70000", "xcpu1"})
        EXPECT_EQ(numberAfter("cpu", none), std::nullopt) << none;
    EXPECT_EQ(collapsed(std::string_view("a\0\x7f\x1b b\xc3\xa9\n", 9)), "a b\xc3\xa9");
}

TEST(MemInfoParser, KeepsAMissingLineApartFromAZeroAndBearsDamagedOnes) {
    const MemInfo info = parseMemInfo(
        "MemTotal\nMemFree: many kB\n: 3 kB\nCached:5 kB\nCached: 9 kB\nSwapCached: 7 kB\nHugePages_Total:   "
        "3\n"
        "Shmem: 99999999999999999999999 kB\nBuffers: 18446744073709551615 kB\nSwapFree:    0 "
        "kB\nMemAvailable: 12");
    EXPECT_EQ(info.memTotal, std::nullopt);
    EXPECT_EQ(info.memFree, std::nullopt);
    EXPECT_EQ(info.cached, 5u * 1024) << "the first of two lines counts, and SwapCached is another one";
    EXPECT_EQ(info.shmem, std::nullopt);
    EXPECT_EQ(info.buffers, ~std::uint64_t{0});
    EXPECT_EQ(info.swapFree, 0u);
    EXPECT_EQ(info.memAvailable, 12u * 1024);
}

TEST(VmStatParser, NeedsBothCounters) {
    EXPECT_EQ(parseVmStat("pgpgin 1\npswpin 20\npswpout 30\npgfault 4\n"), (VmStat{20, 30}));
    for (const char* text : {"", "pswpin 20\n", "pswpin x\npswpout 30\n", "pswpin20\npswpout 30\n"})
        EXPECT_EQ(parseVmStat(text), std::nullopt) << text;
}

TEST(SwapsParser, TellsZramFromEverythingElse) {
    const std::string head = "Filename\t\t\t\tType\t\tSize\t\tUsed\t\tPriority\n";
    const auto expect = [&](const char* line, const std::vector<SwapArea>& want) {
        std::vector<SwapArea> areas{{1, 2, 3}};
        EXPECT_TRUE(parseSwaps(head + line, areas)) << line;
        EXPECT_EQ(areas, want) << line;
    };
    expect("/dev/zram0 partition\t4 2 100\n", {{0, 4096, 2048}});
    expect("/dev/zram12\\040(deleted) partition 4 2 100\n", {{12, 4096, 2048}});
    expect("/home/zram0 file 4 2 -2\n", {{{}, 4096, 2048}});
    expect("/my\\040swap\\011file file 4 2 -2\n", {{{}, 4096, 2048}});
    expect("/dev/zramdisk partition 4 0 -2\n", {{{}, 4096, 0}});
    expect("", {});
    expect("/dev/sda2 partition 4", {});
    expect("\xff\n\n/a file x 1\n/b file 1 1\n", {{{}, 1024, 1024}});
    std::vector<SwapArea> areas;
    EXPECT_FALSE(parseSwaps("", areas));
    EXPECT_FALSE(parseSwaps("/dev/sda2 partition 4 0 -2\n", areas));
}

TEST(PressureParser, TakesTheShortMeanOfEachLine) {
    EXPECT_EQ(parsePressure(
                  "some avg10=12.34 avg60=1.00 avg300=0.00 total=1\nfull avg10=5.06 avg60=0.00 total=0\n"),
              (Pressure{1234, 506}));
    EXPECT_EQ(parsePressure("some avg60=1.00 avg10=100.00"), (Pressure{10000, 0}));
    for (const char* text : {"full avg10=5.00\n", "some avg10=x\nfull avg10=5.00\n", "some avg10", ""})
        EXPECT_EQ(parsePressure(text), std::nullopt) << text;
}

TEST(DeviceParsers, TakeTheRightColumnOrNothing) {
    EXPECT_EQ(parseMmStat("  127287296 63963136 68157440  0 69157440 5461 0 0 0\n"), 68157440u);
    EXPECT_EQ(parseMmStat("1 2"), std::nullopt);
    EXPECT_EQ(parseMmStat(""), std::nullopt);

    EXPECT_EQ(parseBlockStat("   1 2 300 4 5 6 700 8 9 10 11\n"), (BlockStat{300, 700}));
    EXPECT_EQ(parseBlockStat("1 2 3 4 5 6"), std::nullopt);
    EXPECT_EQ(parseBlockStat("1 2 3 4 5 6 -7"), std::nullopt);

    EXPECT_EQ(parseArcStats("9 1 0x01\nname type data\nc 4 9\nc_min 4 20\nsize 4 300\n"),
              (ArcStats{300, 20}));
    EXPECT_EQ(parseArcStats("name type data\nsize 4 300\n"), std::nullopt);
    EXPECT_EQ(parseArcStats("size\nc_min"), std::nullopt);
}

TEST(ProcStat, ColumnsBecomeTheFourAnswers) {
    constexpr std::uint64_t kMost = ~std::uint64_t{0};
    // User, system, idle, nice; stolen and guest time count nowhere.
    for (const auto& [text, want] : std::vector<std::pair<const char*, CPUTicks>>{
             {"cpu  10 2 3 40 5 6 7 1000 8 1\n", {10, 16, 45, 2}},
             {"cpu 10 2 3 40\n", {10, 3, 40, 2}},
             {"cpu 10 2 3 40 5\n", {10, 3, 45, 2}},
             {"cpu 10 2 3 40 5 6 7 18446744073709551615999 8 1\n", {10, 16, 45, 2}},
             {"cpu0 9 9 9 9\ncpu 1 2 3 4 5 6 7 8 9 10 11 12", {1, 16, 9, 2}},
             {"cpu 1 2 18446744073709551615 18446744073709551615 5 6 7\n", {1, kMost, kMost, 2}},
         }) {
        EXPECT_EQ(parseMachineTicks(text), want) << text;
    }
    for (const char* none : {"cpu 10 2 3\n", "cpu 10 2 3 4x", "cpu 10 -2 3 4 5\n", "cpu0 1 2 3 4\nintr 5\n",
                             "", "\xff\xfe\n\n\n cpux 1 2 3 4"}) {
        EXPECT_EQ(parseMachineTicks(none), std::nullopt) << none;
    }
}

TEST(ProcStat, ProcessorsAreKnownByTheirNumberNotTheirLine) {
    std::vector<ProcessorTicks> processors{{99, {}}};
    parseProcessorTicks(
        "cpu  1 2 3 4\ncpu0 1 0 0 4\ncpu8 2 0 0 5\ncpu3 bad\ncpu4000000000 1 2 3 4\nintr 7\ncpu5 3 0 0 6",
        processors);
    const std::vector<ProcessorTicks> want{{0, {1, 0, 4, 0}}, {8, {2, 0, 5, 0}}, {5, {3, 0, 6, 0}}};
    EXPECT_EQ(processors, want);
}

TEST(CPUList, ReadsWhatTheKernelWritesAndRefusesTheRest) {
    using List = std::vector<unsigned>;
    EXPECT_EQ(parseCPUList("0-3,8,10-11\n"), (List{0, 1, 2, 3, 8, 10, 11}));
    EXPECT_EQ(parseCPUList("5\n"), List{5});
    EXPECT_EQ(parseCPUList("\n"), List{});
    EXPECT_EQ(parseCPUList(""), List{});
    for (const char* text :
         {"0-", "-3", "3-1", "a", "0-4000000000", "0,0,0", "0-65535,0-65535", "1,,2", "0-3:1/2"})
        EXPECT_EQ(parseCPUList(text), std::nullopt) << text;
}

TEST(DrmFdinfo, OfTimedAndOfCountedEngines) {
    const auto timed = parseDrmFdinfo(
        "pos:\t0\nflags:\t02100002\ndrm-driver:\ti915\ndrm-client-id:\t42\ndrm-pdev:\t0000:00:02.0\n"
        "drm-total-system0:\t1024 KiB\ndrm-engine-render:\t9288864723 ns\ndrm-engine-video:\t0 ns\n"
        "drm-engine-capacity-video:\t2\n");
    ASSERT_TRUE(timed);
    EXPECT_EQ(timed->clientId, "42");
    EXPECT_EQ(timed->pdev, "0000:00:02.0");
    EXPECT_EQ(timed->engines, (DrmEngines{{"render", {9288864723, {}, {}, 1}}, {"video", {0, {}, {}, 2}}}));

    const auto counted = parseDrmFdinfo(
        "drm-engine-capacity-ccs:   4\ndrm-client-id: 7\ndrm-cycles-ccs:            1000\n"
        "drm-total-cycles-ccs:      7655183225\ndrm-cycles-bcs: 5");
    ASSERT_TRUE(counted);
    EXPECT_EQ(counted->pdev, "");
    EXPECT_EQ(counted->engines, (DrmEngines{{"ccs", {{}, 1000, 7655183225, 4}}, {"bcs", {{}, 5, {}, 1}}}));
    EXPECT_TRUE(counted->engines.at("ccs").isMeasured());
    EXPECT_FALSE(counted->engines.at("bcs").isMeasured()) << "cycles of how many?";
}

TEST(DrmFdinfo, ReadsOneEngineAsFarAsItCanBeUnderstood) {
    const auto engineOf = [](const char* lines) {
        const auto info = parseDrmFdinfo(std::string("drm-client-id: 1\n") + lines);
        return info && info->engines.contains("x") ? info->engines.at("x") : DrmEngine{};
    };
    for (const char* five : {"drm-engine-x: 5\n", "drm-engine-x: 5 ns\ndrm-engine-x: 6 ns\n",
                             "drm-engine-x:5 ns\r\n", "drm-engine-x: 5 ns\ndrm-engine-capacity-x: 0\n",
                             "drm-engine-x: 5 ns\ndrm-engine-capacity-x: many\n"}) {
        EXPECT_EQ(engineOf(five), (DrmEngine{5, {}, {}, 1})) << five;
    }
    EXPECT_EQ(engineOf("drm-engine-x: 18446744073709551615 ns\n"), (DrmEngine{UINT64_MAX, {}, {}, 1}));
    for (const char* none :
         {"drm-engine-x: 5 us\n", "drm-engine-x: 5%\n", "drm-engine-x: 5 ns 6\n", "drm-cycles-x: 5 ns\n",
          "drm-engine-x: -5 ns\n", "drm-engine-x:\n", "drm-engine-x: 18446744073709551616 ns\n"}) {
        EXPECT_EQ(engineOf(none), DrmEngine{}) << none;
    }
}

TEST(DrmFdinfo, OfAnythingElseIsNone) {
    for (const char* text : {"", "drm-engine-render: 5 ns\n", "drm-client-id:\ndrm-client-id: \t \n",
                             "drm-client-id 5\n", "\xff::\n::::\n\xff\xfe:\x80\n"}) {
        EXPECT_FALSE(parseDrmFdinfo(text)) << text;
    }
    const auto nameless = parseDrmFdinfo("drm-client-id: 1\ndrm-engine-: 5 ns\ndrm-engine-capacity-: 2\n");
    ASSERT_TRUE(nameless);
    EXPECT_TRUE(std::none_of(nameless->engines.begin(), nameless->engines.end(),
                             [](const auto& engine) { return engine.second.isMeasured(); }));
}

TEST(PowerSupplyUeventParser, NamesPropertiesLikeTheirFilesAndBearsDamagedText) {
    using Properties = std::map<std::string, std::string, std::less<>>;
    const auto expect = [](const std::string& text, const Properties& want) {
        EXPECT_EQ(parsePowerSupplyUevent(text).properties, want) << text;
    };
    expect(
        "DEVTYPE=power_supply\nPOWER_SUPPLY_NAME=BAT0\nPOWER_SUPPLY_STATUS=Not "
        "charging\nPOWER_SUPPLY_CURRENT_NOW=-12\n",
        {{"name", "BAT0"}, {"status", "Not charging"}, {"current_now", "-12"}});
    expect("", {});
    expect("POWER_SUPPLY_HEALTH=\n", {{"health", ""}});
    expect("POWER_SUPPLY_HEALTH\nPOWER_SUPPLY_TEMP=1", {{"temp", "1"}});
    expect("POWER_SUPPLY_TEMP=305\nPOWER_SUP", {{"temp", "305"}});
    // A model name with a line of its own.
    expect("POWER_SUPPLY_CAPACITY=50\nPOWER_SUPPLY_MODEL_NAME=x=y\nPOWER_SUPPLY_CAPACITY=99\n",
           {{"capacity", "50"}, {"model_name", "x=y"}});
    expect(std::string("POWER_SUPPLY_STATUS= Full \r\0\n", 29), {{"status", "Full"}});
    expect("X_POWER_SUPPLY_TEMP=1\n POWER_SUPPLY_TEMP=2\n", {});
    expect("POWER_SUPPLY_\xff\xc4=\xfe\n\n=\n", {{"\xff\xc4", "\xfe"}});
}

TEST(PowerSupplyPlace, TellsPeripheralsFromTheMachine) {
    const std::string usb = "../../devices/pci0000:00/0000:00:14.0/usb1/1-2/";
    for (const std::string& place :
         {usb + "1-2:1.2/0003:046D:C52B.0003/power_supply/hidpp_battery_0",
          std::string("../../devices/platform/soc/usb12/12-1/power_supply/x"),
          std::string("../../devices/pci0000:00/bluetooth/hci0/hci0:256/power_supply/x"),
          std::string("../../devices/virtual/misc/uhid/0005:046D:B023.0009/power_supply/x")}) {
        EXPECT_TRUE(isPlaceOfPeripheral(place)) << place;
    }
    for (const char* place :
         {"../../devices/LNXSYSTM:00/LNXSYBUS:00/PNP0C0A:00/power_supply/BAT0",
          "../../devices/pci0000:00/usb/power_supply/x", "../../devices/platform/usb-phy/power_supply/usb",
          "../../devices/platform/USBC000:00/power_supply/ucsi-source-psy-USBC000:001", "", "///"}) {
        EXPECT_FALSE(isPlaceOfPeripheral(place)) << place;
    }
}

TEST(DesktopMountOptions, AreReadByMountPoint) {
    const std::unordered_map<std::string, DesktopMountOptions> want{{"/data", {true, false}},
                                                                    {"/srv/my films", {false, true}},
                                                                    {"/other", {false, false}},
                                                                    {"/twice", {false, true}}};
    EXPECT_EQ(parseUtab("SRC=/dev/sda2 TARGET=/data ROOT=/ OPTS=x-gvfs-hide,uhelper=udisks2\n"
                        "ID=7 SRC=//nas/x TARGET=/srv/my\\040films OPTS=x-systemd.automount,x-gvfs-show\n"
                        "SRC=/dev/sda3 TARGET=/other OPTS=x-gvfs-hidden,ax-gvfs-show ATTRS=x-gvfs-hide\n"
                        "TARGET=/twice OPTS=x-gvfs-hide\nTARGET=/twice OPTS=x-gvfs-show\n"
                        "TARGET= OPTS=x-gvfs-hide\nOPTS=x-gvfs-hide\n\n\xff\n"),
              want);
}

TEST(UdevData, HasLabelAndIgnoreMark) {
    const auto expect = [](const char* text, const UdevData& want) {
        EXPECT_EQ(parseUdevData(text), want) << text;
    };
    expect("", {});
    expect("S:disk/by-label/x\nE:ID_FS_LABEL=My_Stick\nE:ID_FS_LABEL_ENC=My\\x20Stick\n",
           {"My Stick", false});
    expect("E:ID_FS_LABEL_ENC=\xc3\xa4\\x2f\\x5Cx\\xg0\\x2\\x00\\x\n",
           {"\xc3\xa4/\\x\\xg0\\x2\\x00\\x", false});
    expect("E:ID_FS_LABEL_ENC=\nE:UDISKS_IGNORE=1\n", {std::nullopt, true});
    expect("E:UDISKS_IGNORE=0\nG:UDISKS_IGNORE=1\nE:UDISKS_IGNORE=11\n", {});
}

TEST(OsReleaseName, IsUnquotedAsAShellDoes) {
    for (const auto& [text, want] : std::vector<std::pair<const char*, const char*>>{
             {"PRETTY_NAME=\"A 1\"\nNAME=\"A System\"\nVERSION_NAME=x\n", "A System"},
             {"  NAME=Plain\t\r\n", "Plain"},
             {"NAME=Plain # not for people", "Plain"},
             {"#NAME=Old\nNAME='Single \\ \"q\"'\n", "Single \\ \"q\""},
             {R"(NAME="a \"b\" \$c \`d\` \\ \e")", R"(a "b" $c `d` \ \e)"},
             {R"(NAME=a\ b"c "'d')", "a bc d"},
             {"NAME=one\nNAME=two\n", "two"},
         }) {
        EXPECT_EQ(parseOsReleaseName(text), want) << text;
    }
    for (const char* none :
         {"", "PRETTY_NAME=\"A 1\"\nID=a\n", "NAME=\"\"\n", "NAME=\"open\n", "NAME=open\\"})
        EXPECT_EQ(parseOsReleaseName(none), std::nullopt) << none;
}

}  // namespace
}  // namespace norvane
