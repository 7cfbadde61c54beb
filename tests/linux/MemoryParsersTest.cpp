#include <gtest/gtest.h>

#include "platform/linux/ArcStats.h"
#include "platform/linux/BlockStat.h"
#include "platform/linux/MemInfo.h"
#include "platform/linux/MmStat.h"
#include "platform/linux/Pressure.h"
#include "platform/linux/Swaps.h"
#include "platform/linux/VmStat.h"

namespace norvane {
namespace {

TEST(MemInfoParser, KeepsAMissingLineApartFromAZero) {
    const MemInfo info = parseMemInfo("MemTotal: 1000 kB\nMemAvailable:       0 kB\nHugePages_Total:   3\n");
    EXPECT_EQ(info.memTotal, 1024000u);
    EXPECT_EQ(info.memAvailable, 0u);
    EXPECT_EQ(info.memFree, std::nullopt);
}

TEST(MemInfoParser, BearsDamagedLines) {
    const MemInfo info = parseMemInfo(
        "MemTotal\nMemFree: many kB\n: 3 kB\nCached:5 kB\nCached: 9 kB\nSwapCached: 7 kB\n"
        "Shmem: 99999999999999999999999 kB\nBuffers: 18446744073709551615 kB\nMemAvailable: 12");
    EXPECT_EQ(info.memTotal, std::nullopt);
    EXPECT_EQ(info.memFree, std::nullopt);
    EXPECT_EQ(info.cached, 5u * 1024) << "the first of two lines counts, and SwapCached is another one";
    EXPECT_EQ(info.shmem, std::nullopt);
    EXPECT_EQ(info.buffers, ~std::uint64_t{0});
    EXPECT_EQ(info.memAvailable, 12u * 1024);
}

TEST(VmStatParser, NeedsBothCounters) {
    EXPECT_EQ(parseVmStat("pgpgin 1\npswpin 20\npswpout 30\npgfault 4\n"), (VmStat{20, 30}));
    for (const char* text : {"", "pswpin 20\n", "pswpin x\npswpout 30\n", "pswpin20\npswpout 30\n"})
        EXPECT_EQ(parseVmStat(text), std::nullopt) << text;
}

TEST(SwapsParser, TellsZramFromEverythingElse) {
    const std::string head = "Filename\t\t\t\tType\t\tSize\t\tUsed\t\tPriority\n";
    struct Case {
        const char* name;
        const char* line;
        std::vector<SwapArea> want;
    };
    for (const Case& c : {
             Case{"a zram device", "/dev/zram0 partition\t4 2 100\n", {{0, 4096, 2048}}},
             Case{"its node was made anew",
                  "/dev/zram12\\040(deleted) partition 4 2 100\n",
                  {{12, 4096, 2048}}},
             Case{"a file that is called like one", "/home/zram0 file 4 2 -2\n", {{{}, 4096, 2048}}},
             Case{"a name with blanks", "/my\\040swap\\011file file 4 2 -2\n", {{{}, 4096, 2048}}},
             Case{"a disk", "/dev/dm-1 partition 4 0 -2\n", {{{}, 4096, 0}}},
             Case{"another name that begins so", "/dev/zramdisk partition 4 0 -2\n", {{{}, 4096, 0}}},
             Case{"switched off", "", {}},
             Case{"cut off", "/dev/sda2 partition 4", {}},
             Case{"garbage between good lines", "\xff\n\n/a file x 1\n/b file 1 1\n", {{{}, 1024, 1024}}},
         }) {
        std::vector<SwapArea> areas{{1, 2, 3}};
        EXPECT_TRUE(parseSwaps(head + c.line, areas)) << c.name;
        EXPECT_EQ(areas, c.want) << c.name;
    }
    std::vector<SwapArea> areas;
    EXPECT_FALSE(parseSwaps("", areas));
    EXPECT_FALSE(parseSwaps("/dev/sda2 partition 4 0 -2\n", areas));
}

TEST(PressureParser, TakesTheShortMeanOfEachLine) {
    struct Case {
        const char* text;
        std::optional<Pressure> want;
    };
    for (const Case& c : {
             Case{"some avg10=12.34 avg60=1.00 avg300=0.00 total=1\nfull avg10=5.06 avg60=0.00 total=0\n",
                  Pressure{1234, 506}},
             Case{"some avg60=1.00 avg10=100.00", Pressure{10000, 0}},
             Case{"full avg10=5.00\n", {}},
             Case{"some avg10=x\nfull avg10=5.00\n", {}},
             Case{"some avg10", {}},
             Case{"", {}},
         }) {
        EXPECT_EQ(parsePressure(c.text), c.want) << c.text;
    }
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

}  // namespace
}  // namespace norvane
