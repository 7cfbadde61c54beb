#include "platform/linux/Volumes.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "FakeServers.h"
#include "platform/linux/VolumeRules.h"
#include "TemporaryFolder.h"

namespace norvane {
namespace {

using namespace std::string_literals;
using Paths = std::vector<std::string>;

constexpr std::uint64_t kGiB = std::uint64_t{1} << 30;
constexpr FileSystemSpace kDisk{500 * kGiB, 200 * kGiB};
const std::string kPCI = "/sys/devices/pci0000:00/0000:00:17.0";
const std::string kUSB = "/sys/devices/pci0000:00/0000:00:14.0/usb2/2-3/2-3:1.0/host6/target6:0:0/6:0:0:0";

class VolumesTest : public testing::Test {
 protected:
    TemporaryFolder machine;
    FakeSystemCalls system;
    FakeServers servers{system};
    Volumes volumes{machine.root(), system.calls, servers.waiter()};

    // Each as "8:1 / /home ext4 /dev/sda2 rw": device, root, point, type, source, options.
    void mount(const Paths& mounts) {
        std::string table;
        for (const std::string& mount : mounts) {
            const std::size_t point = mount.find(' ', mount.find(' ') + 1) + 1;
            const std::size_t type = mount.find(' ', point);
            table += std::to_string(table.size() + 20) + " 1 " + mount.substr(0, type) + " rw -" +
                     mount.substr(type) + '\n';
            servers.set(mount.substr(point, type - point), kDisk);
        }
        machine.write("/proc/self/mountinfo", table);
    }
    // A device as the kernel lays it out: a folder below that of its bus, and links to it.
    void add(const std::string& number, const std::string& folder, const std::string& removable = "0\n") {
        const std::string name = folder.substr(folder.rfind('/') + 1);
        machine.write(folder + "/dev", number + "\n");
        machine.link("/sys/dev/block/" + number, "../.." + folder.substr(4));
        machine.link("/sys/class/block/" + name, "../.." + folder.substr(4));
        machine.write(folder + (removable.empty() ? "/partition" : "/removable"), removable);
        if (!removable.empty()) machine.link("/sys/block/" + name, ".." + folder.substr(4));
    }
    void addPartition(const std::string& number, const std::string& folder) { add(number, folder, ""); }
    // A disk made of others.
    void addVirtual(int minor, const Paths& slaves) {
        const std::string folder = "/sys/devices/virtual/block/dm-" + std::to_string(minor);
        add("253:" + std::to_string(minor), folder);
        for (const std::string& slave : slaves)
            machine.link(folder + "/slaves/" + slave.substr(slave.rfind('/') + 1),
                         "../../../../.." + slave.substr(4));
    }

