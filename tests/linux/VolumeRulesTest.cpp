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
    for (const char* type : {"ext4", "xfs", "btrfs", "zfs", "vfat", "ntfs3", "fuseblk", "iso9660"}) {
        EXPECT_TRUE(isVolume(mountAt("/home", type), {})) << type;
        EXPECT_FALSE(mayHang(mountAt("/home", type))) << type;
    }
    for (const char* type : {"nfs", "nfs4", "cifs", "9p", "fuse.sshfs", "fuse.ntfs-3g", "fuse.s3fs"}) {
        EXPECT_TRUE(isVolume(mountAt("/home", type), {})) << type;
        EXPECT_TRUE(mayHang(mountAt("/home", type))) << type;
    }
    for (const char* type :
         {"tmpfs", "squashfs", "overlay", "fuse.portal", "fuse.gvfsd-fuse", "fuse", "", "ext44", "EXT4"}) {
        EXPECT_FALSE(isVolume(mountAt("/home", type), {})) << type;
        EXPECT_FALSE(isVolume(mountAt("/home", type), {.show = true})) << type;
        EXPECT_TRUE(isVolume(mountAt("/", type), {})) << type;
    }
    EXPECT_FALSE(isVolume(mountAt("/", "autofs"), {})) << "a look would mount it";
    EXPECT_TRUE(mayHang(mountAt("/", "fuse.fuse-overlayfs")));
}

TEST(VolumeRules, FoldersOfTheSystemAreNoVolumes) {
    for (const char* point : {"/", "/home", "/media/ada/STICK", "/run/media/ada/STICK", "/data/b.c", "/boots",
                              "/usr2", "/tmpfiles", "/var/mail", "/root/x", "/nix", "/sysroots"}) {
        EXPECT_TRUE(isVolume(mountAt(point), {})) << point;
    }
    for (const char* point : {"/boot",
                              "/boot/efi",
                              "/usr/local",
                              "/etc/hosts",
                              "/var",
                              "/var/lib/docker",
                              "/var/log/x",
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
                              "/sysroot/x",
                              "/home/ada/.cache",
                              "/.snapshots",
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
    const auto expect = [](const char* name, const std::vector<Mount>& mounts,
                           const std::vector<std::size_t>& want) {
        std::vector<const Mount*> pointers;
        for (const Mount& each : mounts)
            pointers.push_back(&each);
        EXPECT_EQ(onePerFileSystem(pointers), want) << name;
    };
    expect("none", {}, {});
    expect("different ones, in their order", {mount(2, "/", "/b"), mount(1, "/", "/a")}, {0, 1});
    expect("/ before all", {mount(1, "/", "/h"), mount(1, "/@", "/"), mount(1, "/@home", "/home")}, {1});
    expect("the whole before a part", {mount(1, "/sub", "/a"), mount(1, "/", "/longer")}, {1});
    expect("the shortest", {mount(1, "/x", "/abc"), mount(1, "/y", "/ab"), mount(1, "/z", "/abcd")}, {1});
    expect("the first", {mount(1, "/", "/a"), mount(1, "/", "/b")}, {0});
    expect("datasets of two pools",
           {dataset(1, "tank/home", "/home"), dataset(2, "tank", "/tank"), dataset(3, "tank2", "/t"),
            dataset(4, "tank/root/a", "/")},
           {2, 3});
}

}  // namespace
}  // namespace norvane
