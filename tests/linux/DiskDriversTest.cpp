#include "platform/linux/DiskDrivers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "CountingFileObserver.h"
#include "TemporaryFolder.h"

namespace norvane {
namespace {

using Bytes = std::pair<std::int64_t, std::int64_t>;  // read, written

// What a service says, by the names that readers look for; -1 where it says nothing.
Bytes bytesOf(const RegistryEntry& service) {
    const PropertyValue* const statistics = service.IORegistryEntryCreateCFProperty("Statistics");
    const PropertyDictionary* const counters = statistics != nullptr ? statistics->dictionary() : nullptr;
    const auto counter = [counters](const char* name) {
        const PropertyValue* const value = counters != nullptr ? counters->find(name) : nullptr;
        return value != nullptr ? value->wholeNumber().value_or(-1) : -1;
    };
    return {counter("Bytes (Read)"), counter("Bytes (Write)")};
}

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
    std::vector<Bytes> match() {
        std::vector<Bytes> all;
        const auto services = disks.match();
        EXPECT_TRUE(services);
        for (const RegistryEntry& service : services.value_or(std::vector<RegistryEntry>()))
            all.push_back(bytesOf(service));
        return all;
    }
    // Matches until nothing is missed that is looked for now and then only.
    std::vector<Bytes> matchLater() {
        for (int i = 0; i < 50; ++i)
            match();
        return match();
    }
    bool wasListed() const {
        return std::find(observer->opened.begin(), observer->opened.end(), "/sys/block") !=
               observer->opened.end();
    }
};

TEST_F(DiskDriversTest, CountEachPhysicalDriveOnceAndNothingElse) {
    struct Case {
        const char* name;
        const char* place;  // below /sys/devices; none: not in /sys/block
        bool counts;
    };
    const std::vector<Case> cases{
        {"sda", "pci0000:00/0000:00:17.0/ata1/host0/target0:0:0/0:0:0:0/block", true},
        {"sda1", nullptr, false},
        {"nvme0n1", "pci0000:00/0000:01:00.0/nvme/nvme0", true},
        {"nvme0n1p1", nullptr, false},
        {"nvme0n1p2", nullptr, false},
        {"vda", "pci0000:00/0000:00:04.0/virtio1/block", true},
        {"xvda", "vbd-51712/block", true},
        {"mmcblk0", "platform/fe310000.mmc/mmc_host/mmc0/mmc0:0001/block", true},
        {"mmcblk0p1", nullptr, false},
        {"mmcblk0boot0", "platform/fe310000.mmc/mmc_host/mmc0/mmc0:0001/block/mmcblk0", true},
        {"mmcblk0boot1", "platform/fe310000.mmc/mmc_host/mmc0/mmc0:0001/block/mmcblk0", true},
        {"sr0", "pci0000:00/0000:00:17.0/ata3/host2/target2:0:0/2:0:0:0/block", true},
        {"pmem0", "LNXSYSTM:00/LNXSYBUS:00/ACPI0012:00/ndbus0/region0/namespace0.0/block", true},
        {"sdb", "platform/host3/session1/target3:0:0/3:0:0:0/block", true},  // iSCSI
        {"sdc", "pci0000:00/0000:00:14.0/usb2/2-1/2-1:1.0/host4/target4:0:0/4:0:0:0/block", true},
        {"nvme1n1", "virtual/nvme-subsystem/nvme-subsys1", false},  // the head of several paths
        {"nvme1c0n1", "pci0000:00/0000:02:00.0/nvme/nvme1", true},
        {"nvme1c1n1", "pci0000:00/0000:03:00.0/nvme/nvme2", true},
        {"dm-0", "virtual/block", false},
        {"md127", "virtual/block", false},
        {"bcache0", "virtual/block", false},
        {"loop0", "virtual/block", false},
        {"zram0", "virtual/block", false},
        {"ram0", "virtual/block", false},
        {"nbd0", "virtual/block", false},
        {"zd0", "virtual/block", false},
    };
    std::string text;
    std::vector<Bytes> want;
    for (const Case& c : cases) {
        const auto sectors = static_cast<std::int64_t>(text.size());  // a number of its own for each
        text += line(c.name, static_cast<std::uint64_t>(sectors), static_cast<std::uint64_t>(sectors) + 1);
        if (c.place != nullptr) disk(c.name, c.place);
        if (c.counts) want.push_back({sectors * 512, (sectors + 1) * 512});
    }
    table(text);
    EXPECT_EQ(match(), want);
    EXPECT_EQ(match(), want) << "also when they are known";
}

TEST_F(DiskDriversTest, ASlashInANameIsAnExclamationMarkInTheFolder) {
    disk("cciss!c0d0", "pci0000:00/0000:05:00.0/cciss0/c0d0/block");
    table(line("cciss/c0d0", 2, 4) + line("cciss/c0d0p1", 1, 1));
    EXPECT_EQ(match(), (std::vector<Bytes>{{1024, 2048}}));
}

TEST_F(DiskDriversTest, APathThatTheTableHidesIsReadByItself) {
    disk("nvme0n1", "virtual/nvme-subsystem/nvme-subsys0");
    disk("nvme0c0n1", "pci0000:00/0000:02:00.0/nvme/nvme0");
    machine.write("/sys/block/nvme0c0n1/hidden", "1\n");
    machine.write("/sys/block/nvme0c0n1/stat", "11 1 100 22 33 2 200 44 0 55 66\n");
    disk("sdz", "pci0000:00/0000:00:17.0/block");  // not in the table, though nothing hides it
    machine.write("/sys/block/sdz/hidden", "0\n");
    machine.write("/sys/block/sdz/stat", "11 1 100 22 33 2 200 44 0 55 66\n");
    table(line("nvme0n1", 7, 7));
    EXPECT_EQ(match(), (std::vector<Bytes>{{51200, 102400}}));

    machine.write("/sys/block/nvme0c0n1/stat", "garbage\n");
    EXPECT_EQ(match(), std::vector<Bytes>());
    machine.write("/sys/block/nvme0c0n1/stat", "11 1 101 22 33 2 200 44 0 55 66\n");
    EXPECT_EQ(match(), (std::vector<Bytes>{{51712, 102400}}));

    // A second path, without any change in the table.
    disk("nvme0c1n1", "pci0000:00/0000:03:00.0/nvme/nvme1");
    machine.write("/sys/block/nvme0c1n1/hidden", "1\n");
    machine.write("/sys/block/nvme0c1n1/stat", "1 0 2 0 1 0 4 0 0 0 0\n");
    EXPECT_EQ(matchLater(), (std::vector<Bytes>{{51712, 102400}, {1024, 2048}}));

    // A newer kernel tells of it: never twice.
    table(line("nvme0n1", 7, 7) + line("nvme0c0n1", 100, 200));
    EXPECT_EQ(match(), (std::vector<Bytes>{{51200, 102400}, {1024, 2048}}));

    machine.remove("/sys/block/nvme0c1n1");
    EXPECT_EQ(matchLater(), (std::vector<Bytes>{{51200, 102400}}));
}

TEST_F(DiskDriversTest, ADriveMayGoAndComeBackAsSomethingElse) {
    disk("sda", "pci0000:00/0000:00:17.0/block");
    disk("sdb", "pci0000:00/0000:00:14.0/usb2/2-1/block");
    table(line("sda", 1, 1) + line("sdb", 2, 2));
    EXPECT_EQ(match(), (std::vector<Bytes>{{512, 512}, {1024, 1024}}));

    machine.remove("/sys/block/sdb");
    table(line("sda", 1, 1));
    EXPECT_EQ(match(), (std::vector<Bytes>{{512, 512}}));

    machine.link("/sys/block/sdb", "../devices/virtual/block/sdb");
    table(line("sda", 1, 1) + line("sdb", 2, 2));
    EXPECT_EQ(match(), (std::vector<Bytes>{{512, 512}})) << "what it was is forgotten";

    machine.remove("/sys/block/sda");
    EXPECT_EQ(matchLater(), std::vector<Bytes>()) << "no longer a disk, though the table has it";
}

TEST_F(DiskDriversTest, ANewDiskMayBeInTheTableBeforeItIsInTheFolder) {
    disk("sda", "pci0000:00/0000:00:17.0/block");
    table(line("sda", 1, 1) + line("sdb", 2, 2));
    EXPECT_EQ(match(), (std::vector<Bytes>{{512, 512}}));
    disk("sdb", "pci0000:00/0000:00:14.0/usb2/2-1/block");
    EXPECT_EQ(match(), (std::vector<Bytes>{{512, 512}, {1024, 1024}}));
}

TEST_F(DiskDriversTest, AllWidthsOfTheTableAreRead) {
    disk("sda", "pci0000:00/0000:00:17.0/block");
    for (const char* text : {
             "   8       0 sda 1 2 3 4 5 6 7 8 9 10 11\n",
             "   8       0 sda 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15\n",
             "   8       0 sda 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17\n",
             "   8       0 sda 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 and more\n",
             "8 0 sda 1 2 3 4 5 6 7",
         }) {
        table(text);
        EXPECT_EQ(match(), (std::vector<Bytes>{{1536, 3584}})) << text;
    }
}

TEST_F(DiskDriversTest, LinesThatAreNoneSpoilNothing) {
    disk("sda", "pci0000:00/0000:00:17.0/block");
    disk("sdb", "pci0000:00/0000:00:17.0/block");
    for (const std::string& garbage :
         {std::string("\n"), std::string("sdb\n"), std::string("8 16 sdb 1 2 3 4 5 6\n"),
          std::string("8 16 sdb 1 2 -3 4 5 6 7\n"), std::string("8 16 sdb 1 2 x 4 5 6 7\n"),
          std::string("8 16 sdb 1 2 99999999999999999999 4 5 6 7\n"), std::string("x 16 sdb 1 2 3 4 5 6 7\n"),
          std::string("\xff\xfe\0\n", 4), "8 16 " + std::string(5000, 'x') + " 1 2 3 4 5 6 7\n",
          std::string("8 16 .. 1 2 3 4 5 6 7\n"), std::string("8 16 ../../etc 1 2 3 4 5 6 7\n")}) {
        table(garbage + line("sda", 1, 2) + garbage);
        EXPECT_EQ(match(), (std::vector<Bytes>{{512, 1024}})) << garbage;
    }
}

TEST_F(DiskDriversTest, CountersStayWithinWhatTheirReadersTake) {
    disk("sda", "pci0000:00/0000:00:17.0/block");
    constexpr std::uint64_t kFits = 0x3f'ffff'ffff'ffff;  // sectors
    table(line("sda", kFits, kFits + 1));
    EXPECT_EQ(match(), (std::vector<Bytes>{{kFits * 512, std::numeric_limits<std::int64_t>::max()}}));
    table(line("sda", std::numeric_limits<std::uint64_t>::max(), 0));
    EXPECT_EQ(match(), (std::vector<Bytes>{{std::numeric_limits<std::int64_t>::max(), 0}}));
}

TEST_F(DiskDriversTest, WithoutDrivesThereIsAnEmptyListAndWithoutATableNone) {
    EXPECT_FALSE(disks.match());
    table("");
    EXPECT_EQ(match(), std::vector<Bytes>());
    table(line("sda", 1, 1));
    EXPECT_EQ(match(), std::vector<Bytes>()) << "a machine without /sys";
    disk("sda", "pci0000:00/0000:00:17.0/block");
    EXPECT_EQ(matchLater(), (std::vector<Bytes>{{512, 512}}));
}

TEST_F(DiskDriversTest, DrivesThatAreKnownCostOneRead) {
    std::string text;
    for (char letter = 'a'; letter < 'a' + 24; ++letter) {
        const std::string name = std::string("sd") + letter;
        disk(name, "pci0000:00/0000:00:17.0/block");
        text += line(name, static_cast<std::uint64_t>(letter), 1) + line(name + "1", 1, 1);
    }
    table(text);
    match();
    match();
    for (int i = 0; i < 10; ++i) {
        observer->forget();
        EXPECT_EQ(match().size(), 24u);
        EXPECT_EQ(observer->read, std::vector<std::string>{"/proc/diskstats"});
        EXPECT_FALSE(wasListed());
    }
    // One more drive: only that one is looked at.
    disk("sdz", "pci0000:00/0000:00:17.0/block");
    table(text + line("sdz", 1, 1));
    EXPECT_EQ(match().size(), 25u);
    EXPECT_TRUE(wasListed());
}

}  // namespace
}  // namespace norvane
