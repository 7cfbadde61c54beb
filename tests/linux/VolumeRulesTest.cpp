#include "platform/linux/VolumeRules.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace norvane {
namespace {

Mount mountAt(const char* point, const char* type = "ext4") {
    Mount mount;
    mount.device = {8, 1};
    mount.root = "/";
    mount.point = point;
    mount.type = type;
    return mount;
}

TEST(VolumeRules, KnownTypesOnlyAreVolumesExceptForTheRoot) {
    for (const char* type : {"ext2", "ext3", "ext4",     "xfs",     "btrfs",   "f2fs",  "bcachefs", "jfs",
                             "zfs",  "vfat", "reiserfs", "nilfs2",  "msdos",   "exfat", "ntfs",     "ntfs3",
                             "hfs",  "apfs", "fuseblk",  "hfsplus", "iso9660", "minix", "ufs",      "udf"}) {
        EXPECT_TRUE(isVolume(mountAt("/home", type), {})) << type;
        EXPECT_FALSE(mayHang(mountAt("/home", type))) << type;
    }
    for (const char* type :
         {"nfs", "nfs4", "cifs", "smb3", "ceph", "afs", "9p", "virtiofs", "glusterfs", "fuse.sshfs",
          "fuse.rclone", "fuse.mergerfs", "fuse.gocryptfs", "fuse.ntfs-3g", "fuse.glusterfs", "fuse.s3fs"}) {
        EXPECT_TRUE(isVolume(mountAt("/home", type), {})) << type;
        EXPECT_TRUE(mayHang(mountAt("/home", type))) << type;
    }
    for (const char* type :
         {"tmpfs", "proc", "sysfs", "squashfs", "erofs", "overlay", "fuse.portal", "fuse.lxcfs",
          "fuse.gvfsd-fuse", "fuse", "ramfs", "cgroup2", "", "ext", "ext44", "EXT4"}) {
        EXPECT_FALSE(isVolume(mountAt("/home", type), {})) << type;
        EXPECT_FALSE(isVolume(mountAt("/home", type), {.show = true})) << type;
        EXPECT_TRUE(isVolume(mountAt("/", type), {})) << type;
    }
    EXPECT_FALSE(isVolume(mountAt("/", "autofs"), {})) << "a look would mount it";
    EXPECT_TRUE(mayHang(mountAt("/", "fuse.fuse-overlayfs")));
}

TEST(VolumeRules, FoldersOfTheSystemAreNoVolumes) {
    for (const char* point :
         {"/", "/home", "/mnt/data", "/media/ada/STICK", "/run/media/ada/STICK", "/srv", "/opt", "/data/b.c",
          "/boots", "/usr2", "/tmpfiles", "/var/mail", "/variety", "/root/x", "/nix", "/sysroots"}) {
        EXPECT_TRUE(isVolume(mountAt(point), {})) << point;
    }
    for (const char* point : {"/boot",
                              "/boot/efi",
                              "/efi",
                              "/usr",
                              "/usr/local",
                              "/etc",
                              "/etc/hosts",
                              "/var",
                              "/var/lib/docker",
                              "/var/cache/x",
                              "/var/log/x",
                              "/var/tmp/x",
                              "/tmp",
                              "/tmp/x",
                              "/root",
                              "/dev/shm",
                              "/proc/x",
                              "/sys/fs/x",
                              "/run/user/1000/doc",
                              "/run/media",
                              "/snap/core/1",
                              "/nix/store",
                              "/gnu/store",
                              "/ostree/x",
                              "/sysroot",
                              "/sysroot/x",
                              "/home/ada/.cache",
                              "/.snapshots",
                              "/run/media/ada/.hidden",
                              "/a/.b/c"}) {
        EXPECT_FALSE(isVolume(mountAt(point), {})) << point;
        EXPECT_TRUE(isVolume(mountAt(point), {.show = true})) << point;
        EXPECT_FALSE(isVolume(mountAt(point), {.hide = true, .show = true})) << point;
    }
    EXPECT_FALSE(isVolume(mountAt("/home"), {.hide = true}));
}

TEST(VolumeRules, OneMountStandsForEachFileSystem) {
    const auto mount = [](unsigned minor, const char* root, const char* point) {
        Mount result = mountAt(point, "btrfs");
        result.device = {0, minor};
        result.root = root;
        return result;
    };
    const auto dataset = [](unsigned minor, const char* source, const char* point) {
        Mount result = mountAt(point, "zfs");
        result.device = {0, minor};
        result.source = source;
        return result;
    };
    struct Case {
        const char* name;
        std::vector<Mount> mounts;
        std::vector<std::size_t> want;
    };
    const std::vector<Case> cases{
        {"none", {}, {}},
        {"different ones, in their order", {mount(2, "/", "/b"), mount(1, "/", "/a")}, {0, 1}},
        {"/ before all", {mount(1, "/", "/h"), mount(1, "/@", "/"), mount(1, "/@home", "/home")}, {1}},
        {"the whole before a part", {mount(1, "/sub", "/a"), mount(1, "/", "/longer")}, {1}},
        {"the shortest", {mount(1, "/x", "/abc"), mount(1, "/y", "/ab"), mount(1, "/z", "/abcd")}, {1}},
        {"the first", {mount(1, "/", "/a"), mount(1, "/", "/b")}, {0}},
        {"datasets of two pools",
         {dataset(1, "tank/home", "/home"), dataset(2, "tank", "/tank"), dataset(3, "tank2", "/t"),
          dataset(4, "tank/root/a", "/")},
         {2, 3}},
    };
    for (const Case& c : cases) {
        std::vector<const Mount*> pointers;
        for (const Mount& each : c.mounts)
            pointers.push_back(&each);
        EXPECT_EQ(onePerFileSystem(pointers), c.want) << c.name;
    }
}

}  // namespace
}  // namespace norvane
