#include "platform/linux/DiskDrivers.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "CountingFileObserver.h"
#include "PropertyText.h"
#include "TemporaryFolder.h"

namespace norvane {
namespace {

using namespace std::string_literals;

constexpr const char* kSata = "pci0000:00/0000:00:17.0/block";
constexpr const char* kUsb = "pci0000:00/0000:00:14.0/usb2/2-1/block";

class DiskDriversTest : public testing::Test {
 protected:
    TemporaryFolder machine;
    std::shared_ptr<CountingFileObserver> observer = std::make_shared<CountingFileObserver>();
    DiskDrivers disks{machine.root(observer)};

    // A line of the table with 20 columns, as recent kernels write it.
    static std::string line(const std::string& name, std::uint64_t sectorsRead,
                            std::uint64_t sectorsWritten) {
        return "   8       0 " + name + " 11 1 " + std::to_string(sectorsRead) + " 22 33 2 " +
               std::to_string(sectorsWritten) + " 44 0 55 66 7 0 8888 9 10 11\n";
    }
    void table(const std::string& text) { machine.write("/proc/diskstats", text); }
    // A disk at that place below /sys/devices.
    void disk(const std::string& name, const std::string& place) {
        machine.makeFolder("/sys/devices/" + place + "/" + name);
        machine.link("/sys/block/" + name, "../devices/" + place + "/" + name);
    }
    // Another path to a drive, which the table hides.
    void path(const std::string& name, const char* place, const char* stat, const char* hidden = "1\n") {
        disk(name, place);
        machine.write("/sys/block/" + name + "/hidden", hidden);
        machine.write("/sys/block/" + name + "/stat", stat);
    }
    // Bytes read and written of each, as in "512/1024 0/0"; "missing" without a list.
    std::string match() {
        const auto services = disks.match();
        if (!services) return "missing";
        std::string all;
        for (const RegistryEntry& service : *services) {
            all += (all.empty() ? "" : " ") + propertyText(service, "Statistics", "Bytes (Read)") + '/' +
                   propertyText(service, "Statistics", "Bytes (Write)");
        }
        return all;
    }
    // Matches until nothing is missed that is looked for now and then only.
    std::string matchLater() {
        for (int i = 0; i < 50; ++i)
            match();
        return match();
    }
};

TEST_F(DiskDriversTest, CountEachPhysicalDriveOnceAndNothingElse) {
    const std::string card = "platform/fe310000.mmc/mmc_host/mmc0/mmc0:0001/block";
    struct Case {
        const char* name;
        std::string place;  // below /sys/devices; none: not in /sys/block
        bool counts = false;
    };
    std::string text;
    std::string want;
    for (const auto& [name, place, counts] : std::vector<Case>{
             {"sda", "pci0000:00/0000:00:17.0/ata1/host0/target0:0:0/0:0:0:0/block", true},
             {"sda1", ""},
             {"nvme0n1", "pci0000:00/0000:01:00.0/nvme/nvme0", true},
             {"nvme0n1p1", ""},
             {"xvda", "vbd-51712/block", true},
             {"mmcblk0", card, true},
             {"mmcblk0p1", ""},
             {"mmcblk0boot0", card + "/mmcblk0", true},
             {"pmem0", "LNXSYSTM:00/LNXSYBUS:00/ACPI0012:00/ndbus0/region0/namespace0.0/block", true},
             {"sdb", "platform/host3/session1/target3:0:0/3:0:0:0/block", true},  // iSCSI
             {"cciss/c0d0", ""},
             {"nvme1n1", "virtual/nvme-subsystem/nvme-subsys1"},  // the head of several paths
             {"nvme1c0n1", "pci0000:00/0000:02:00.0/nvme/nvme1", true},
             {"nvme1c1n1", "pci0000:00/0000:03:00.0/nvme/nvme2", true},
             {"dm-0", "virtual/block"},
             {"zram0", "virtual/block"},
         }) {
        const std::size_t sectors = text.size();  // a number of its own for each
        text += line(name, sectors, sectors + 1);
        if (!place.empty()) disk(name, place);
        if (counts) want += ' ' + std::to_string(sectors * 512) + '/' + std::to_string((sectors + 1) * 512);
    }
    table(text);
    EXPECT_EQ(' ' + match(), want);
    EXPECT_EQ(' ' + match(), want) << "also when they are known";

    disk("cciss!c0d0", kSata);  // a slash in a name is an exclamation mark in the folder
    table(line("cciss/c0d0", 2, 4) + line("cciss/c0d0p1", 1, 1));
    EXPECT_EQ(match(), "1024/2048");
}

TEST_F(DiskDriversTest, APathThatTheTableHidesIsReadByItself) {
    disk("nvme0n1", "virtual/nvme-subsystem/nvme-subsys0");
    path("nvme0c0n1", "pci0000:00/0000:02:00.0/nvme/nvme0", "11 1 100 22 33 2 200 44 0 55 66\n");
    path("sdz", kSata, "11 1 100 22 33 2 200 44 0 55 66\n",
         "0\n");  // not in the table, though nothing hides it
    table(line("nvme0n1", 7, 7));
    EXPECT_EQ(match(), "51200/102400");
    machine.write("/sys/block/nvme0c0n1/stat", "garbage\n");
    EXPECT_EQ(match(), "");
    machine.write("/sys/block/nvme0c0n1/stat", "11 1 101 22 33 2 200 44 0 55 66\n");
    EXPECT_EQ(match(), "51712/102400");

    // A second path, without any change in the table.
    path("nvme0c1n1", "pci0000:00/0000:03:00.0/nvme/nvme1", "1 0 2 0 1 0 4 0 0 0 0\n");
    EXPECT_EQ(matchLater(), "51712/102400 1024/2048");
    // A newer kernel tells of it: never twice.
    table(line("nvme0n1", 7, 7) + line("nvme0c0n1", 100, 200));
    EXPECT_EQ(match(), "51200/102400 1024/2048");
    machine.remove("/sys/block/nvme0c1n1");
    EXPECT_EQ(matchLater(), "51200/102400");
}

TEST_F(DiskDriversTest, ADriveMayComeGoAndComeBackAsSomethingElse) {
    EXPECT_EQ(match(), "missing");
    table("");
    EXPECT_EQ(match(), "");
    table(line("sdc", 1, 1));
    EXPECT_EQ(match(), "") << "a machine without /sys";
    disk("sdc", kSata);
    EXPECT_EQ(matchLater(), "512/512");
    disk("sda", kSata);
    table(line("sda", 1, 1) + line("sdb", 2, 2));
    EXPECT_EQ(match(), "512/512");
    disk("sdb", kUsb);
    EXPECT_EQ(match(), "512/512 1024/1024") << "in the table before it was in the folder";

    machine.remove("/sys/block/sdb");
    table(line("sda", 1, 1));
    EXPECT_EQ(match(), "512/512");
    machine.link("/sys/block/sdb", "../devices/virtual/block/sdb");
    table(line("sda", 1, 1) + line("sdb", 2, 2));
    EXPECT_EQ(match(), "512/512") << "what it was is forgotten";
    machine.remove("/sys/block/sda");
    EXPECT_EQ(matchLater(), "") << "no longer a disk, though the table has it";
}

TEST_F(DiskDriversTest, LinesOfAnyWidthAreReadAndDamagedOnesSpoilNothing) {
    disk("sda", kSata);
    disk("sdb", kSata);
    for (const char* more : {"", " 8 9 10 11\n", " 8 9 10 11 12 13 14 15 16 and more\n"}) {
        table(std::string("8 0 sda 1 2 3 4 5 6 7") + more);
        EXPECT_EQ(match(), "1536/3584") << more;
    }
    for (const std::string& garbage :
         {"\n"s, "sdb\n"s, "8 16 sdb 1 2 3 4 5 6\n"s, "8 16 sdb 1 2 -3 4 5 6 7\n"s,
          "x 16 sdb 1 2 3 4 5 6 7\n"s, "8 16 sdb 1 2 99999999999999999999 4 5 6 7\n"s, "\xff\xfe\0\n"s,
          "8 16 " + std::string(5000, 'x') + " 1 2 3 4 5 6 7\n", "8 16 ../../etc 1 2 3 4 5 6 7\n"s}) {
        table(garbage + line("sda", 1, 2) + garbage);
        EXPECT_EQ(match(), "512/1024") << garbage;
    }
    constexpr std::uint64_t kFits = 0x3f'ffff'ffff'ffff;  // sectors
    table(line("sda", kFits, kFits + 1) + line("sdb", ~std::uint64_t{0}, 0));
    EXPECT_EQ(match(), "9223372036854775296/9223372036854775807 9223372036854775807/0");
}

TEST_F(DiskDriversTest, DrivesThatAreKnownCostOneRead) {
    std::string text;
    for (char letter = 'a'; letter < 'a' + 24; ++letter) {
        const std::string name = std::string("sd") + letter;
        disk(name, kSata);
        text += line(name, 1, 1) + line(name + "1", 1, 1);
    }
    table(text);
    match();
    match();
    for (int i = 0; i < 10; ++i) {
        observer->forget();
        EXPECT_EQ(match().size(), 24u * 8 - 1);
        EXPECT_EQ(observer->read, std::vector<std::string>{"/proc/diskstats"});
        EXPECT_EQ(std::count(observer->opened.begin(), observer->opened.end(), "/sys/block"), 0);
    }
    disk("sdz", kSata);
    table(text + line("sdz", 1, 1));
    EXPECT_EQ(match().size(), 25u * 8 - 1);
    EXPECT_EQ(std::count(observer->opened.begin(), observer->opened.end(), "/sys/block"), 1);
}

}  // namespace
}  // namespace norvane
