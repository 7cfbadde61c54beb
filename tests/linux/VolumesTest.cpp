#include "platform/linux/Volumes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "FakeServers.h"
#include "platform/linux/LinuxKernel.h"
#include "TemporaryFolder.h"

namespace norvane {
namespace {

using namespace std::string_literals;

constexpr std::uint64_t kGiB = std::uint64_t{1} << 30;
constexpr FileSystemSpace kDisk{500 * kGiB, 200 * kGiB};
constexpr FileSystemSpace kImage{30 << 20, 0};

const char* const kPCI = "/sys/devices/pci0000:00/0000:00:17.0";
const char* const kUSB = "/sys/devices/pci0000:00/0000:00:14.0/usb2/2-3/2-3:1.0/host6/target6:0:0/6:0:0:0";

// How a device is connected, in letters: i or e for internal or external, then j if it can be ejected; a dash
// where nobody knows.
std::string connectionOf(const VolumeResourceValues& values) {
    std::string text = !values.volumeIsInternal ? "-" : *values.volumeIsInternal ? "i" : "e";
    if (values.volumeIsEjectable.value_or(false)) text += 'j';
    return text;
}

class VolumesTest : public testing::Test {
 protected:
    TemporaryFolder machine;
    FakeSystemCalls system;
    FakeServers servers{system};
    Volumes volumes{machine.root(), system.calls, servers.waiter()};

    void mount(const std::string& device, const std::string& root, const std::string& point,
               const std::string& type, const std::string& source, const std::string& options = "rw") {
        const std::string id = std::to_string(++lines_ + 20);
        table_ += id + " 1 " + device + ' ' + root + ' ' + point + " rw shared:1 - " + type + ' ' + source +
                  ' ' + options + '\n';
        machine.write("/proc/self/mountinfo", table_);
        servers.set(point, kDisk);
    }
    void unmountAll() {
        table_.clear();
        machine.write("/proc/self/mountinfo", "");
    }
    // That of the one mount there is then.
    std::string connectionMounting(const std::string& device, const std::string& type = "ext4",
                                   const std::string& source = "/dev/x") {
        unmountAll();
        mount(device, "/", "/data", type, source);
        return connectionOf(readValues());
    }

    // A device as the kernel lays it out: a folder below that of its bus, and links to it.
    void addDevice(const std::string& number, const std::string& folder) {
        const std::string name = folder.substr(folder.rfind('/') + 1);
        const std::string target = "../.." + folder.substr(4);
        machine.write(folder + "/dev", number + "\n");
        machine.link("/sys/dev/block/" + number, target);
        machine.link("/sys/class/block/" + name, target);
    }
    void addDisk(const std::string& number, const std::string& folder, const char* removable = "0\n") {
        addDevice(number, folder);
        machine.write(folder + "/removable", removable);
        machine.link("/sys/block/" + folder.substr(folder.rfind('/') + 1), ".." + folder.substr(4));
    }
    void addPartition(const std::string& number, const std::string& folder) {
        addDevice(number, folder);
        machine.write(folder + "/partition", number.substr(number.find(':') + 1) + "\n");
    }
    // A disk made of others.
    void addVirtual(const std::string& number, const std::string& name,
                    const std::vector<std::string>& slaves) {
        const std::string folder = "/sys/devices/virtual/block/" + name;
        addDisk(number, folder);
        machine.makeFolder(folder + "/slaves");
        for (const std::string& slave : slaves) {
            machine.link(folder + "/slaves/" + slave.substr(slave.rfind('/') + 1),
                         "../../../../.." + slave.substr(4));
        }
    }

    std::vector<VolumeURL> read() {
        const auto list = volumes.read();
        EXPECT_TRUE(list);
        return list ? *list : std::vector<VolumeURL>();
    }
    std::vector<std::string> readPaths() {
        std::vector<std::string> paths;
        for (const VolumeURL& volume : read())
            paths.push_back(volume.path());
        return paths;
    }
    // Of the only volume.
    VolumeResourceValues readValues() {
        const std::vector<VolumeURL> list = read();
        EXPECT_EQ(list.size(), 1u);
        if (list.size() != 1 || !list[0].resourceValues()) return {};
        return *list[0].resourceValues();
    }

