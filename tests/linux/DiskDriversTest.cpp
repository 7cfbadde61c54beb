#include "platform/linux/DiskDrivers.h"

#include <gtest/gtest.h>

#include "CountingFileObserver.h"
#include "PropertyText.h"
#include "TemporaryFolder.h"

namespace norvane {
namespace {

constexpr const char* kSata = "pci0000:00/0000:00:17.0/block";
constexpr const char* kVirtual = "virtual/nvme-subsystem/nvme-subsys0";

class DiskDriversTest : public testing::Test {
 protected:
    TemporaryFolder machine;
    std::shared_ptr<CountingFileObserver> observer = std::make_shared<CountingFileObserver>();
    DiskDrivers disks{machine.root(observer)};

    // A line of the table, as recent kernels write it.
    static std::string line(const std::string& name, std::uint64_t sectorsRead,
                            std::uint64_t sectorsWritten) {
        return "   8       0 " + name + " 11 1 " + std::to_string(sectorsRead) + " 22 33 2 " +
               std::to_string(sectorsWritten) + " 44 0 55 66 7 0 8888 9 10 11\n";
    }
    void table(const std::string& text) { machine.write("/proc/diskstats", text); }
    // A disk at that place below /sys/devices.
    void disk(const std::string& name, const std::string& place = kSata) {
        machine.makeFolder("/sys/devices/" + place + "/" + name);
        machine.link("/sys/block/" + name, "../devices/" + place + "/" + name);
    }
    // Another path to a drive, which the table hides.
    void path(const std::string& name, const char* stat, const char* hidden = "1\n") {
        disk(name);
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
    // When nothing is missed any more that is looked for now and then only.
    std::string matchLater() {
        for (int i = 0; i < 50; ++i)
            match();
        return match();
    }
};

// What counts and what does not is seen on whole machines, in tests/fixtures.
TEST_F(DiskDriversTest, APathThatTheTableHidesIsReadByItself) {
    disk("nvme0n1", kVirtual);
    path("nvme0c0n1", "11 1 100 22 33 2 200 44 0 55 66\n");
    path("sdz", "11 1 100 22 33 2 200 44 0 55 66\n", "0\n");  // not in the table, though nothing hides it
    table(line("nvme0n1", 7, 7));
    EXPECT_EQ(match(), "51200/102400");
    machine.write("/sys/block/nvme0c0n1/stat", "11 1 101 22 33 2 200 44 0 55 66\n");
    // A second path, without any change in the table.
    path("nvme0c1n1", "1 0 2 0 1 0 4 0 0 0 0\n");
    EXPECT_EQ(matchLater(), "51712/102400 1024/2048");
    // A newer kernel tells of it: never twice.
    table(line("nvme0n1", 7, 7) + line("nvme0c0n1", 100, 200));
    EXPECT_EQ(match(), "51200/102400 1024/2048");
    machine.remove("/sys/block/nvme0c1n1");
    EXPECT_EQ(matchLater(), "51200/102400");
}

TEST_F(DiskDriversTest, ADriveMayComeGoAndComeBackAsSomethingElse) {
    EXPECT_EQ(match(), "missing");
    table(line("sda", 1, 1) + line("cciss/c0d0", 2, 2));
    EXPECT_EQ(match(), "") << "a machine without /sys";
    disk("sda");
    EXPECT_EQ(match(), "512/512") << "in the table before it was in the folder";
    disk("cciss!c0d0");  // a slash in a name is an exclamation mark in the folder
    EXPECT_EQ(matchLater(), "512/512 1024/1024");
    machine.remove("/sys/block/cciss!c0d0");
    table(line("sda", 1, 1));
    EXPECT_EQ(match(), "512/512");
    machine.link("/sys/block/cciss!c0d0", "../devices/virtual/block/cciss!c0d0");
    table(line("sda", 1, 1) + line("cciss/c0d0", 2, 2));
    EXPECT_EQ(match(), "512/512") << "what it was is forgotten";
    machine.remove("/sys/block/sda");
    EXPECT_EQ(matchLater(), "") << "no longer a disk, though the table has it";
}

// What damaged lines do is in tests/fuzz.
TEST_F(DiskDriversTest, KnownDrivesCostOneReadHoweverMuchTheyHaveDone) {
    disk("sda");
    disk("sdb");
    table("8 0 sda 1 2 3 4 5 6 7\nx\n8 16 ../../etc 1 2 3 4 5 6 7\n");
    EXPECT_EQ(match(), "1536/3584");
    constexpr std::uint64_t kFits = 0x3f'ffff'ffff'ffff;  // sectors
    table(line("sda", kFits, kFits + 1) + line("sdb", ~std::uint64_t{0}, 0));
    EXPECT_EQ(match(), "9223372036854775296/9223372036854775807 9223372036854775807/0");
    observer->forget();
    match();
    EXPECT_EQ(observer->read, std::vector<std::string>{"/proc/diskstats"});
    EXPECT_TRUE(observer->opened.empty());
}

}  // namespace
}  // namespace norvane