    std::vector<VolumeURL> read() {
        const auto list = volumes.read();
        EXPECT_TRUE(list);
        return list ? *list : std::vector<VolumeURL>();
    }
    Paths readPaths() {
        Paths paths;
        for (const VolumeURL& volume : read())
            paths.push_back(volume.path());
        return paths;
    }
    // Of the only volume.
    VolumeResourceValues readValues() {
        const std::vector<VolumeURL> list = read();
        return list.size() == 1 ? list[0].resourceValues().value_or(VolumeResourceValues())
                                : VolumeResourceValues();
    }
    // How the only mount's device is connected, in letters: i or e for internal or external, then j if it can
    // be ejected; a dash where nobody knows.
    std::string connectionMounting(const std::string& device,
                                   const std::string& typeAndSource = "ext4 /dev/x") {
        mount({device + " / /data " + typeAndSource + " rw"});
        const VolumeResourceValues values = readValues();
        const std::string place = !values.volumeIsInternal ? "-" : *values.volumeIsInternal ? "i" : "e";
        return place + (values.volumeIsEjectable.value_or(false) ? "j" : "");
    }
};

TEST(VolumeRules, KnownTypesOutsideTheSystemsFoldersAreVolumesAndSoIsTheRoot) {
    const auto isVolumeAt = [](const char* point, const char* type, const DesktopMountOptions& options = {}) {
        Mount mount;
        mount.point = point;
        mount.type = type;
        return isVolume(mount, options);
    };
    for (const char* type : {"tmpfs", "squashfs", "overlay", "fuse.portal", "fuse", "", "ext44", "EXT4"}) {
        EXPECT_FALSE(isVolumeAt("/home", type, {.show = true})) << type;
        EXPECT_TRUE(isVolumeAt("/", type)) << type;
    }
    EXPECT_FALSE(isVolumeAt("/", "autofs")) << "a look would mount it";
    for (const char* point : {"/home", "/run/media/ada/STICK", "/data/b.c", "/boots", "/usr2", "/tmpfiles",
                              "/var/mail", "/root/x", "/nix", "/sysroots"})
        EXPECT_TRUE(isVolumeAt(point, "ext4") && isVolumeAt(point, "nfs") && isVolumeAt(point, "fuse.sshfs"))
            << point;
    for (const char* point :
         {"/boot/efi", "/usr/local", "/etc/hosts", "/var", "/var/lib/docker", "/var/log/x", "/tmp", "/root",
          "/dev/shm", "/proc/x", "/sys/fs/x", "/run/user/1000/doc", "/run/media", "/snap/core/1",
          "/nix/store", "/sysroot/x", "/home/ada/.cache"}) {
        EXPECT_FALSE(isVolumeAt(point, "ext4")) << point;
        EXPECT_TRUE(isVolumeAt(point, "ext4", {.show = true})) << point;
        EXPECT_FALSE(isVolumeAt(point, "ext4", {.hide = true, .show = true})) << point;
    }
}

TEST_F(VolumesTest, OneMountStandsForEachFileSystem) {
    const auto expect = [this](const char* name, const Paths& mounts, const Paths& want) {
        mount(mounts);
        EXPECT_EQ(readPaths(), want) << name;
    };
    EXPECT_FALSE(volumes.read() || volumes.readRemovable()) << "no list without a table";
    expect("none", {}, {});
    expect("two, in their order", {"0:2 / /b btrfs b rw", "0:1 / /a btrfs a rw"}, {"/b", "/a"});
    expect("/ before all", {"0:1 / /h btrfs a rw", "0:1 /@ / btrfs a rw", "0:1 /@home /home btrfs a rw"},
           {"/"});
    expect("the whole before a part", {"0:1 /sub /a btrfs a rw", "0:1 / /longer btrfs a rw"}, {"/longer"});
    expect("the shortest", {"0:1 /x /abc btrfs a rw", "0:1 /y /ab btrfs a rw", "0:1 /z /abcd btrfs a rw"},
           {"/ab"});
    expect("pools", {"0:1 / /h zfs a/h rw", "0:2 / /a zfs a rw", "0:3 / /b zfs b rw", "0:4 / / zfs a/r/x rw"},
           {"/b", "/"});
    machine.write("/proc/self/mountinfo", std::string(33 << 20, ' '));
    EXPECT_FALSE(volumes.read()) << "a huge table";
}

TEST_F(VolumesTest, NamesAreThoseOfTheDeviceTheLinkOrTheSystemAndWhoeverHidesOneIsObeyed) {
    machine.write("/etc/os-release", "NAME=\"Some System\"\nPRETTY_NAME=\"Some System 12\"\n");
    machine.write("/run/udev/data/b8:17", "E:ID_FS_LABEL=My_Stick\nE:ID_FS_LABEL_ENC=My\\x20Stick\n");
    add("8:0", kPCI + "/ata1/block/sda");
    addPartition("8:2", kPCI + "/ata1/block/sda/sda2");
    machine.link("/dev/disk/by-label/Home\\x20of\\x20all", "../../sda2");
    mount({"8:1 / / ext4 /dev/sda1 rw", "8:17 / /media/My\\040Stick vfat /dev/sdb1 rw",
           "8:2 / /home ext4 /dev/sda2 rw"});
    servers.set("/media/My Stick", FileSystemSpace{16'000'000'000, ~std::uint64_t{0}});
    servers.set("/home", std::nullopt);
    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(
        read(),
        (std::vector<VolumeURL>{
            {"/", VolumeResourceValues{"Some System", 500 * kGiB, 200 * kGiB, {}, true, false}},
            {"/media/My Stick", VolumeResourceValues{"My Stick", 16'000'000'000, kMost, {}, false, false}},
            {"/home", std::nullopt}}));
    servers.set("/home", kDisk);
    EXPECT_EQ(read().at(2).resourceValues()->volumeName, "Home of all");
    machine.write("/run/udev/data/b8:1", "E:ID_FS_LABEL_ENC=root\n");
    machine.write("/run/udev/data/b8:2", "E:UDISKS_IGNORE=1\n");
    machine.write("/run/mount/utab", "SRC=/dev/sdb1 TARGET=/media/My\\040Stick OPTS=x-gvfs-hide\n");
    EXPECT_EQ(readValues().volumeName, "root");
}

TEST_F(VolumesTest, TheWayADiskIsConnectedTells) {
    const std::string dock = "/sys/devices/pci0000:00/0000:00:1d.0/0000:04:00.0";
    machine.write("/sys/devices/pci0000:00/0000:00:1d.0/removable", "fixed\n");
    machine.write(dock + "/removable", "removable\n");
    machine.write(kPCI + "/removable", "unknown\n");
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
        add(disk, folder, removable);
        addPartition(partition, folder + folder.substr(folder.rfind('/')) + "p1");
        EXPECT_EQ(connectionMounting(disk), want) << name;
        EXPECT_EQ(connectionMounting(partition), want) << name << ", a partition";
    };
    expect("SATA with a port that calls itself removable", kPCI + "/ata2/block/sdb", "ij", "1\n");
    expect("FireWire", kPCI + "/fw1/fw1.0/host8/target8:0:0/8:0:0:0/block/sdd", "ej");
    expect("NVMe", kPCI + "/nvme/nvme0/nvme0n1", "i");
    expect("NVMe by Thunderbolt", dock + "/0000:05:00.0/nvme/nvme1/nvme1n1", "ej");
    expect("an SD card", card + "/block/mmcblk0", "ej");
    expect("soldered flash", soldered + "/block/mmcblk1", "i");
    expect("a disk image", "/sys/devices/virtual/block/loop7", "ej");
    expect("a virtual disk", "/sys/devices/pci0000:00/0000:00:02.0/virtio1/block/vda", "i");
    expect("names that merely look alike", "/sys/devices/platform/usbx/fwnode/1:2.3/block/sde", "i");

    // A drive with several controllers is where they are.
    machine.makeFolder(dock + "/nvme/nvme3");
    const std::string subsystem = "/sys/devices/virtual/nvme-subsystem/nvme-subsys3";
    add("259:5", subsystem + "/nvme3n1");
    EXPECT_EQ(connectionMounting("259:5"), "i");
    machine.link(subsystem + "/nvme3", "../../../pci0000:00/0000:00:1d.0/0000:04:00.0/nvme/nvme3");
    EXPECT_EQ(connectionMounting("259:5"), "ej");
}

TEST_F(VolumesTest, DisksBehindEncryptionAndVolumeManagersAreFoundAndFileSystemsByTheirSource) {
    const std::string internal = kPCI + "/ata1/block/sda";
    const std::string stick = kUSB + "/block/sdb/sdb1";
    const std::string dm = "/sys/devices/virtual/block/dm-";
    add("8:0", internal);
    add("8:16", kUSB + "/block/sdb");
    addPartition("8:17", stick);
    int minor = 0;
    const auto expect = [&](const char* name, const Paths& slaves, const char* want) {
        addVirtual(minor, slaves);
        EXPECT_EQ(connectionMounting("253:" + std::to_string(minor++)), want) << name;
    };
    expect("an encrypted stick", {stick}, "ej");
    expect("a volume on it", {dm + '0'}, "ej");
    expect("an encrypted disk", {internal}, "i");
    expect("a volume on a disk and a stick", {internal, stick}, "ej");
    expect("a mapping onto nothing", {}, "i");
    expect("a loop with a way out", {dm + '5', stick}, "ej");
    expect("a loop", {dm + '6'}, "i");
    for (int i = minor; i < 60; ++i)
        addVirtual(i, {i == minor ? stick : dm + std::to_string(i - 1)});
    EXPECT_EQ(connectionMounting("253:17"), "ej") << "deep, but not too deep";
    EXPECT_EQ(connectionMounting("253:59"), "i") << "deeper than anything real";

    machine.write(dm + "0/dm/name", "luks-1\n");
    add("104:0", kPCI + "/block/cciss!c0d0");
    machine.link("/dev/disk/by-uuid/1234", "../../sdb1");
    machine.link("/dev/mapper/luks-2", "../dm-0");
    machine.link("/dev/circle", "circle");
    for (const char* found : {"btrfs /dev/sdb1", "btrfs /dev/disk/by-uuid/1234", "btrfs /dev/mapper/luks-1",
                              "btrfs /dev/mapper/luks-2", "bcachefs /dev/sdb1:/dev/sdc1"})
        EXPECT_EQ(connectionMounting("0:33", found), "ej") << found;
    EXPECT_EQ(connectionMounting("0:33", "btrfs /dev/cciss/c0d0"), "i");
    for (const char* nowhere : {"btrfs /dev/circle", "btrfs /dev/..", "btrfs /dev/", "btrfs sdb1", "btrfs ",
                                "zfs sdb1", "zfs /dev/sdb1"})
        EXPECT_EQ(connectionMounting("0:33", nowhere), "-") << nowhere;
}

TEST_F(VolumesTest, TheRoomOfAComposedSystemIsElsewhere) {
    constexpr FileSystemSpace kImage{30 << 20, 0};
    constexpr FileSystemSpace kOther{100 * kGiB, 1};
    using Space = std::optional<FileSystemSpace>;
    const auto expect = [this](const char* name, const char* mounted, const FileSystemSpace& root,
                               const Space& sysroot, const Space& var, const FileSystemSpace& want) {
        mount({"0:30 / / "s + mounted});
        servers.set("/", root);
        servers.set("/sysroot", sysroot);
        servers.set("/var", var);
        EXPECT_EQ(readValues().volumeTotalCapacity, want.totalBytes) << name;
        EXPECT_EQ(readValues().volumeAvailableCapacity, want.availableBytes) << name;
    };
    expect("composefs", "overlay composed ro", kImage, kDisk, kOther, kDisk);
    expect("without a sysroot", "overlay composed ro", kImage, {}, kOther, kOther);
    expect("a sysroot that is a folder of the image", "erofs composed ro", kImage, kImage, kOther, kOther);
    expect("an image alone", "squashfs composed ro", kImage, {}, {}, kImage);
    expect("a container", "overlay composed rw", kDisk, kOther, kOther, kDisk);
    expect("a container that writes nothing", "overlay composed ro", kDisk, {}, kDisk, kDisk);
    expect("a small upper layer", "overlay composed rw", {kGiB - 1, 1}, {}, kOther, kOther);
    expect("a layer just large enough", "tmpfs composed rw", {kGiB, 1}, {}, kOther, {kGiB, 1});
    expect("a small disk", "ext4 composed ro", kImage, kOther, kOther, kImage);
    mount({"0:30 / / overlay composed ro", "0:31 / /var nfs4 nas:/var rw"});
    servers.set("/", kImage);
    servers.set("/sysroot", {});
    servers.takeAsked();
    EXPECT_EQ(readValues().volumeTotalCapacity, kImage.totalBytes);
    EXPECT_EQ(servers.takeAsked(), (Paths{"/", "/sysroot"})) << "a server is not asked on the way";
}

TEST_F(VolumesTest, AHungServerIsLeftOutWithWhatLiesBehindItAndOnlyARemovableOneIsMeasuredAtOnce) {
    add("8:1", kPCI + "/ata1/block/sda");
    add("8:16", kUSB + "/block/sdb");
    add("7:0", "/sys/devices/virtual/block/loop0");
    mount({"8:1 / /mnt/nasty ext4 /dev/sda1 rw", "0:60 / /mnt/nas nfs4 nas:/export rw",
           "7:0 / /mnt/nas/image ext4 /dev/loop0 rw", "8:16 / /media/STICK vfat /dev/sdb rw",
           "0:61 / /mnt/auto autofs systemd-1 rw"});
    servers.hang("/mnt/nas");
    servers.hang("/mnt/nas/image");
    const auto list = volumes.readRemovable();
    ASSERT_TRUE(list);
    EXPECT_EQ(*list,
              (std::vector<VolumeURL>{
                  {"/mnt/nasty", VolumeResourceValues{{}, {}, {}, true, false, false}},
                  {"/mnt/nas", VolumeResourceValues{{}, {}, {}, {}, false, false}},
                  {"/mnt/nas/image", VolumeResourceValues{{}, {}, {}, false, false, true}},
                  {"/media/STICK", VolumeResourceValues{{}, 500 * kGiB, 200 * kGiB, false, false, true}}}));
    EXPECT_EQ(servers.takeAsked(), Paths{"/media/STICK"});

    servers.expectCalls(2);
    EXPECT_EQ(readPaths(), (Paths{"/mnt/nasty", "/media/STICK"}));
    EXPECT_EQ(servers.callsOut(), 2u);
    servers.release("/mnt/nas");
    servers.expectCalls(1);
    EXPECT_EQ(readPaths(), (Paths{"/mnt/nasty", "/mnt/nas", "/media/STICK"}));
}

}  // namespace
}  // namespace norvane
