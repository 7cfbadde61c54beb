#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

#include "Fixture.h"
#include "TemporaryFolder.h"
#include "Tool.h"

namespace norvane {
namespace {

namespace fs = std::filesystem;

// All files below a folder and what is in them, links as what they say.
std::map<std::string, std::string> contentsBelow(const std::string& folder) {
    std::map<std::string, std::string> contents;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        const std::string name = entry.path().lexically_relative(folder).generic_string();
        std::ifstream stream(entry.path(), std::ios::binary);
        if (entry.is_symlink()) {
            contents[name] = "-> " + fs::read_symlink(entry.path()).string();
        } else if (entry.is_regular_file()) {
            contents[name].assign(std::istreambuf_iterator<char>(stream), {});
        }
    }
    return contents;
}

class RecordMachineTest : public testing::Test {
 protected:
    const TemporaryFolder machine;
    const TemporaryFolder recording;

    std::map<std::string, std::string> record(const std::string& from) {
        EXPECT_EQ(runTool("record-machine " + recording.path() + " " + from), 0);
        return contentsBelow(recording.path());
    }
};

TEST_F(RecordMachineTest, TakesAllThatIsRead) {
    auto want = contentsBelow(fixture("uniform-desktop"));
    auto found = record(fixture("uniform-desktop"));
    EXPECT_TRUE(found["ORIGIN"].starts_with("Recorded on ")) << found["ORIGIN"];
    want["ORIGIN"] = found["ORIGIN"];
    for (const auto& [file, text] : want)
        EXPECT_EQ(found.contains(file) ? found[file] : "missing", text) << file;
    EXPECT_EQ(found.size(), want.size());
    EXPECT_NE(runTool("record-machine " + recording.path() + " " + machine.path()), 0)
        << "never over another one";
}

TEST_F(RecordMachineTest, LeavesSerialNumbersBehind) {
    machine.copyFrom(fixture("hybrid-laptop"));
    machine.remove("/sys/devices/system");  // many files, and no number among them
    const std::string serial = "S4EWNX0M123456";
    const std::string uuid = "0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9";
    const std::string container(64, 'f');
    const std::vector<std::string> secrets{serial,
                                           uuid,
                                           container,
                                           "aa:bb:cc:dd:ee:ff",
                                           "1A2B-3C4D",
                                           "5000c500a1b2c3d4",
                                           "0025385b71b0f1a3",
                                           "10000000deadbeef",
                                           "77777"};
    const std::string disk = "/sys/block/nvme0n1/";
    for (const char* file : {"serial", "uuid", "wwid", "device/serial", "device/address", "cid"})
        machine.write(disk + file, serial + "\n");
    machine.write("/sys/class/dmi/id/product_serial", serial + "\n");
    machine.write("/sys/class/power_supply/BAT0/uevent",
                  "POWER_SUPPLY_TYPE=Battery\nPOWER_SUPPLY_SERIAL_NUMBER=77777\n");
    machine.write("/proc/cpuinfo", "model name\t: Example\nSerial\t\t: 10000000deadbeef\n");
    machine.write("/run/udev/data/b259:3", "S:disk/by-id/nvme-" + serial + "\nE:ID_SERIAL_SHORT=" + serial +
                                               "\nE:ID_WWN=eui.0025385b71b0f1a3\nE:ID_FS_UUID=" + uuid +
                                               "\nE:ID_FS_LABEL=my disk\nE:ID_FS_LABEL_ENC=my\\x20disk\n");
    std::string mountinfo = "60 1 0:32 /@ / rw - btrfs /dev/mapper/luks-" + uuid + " rw\n";
    mountinfo += "61 60 8:1 / /media/ada/1A2B-3C4D rw - vfat /dev/disk/by-id/usb-" + serial + "-part1 rw\n";
    mountinfo += "62 60 8:2 / /mnt/wwn-0x5000c500a1b2c3d4 rw - ext4 /dev/sdb2 rw\n";
    mountinfo += "63 60 0:9 / /var/lib/" + container + " rw - overlay overlay rw\n";
    machine.write("/proc/self/mountinfo", mountinfo);
    machine.link("/dev/mapper/luks-" + uuid, "../dm-0");
    const std::string headset = "bluetooth/hci0/hci0:256/power_supply/hid-aa:bb:cc:dd:ee:ff-battery";
    machine.write("/sys/devices/" + headset + "/type", "Battery\n");
    machine.write("/sys/devices/" + headset + "/uevent", "POWER_SUPPLY_NAME=hid-aa:bb:cc:dd:ee:ff-battery\n");
    machine.link("/sys/class/power_supply/hid-aa:bb:cc:dd:ee:ff-battery", "../../devices/" + headset);

    auto found = record(machine.path());
    for (const auto& [file, text] : found) {
        for (const std::string& secret : secrets)
            EXPECT_EQ((file + '\n' + text).find(secret), std::string::npos) << file << ": " << text;
    }
    // What belongs together still does, and labels are kept.
    const std::string mounts = found["proc/self/mountinfo"];
    const auto name = mounts.find("luks-");
    ASSERT_NE(name, std::string::npos);
    EXPECT_TRUE(found.contains("dev/mapper/" + mounts.substr(name, 5 + uuid.size()))) << mounts;
    EXPECT_EQ(found["run/udev/data/b259:3"], "E:ID_FS_LABEL=my disk\nE:ID_FS_LABEL_ENC=my\\x20disk\n");
    EXPECT_EQ(found["sys/devices/virtual/dmi/id/chassis_type"], "10\n");
}

TEST_F(RecordMachineTest, LeavesOutWhatIsNotToBeTouched) {
    machine.write("/proc/stat", "cpu 1 2 3 4\n");
    machine.write("/proc/diskstats", std::string(5'000'000, 'x'));
    machine.write("/proc/1234/fdinfo/3", "private\n");
    machine.link("/sys/block/sda", "../../proc/1234");
    machine.link("/sys/block/sdb", "sdb");
    // A graphics processor that a closer look would wake.
    const std::string card = "/sys/devices/pci0000:00/0000:01:00.0";
    machine.write(card + "/power/runtime_status", "suspended\n");
    machine.write(card + "/gpu_busy_percent", "0\n");
    machine.link(card + "/drm/card0/device", "../../../0000:01:00.0");
    machine.link("/sys/class/drm/card0", "../../devices/pci0000:00/0000:01:00.0/drm/card0");

    auto found = record(machine.path());
    EXPECT_EQ(found["proc/stat"], "cpu 1 2 3 4\n");
    EXPECT_FALSE(found.contains("proc/diskstats")) << "too long";
    EXPECT_FALSE(found.contains("proc/1234/fdinfo/3"));
    EXPECT_TRUE(found.contains(card.substr(1) + "/power/runtime_status"));
    EXPECT_FALSE(found.contains(card.substr(1) + "/gpu_busy_percent"));
}

}  // namespace
}  // namespace norvane