 private:
    std::string table_;
    int lines_ = 0;
};

using Paths = std::vector<std::string>;

TEST_F(VolumesTest, WithoutAMountTableThereIsNoList) {
    EXPECT_FALSE(volumes.read());
    unmountAll();
    EXPECT_TRUE(read().empty());
    machine.write("/proc/self/mountinfo", std::string(33 << 20, ' '));
    EXPECT_FALSE(volumes.read());
}

TEST_F(VolumesTest, AnOrdinaryDesktop) {
    const std::string disk = std::string(kPCI) + "/ata1/host0/target0:0:0/0:0:0:0/block/sda";
    addDisk("8:0", disk);
    addPartition("8:1", disk + "/sda1");
    addPartition("8:2", disk + "/sda2");
    const std::string stick = std::string(kUSB) + "/block/sdb";
    addDisk("8:16", stick, "1\n");
    addPartition("8:17", stick + "/sdb1");
    machine.write("/etc/os-release", "NAME=\"Some System\"\nPRETTY_NAME=\"Some System 12\"\n");
    machine.write("/run/udev/data/b8:17", "E:ID_FS_LABEL=My_Stick\nE:ID_FS_LABEL_ENC=My\\x20Stick\n");
    machine.link("/dev/disk/by-label/Home\\x20of\\x20all", "../../sda2");

    mount("0:21", "/", "/proc", "proc", "proc");
    mount("8:1", "/", "/", "ext4", "/dev/sda1");
    mount("0:22", "/", "/run", "tmpfs", "tmpfs");
    mount("8:3", "/", "/boot/efi", "vfat", "/dev/sda3");
    mount("7:0", "/", "/snap/core/1", "squashfs", "/dev/loop0");
    mount("8:17", "/", "/media/ada/My\\040Stick", "vfat", "/dev/sdb1");
    mount("8:2", "/", "/home", "ext4", "/dev/sda2");
    mount("8:2", "/ada/films", "/srv/films", "ext4", "/dev/sda2");
    mount("0:45", "/", "/run/user/1000/gvfs", "fuse.gvfsd-fuse", "gvfsd-fuse");
    servers.set("/home", FileSystemSpace{3 * kGiB, 2 * kGiB});
    servers.set("/media/ada/My Stick", FileSystemSpace{16'000'000'000, ~std::uint64_t{0}});

    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
    const std::vector<VolumeURL> list{
        {"/", VolumeResourceValues{"Some System", 500 * kGiB, 200 * kGiB, true, true, false}},
        {"/media/ada/My Stick", VolumeResourceValues{"My Stick", 16'000'000'000, kMost, false, false, true}},
        {"/home", VolumeResourceValues{"Home of all", 3 * kGiB, 2 * kGiB, true, false, false}},
    };
    EXPECT_EQ(read(), list);

    machine.write("/run/udev/data/b8:1", "E:ID_FS_LABEL_ENC=root\n");
    machine.write("/run/udev/data/b8:2", "E:UDISKS_IGNORE=1\n");
    machine.write("/run/mount/utab", "SRC=/dev/sdb1 TARGET=/media/ada/My\\040Stick OPTS=x-gvfs-hide\n");
    EXPECT_EQ(readValues().volumeName, "root");

    servers.set("/", {});
    EXPECT_EQ(read(), (std::vector<VolumeURL>{{"/", std::nullopt}}));
}

TEST_F(VolumesTest, TheWayADiskIsConnectedTells) {
    const std::string dock = "/sys/devices/pci0000:00/0000:00:1d.0/0000:04:00.0";
    machine.write("/sys/devices/pci0000:00/0000:00:1d.0/removable", "fixed\n");
    machine.write(dock + "/removable", "removable\n");
    machine.write(std::string(kPCI) + "/removable", "unknown\n");
    const std::string card = "/sys/devices/platform/soc/fe340000.mmc/mmc_host/mmc0/mmc0:aaaa";
    const std::string soldered = "/sys/devices/platform/soc/fe340001.mmc/mmc_host/mmc1/mmc1:0001";
    machine.write(card + "/type", "SD\n");
    machine.write(soldered + "/type", "MMC\n");
    machine.link(card + "/block/mmcblk0/device", "../../../mmc0:aaaa");
    machine.link(soldered + "/block/mmcblk1/device", "../../../mmc1:0001");
    int minor = 0;
    const auto expect = [&](const char* name, const std::string& folder, const char* want,
                            const char* removable = "0\n") {
        const std::string disk = "8:" + std::to_string(minor++);
        const std::string partition = "8:" + std::to_string(minor++);
        addDisk(disk, folder, removable);
        addPartition(partition, folder + folder.substr(folder.rfind('/')) + "p1");
        EXPECT_EQ(connectionMounting(disk), want) << name;
        EXPECT_EQ(connectionMounting(partition), want) << name << ", a partition";
    };
    expect("SATA", kPCI + "/ata1/block/sda"s, "i");
    expect("SATA with a port that calls itself removable", kPCI + "/ata2/block/sdb"s, "ij", "1\n");
    expect("a USB hard disk", kUSB + "/block/sdc"s, "ej");
    expect("FireWire", kPCI + "/fw1/fw1.0/host8/target8:0:0/8:0:0:0/block/sdd"s, "ej");
    expect("NVMe", kPCI + "/nvme/nvme0/nvme0n1"s, "i");
    expect("NVMe by Thunderbolt", dock + "/0000:05:00.0/nvme/nvme1/nvme1n1", "ej");
    expect("an SD card", card + "/block/mmcblk0", "ej");
    expect("soldered flash", soldered + "/block/mmcblk1", "i");
    expect("a disk image", "/sys/devices/virtual/block/loop7", "ej");
    expect("a virtual disk", "/sys/devices/pci0000:00/0000:00:02.0/virtio1/block/vda", "i");
    expect("names that merely look alike", "/sys/devices/platform/usbx/fwnode/1:2.3/block/sde", "i");
    EXPECT_EQ(connectionMounting("8:200"), "-") << "unknown to sysfs";

    // A drive with several controllers is where they are.
    machine.makeFolder(dock + "/nvme/nvme3");
    const std::string subsystem = "/sys/devices/virtual/nvme-subsystem/nvme-subsys3";
    addDisk("259:5", subsystem + "/nvme3n1");
    EXPECT_EQ(connectionMounting("259:5"), "i");
    machine.link(subsystem + "/nvme3", "../../../pci0000:00/0000:00:1d.0/0000:04:00.0/nvme/nvme3");
    EXPECT_EQ(connectionMounting("259:5"), "ej");
}

TEST_F(VolumesTest, DisksBehindEncryptionAndVolumeManagersAreFound) {
    const std::string internal = std::string(kPCI) + "/ata1/block/sda";
    addDisk("8:0", internal);
    addPartition("8:1", internal + "/sda1");
    const std::string stick = std::string(kUSB) + "/block/sdb";
    addDisk("8:16", stick);
    addPartition("8:17", stick + "/sdb1");

    addVirtual("253:0", "dm-0", {stick + "/sdb1"});
    addVirtual("253:1", "dm-1", {"/sys/devices/virtual/block/dm-0"});
    addVirtual("253:2", "dm-2", {internal + "/sda1"});
    addVirtual("253:3", "dm-3", {internal + "/sda1", stick + "/sdb1"});
    addVirtual("253:4", "dm-4", {});
    addVirtual("253:5", "dm-5", {"/sys/devices/virtual/block/dm-6", stick + "/sdb1"});
    addVirtual("253:6", "dm-6", {"/sys/devices/virtual/block/dm-5"});
    addVirtual("253:7", "dm-7", {"/sys/devices/virtual/block/dm-7"});
    addVirtual("9:0", "md0", {internal + "/sda1"});
    addPartition("259:0", "/sys/devices/virtual/block/md0/md0p1");
    addVirtual("253:20", "dm-20", {stick + "/sdb1"});
    for (int i = 21; i < 60; ++i) {
        addVirtual("253:" + std::to_string(i), "dm-" + std::to_string(i),
                   {"/sys/devices/virtual/block/dm-" + std::to_string(i - 1)});
    }
    EXPECT_EQ(connectionMounting("253:0"), "ej") << "an encrypted stick";
    EXPECT_EQ(connectionMounting("253:1"), "ej") << "a volume on it";
    EXPECT_EQ(connectionMounting("253:2"), "i") << "an encrypted disk";
    EXPECT_EQ(connectionMounting("253:3"), "ej") << "a volume on a disk and a stick";
    EXPECT_EQ(connectionMounting("253:4"), "i") << "a mapping onto nothing";
    EXPECT_EQ(connectionMounting("253:5"), "ej") << "a loop with a way out";
    EXPECT_EQ(connectionMounting("253:7"), "i") << "a loop";
    EXPECT_EQ(connectionMounting("9:0"), "i") << "a RAID";
    EXPECT_EQ(connectionMounting("259:0"), "i") << "a part of it";
    EXPECT_EQ(connectionMounting("253:30"), "ej") << "deep, but not too deep";
    EXPECT_EQ(connectionMounting("253:59"), "i") << "deeper than anything real";
}

TEST_F(VolumesTest, AFileSystemWithoutANumberOfItsOwnIsFoundByItsSource) {
    const std::string stick = std::string(kUSB) + "/block/sdb";
    addDisk("8:16", stick);
    addPartition("8:17", stick + "/sdb1");
    addVirtual("253:0", "dm-0", {stick + "/sdb1"});
    machine.write("/sys/devices/virtual/block/dm-0/dm/name", "luks-1\n");
    addDisk("104:0", std::string(kPCI) + "/block/cciss!c0d0");
    machine.write("/run/udev/data/b8:17", "E:ID_FS_LABEL_ENC=Pool\n");
    machine.write("/run/udev/data/b253:0", "E:ID_FS_LABEL_ENC=Locked\n");
    machine.link("/dev/disk/by-uuid/1234", "../../sdb1");
    machine.link("/dev/mapper/luks-2", "../dm-0");
    machine.link("/dev/circle", "circle");
    const auto expect = [this](const char* type, const char* source, const char* want,
                               const std::optional<std::string>& name = {}) {
        EXPECT_EQ(connectionMounting("0:33", type, source), want) << source;
        EXPECT_EQ(readValues().volumeName, name) << source;
    };
    expect("btrfs", "/dev/sdb1", "ej", "Pool");
    expect("btrfs", "/dev/disk/by-uuid/1234", "ej", "Pool");
    expect("btrfs", "/dev/mapper/luks-1", "ej", "Locked");
    expect("btrfs", "/dev/mapper/luks-2", "ej", "Locked");
    expect("btrfs", "/dev/cciss/c0d0", "i");
    expect("bcachefs", "/dev/sdb1:/dev/sdc1", "ej", "Pool");
    for (const char* nowhere : {"/dev/circle", "/dev/..", "/dev/", "sdb1", ""})
        expect("btrfs", nowhere, "-");
    expect("zfs", "sdb1", "-");
    expect("zfs", "/dev/sdb1", "-");
}

TEST_F(VolumesTest, TheRoomOfAComposedSystemIsElsewhere) {
    constexpr FileSystemSpace kOther{100 * kGiB, 1};
    using Space = std::optional<FileSystemSpace>;
    const auto expect = [this](const char* name, const char* type, const char* options,
                               const FileSystemSpace& root, const Space& sysroot, const Space& var,
                               const FileSystemSpace& want) {
        unmountAll();
        mount("0:30", "/", "/", type, "composed", options);
        servers.set("/", root);
        servers.set("/sysroot", sysroot);
        servers.set("/var", var);
        const VolumeResourceValues values = readValues();
        EXPECT_EQ(values.volumeTotalCapacity, want.totalBytes) << name;
        EXPECT_EQ(values.volumeAvailableCapacity, want.availableBytes) << name;
        EXPECT_EQ(values.volumeIsRootFileSystem, true) << name;
    };
    expect("composefs", "overlay", "ro", kImage, kDisk, kOther, kDisk);
    expect("without a sysroot", "overlay", "ro", kImage, {}, kOther, kOther);
    expect("with a sysroot that is a folder of the image", "erofs", "ro", kImage, kImage, kOther, kOther);
    expect("an image alone", "squashfs", "ro", kImage, {}, {}, kImage);
    expect("a container", "overlay", "rw", kDisk, kOther, kOther, kDisk);
    expect("a container that writes nothing", "overlay", "ro", kDisk, {}, kDisk, kDisk);
    expect("a small upper layer", "overlay", "rw", {kGiB - 1, 1}, {}, kOther, kOther);
    expect("a layer just large enough", "tmpfs", "rw", {kGiB, 1}, {}, kOther, {kGiB, 1});
    expect("a root without a size", "rootfs", "rw", {0, 0}, {}, {}, {0, 0});
    expect("a small disk", "ext4", "ro", kImage, kOther, kOther, kImage);
    unmountAll();
    mount("0:30", "/", "/", "overlay", "composed", "ro");
    mount("0:31", "/", "/var", "nfs4", "nas:/var");
    servers.set("/", kImage);
    servers.set("/sysroot", {});
    servers.takeAsked();
    EXPECT_EQ(readValues().volumeTotalCapacity, kImage.totalBytes);
    EXPECT_EQ(servers.takeAsked(), (Paths{"/", "/sysroot"})) << "a server is not asked on the way";
}

TEST_F(VolumesTest, TheWayToADiskMayLeadPastAHungServer) {
    mount("0:60", "/", "/mnt/nas", "nfs4", "nas:/export");
    mount("7:0", "/", "/mnt/nas/images/one", "ext4", "/dev/loop0");
    mount("8:1", "/", "/mnt/nasty", "ext4", "/dev/sda1");
    mount("0:61", "/", "/mnt/auto", "autofs", "systemd-1");
    servers.hang("/mnt/nas");
    servers.hang("/mnt/nas/images/one");
    servers.expectCalls(2);
    EXPECT_EQ(readPaths(), Paths{"/mnt/nasty"});
    EXPECT_EQ(servers.callsOut(), 2u);
    const Paths asked = servers.takeAsked();
    EXPECT_EQ(std::count(asked.begin(), asked.end(), "/mnt/auto"), 0);

    servers.release("/mnt/nas");
    servers.expectCalls(1);
    const std::vector<VolumeURL> list = read();
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0],
              VolumeURL("/mnt/nas", VolumeResourceValues{{}, 500 * kGiB, 200 * kGiB, {}, false, false}));
}

TEST_F(VolumesTest, ARemovableOneIsMeasuredAtOnceAndNobodyElseIsAsked) {
    addDisk("8:1", kPCI + "/ata1/host0/target0:0:0/0:0:0:0/block/sda"s);
    addDisk("8:16", kUSB + "/block/sdb"s);
    addDisk("8:32", kUSB + "/block/sdc"s);
    addDisk("7:0", "/sys/devices/virtual/block/loop0");
    mount("8:1", "/", "/", "ext4", "/dev/sda1");
    mount("0:60", "/", "/mnt/nas", "nfs4", "nas:/export");
    mount("7:0", "/", "/mnt/nas/image", "ext4", "/dev/loop0");
    mount("8:16", "/", "/media/ada/STICK", "vfat", "/dev/sdb");
    mount("8:32", "/", "/media/ada/GONE", "vfat", "/dev/sdc");
    servers.set("/media/ada/GONE", {});
    servers.hang("/mnt/nas");
    const auto list = volumes.readRemovable();
    ASSERT_TRUE(list);
    const VolumeResourceValues nobodys{{}, {}, {}, {}, false, false};
    EXPECT_EQ(*list,
              (std::vector<VolumeURL>{
                  {"/", VolumeResourceValues{{}, {}, {}, true, true, false}},
                  {"/mnt/nas", nobodys},
                  {"/mnt/nas/image", VolumeResourceValues{{}, {}, {}, false, false, true}},
                  {"/media/ada/STICK", VolumeResourceValues{{}, 500 * kGiB, 200 * kGiB, false, false, true}},
                  {"/media/ada/GONE", std::nullopt}}));
    EXPECT_EQ(servers.takeAsked(), (std::vector<std::string>{"/media/ada/STICK", "/media/ada/GONE"}));
}

TEST_F(VolumesTest, TheFileManagerHandsTheListOn) {
    mount("8:1", "/", "/", "ext4", "/dev/sda1");
    LinuxKernel kernel(machine.root(), system.calls, LinuxKernel::Lanes::sameThread());
    EXPECT_EQ(kernel.fileManager().mountedVolumeURLs(TickToken::none()), read());
    EXPECT_EQ(kernel.fileManager().mountedVolumeURLs(), volumes.readRemovable());
    machine.remove("/proc/self/mountinfo");
    EXPECT_FALSE(kernel.fileManager().mountedVolumeURLs());
    EXPECT_FALSE(kernel.fileManager().mountedVolumeURLs(TickToken::none()));
}

}  // namespace
}  // namespace norvane
