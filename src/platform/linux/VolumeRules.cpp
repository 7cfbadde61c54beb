#include "platform/linux/VolumeRules.h"

#include <algorithm>
#include <array>
#include <string>
#include <tuple>
#include <unordered_map>

namespace norvane {

namespace {

template <std::size_t kCount>
bool isOneOf(const std::array<std::string_view, kCount>& words, std::string_view word) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

// Those that are known, since every release of the kernel and of the desktop brings new plumbing.
constexpr auto kDiskTypes = std::to_array<std::string_view>(
    {"ext2",     "ext3",   "ext4",    "xfs",  "btrfs", "f2fs",  "bcachefs", "jfs",
     "reiserfs", "nilfs2", "zfs",     "vfat", "msdos", "exfat", "ntfs",     "ntfs3",
     "fuseblk",  "hfs",    "hfsplus", "apfs", "ufs",   "udf",   "iso9660",  "minix"});
constexpr auto kNetworkTypes = std::to_array<std::string_view>(
    {"nfs", "nfs4", "cifs", "smb3", "ceph", "afs", "9p", "virtiofs", "glusterfs"});
constexpr auto kUserSpaceTypes =
    std::to_array<std::string_view>({"fuse.sshfs", "fuse.rclone", "fuse.mergerfs", "fuse.gocryptfs",
                                     "fuse.ntfs-3g", "fuse.glusterfs", "fuse.s3fs"});
constexpr auto kCompositeTypes =
    std::to_array<std::string_view>({"overlay", "erofs", "squashfs", "tmpfs", "rootfs"});

// Parts of the operating system.
constexpr auto kSystemFolders =
    std::to_array<std::string_view>({"/boot", "/efi", "/usr", "/etc", "/var", "/tmp", "/root", "/sysroot"});
constexpr auto kSystemTrees = std::to_array<std::string_view>(
    {"/boot/", "/dev/", "/proc/", "/sys/", "/run/", "/snap/", "/usr/", "/etc/", "/nix/", "/gnu/", "/ostree/",
     "/sysroot/", "/var/lib/", "/var/cache/", "/var/log/", "/var/tmp/", "/tmp/"});
// Where the desktop mounts what a user plugs in.
constexpr std::string_view kUserMedia = "/run/media/";

bool isSystemPlumbing(std::string_view point) {
    if (isOneOf(kSystemFolders, point) || point.find("/.") != std::string_view::npos) return true;
    return !point.starts_with(kUserMedia) &&
           std::any_of(kSystemTrees.begin(), kSystemTrees.end(),
                       [&](std::string_view tree) { return point.starts_with(tree); });
}

// Subvolumes and bind mounts share the number of their file system. The datasets of a ZFS pool have one each,
// but share the room.
std::string fileSystemKey(const Mount& mount) {
    if (mount.type == "zfs") return mount.source.substr(0, mount.source.find('/'));
    return mount.device.text();
}

// Whether `a` stands for its file system rather than `b`.
bool isBetter(const Mount& a, const Mount& b) {
    const auto rank = [](const Mount& mount) {
        return std::tuple(mount.point != "/", mount.root != "/", mount.point.size());
    };
    return rank(a) < rank(b);
}

}  // namespace

FileSystemKind fileSystemKind(std::string_view type) {
    if (isOneOf(kDiskTypes, type)) return FileSystemKind::disk;
    if (isOneOf(kNetworkTypes, type)) return FileSystemKind::network;
    if (isOneOf(kUserSpaceTypes, type)) return FileSystemKind::userSpace;
    return FileSystemKind::other;
}

bool mayHang(const Mount& mount) {
    const FileSystemKind kind = fileSystemKind(mount.type);
    return kind == FileSystemKind::network || kind == FileSystemKind::userSpace ||
           mount.type.starts_with("fuse.") || mount.type == "autofs";
}

bool isVolume(const Mount& mount, const DesktopMountOptions& options) {
    // Looking at an automounter's folder would mount what it stands for.
    if (options.hide || mount.type == "autofs") return false;
    if (mount.point == "/") return true;
    if (fileSystemKind(mount.type) == FileSystemKind::other) return false;
    return options.show || !isSystemPlumbing(mount.point);
}

std::vector<std::size_t> onePerFileSystem(const std::vector<const Mount*>& mounts) {
    std::unordered_map<std::string, std::size_t> bestOf;
    for (std::size_t i = 0; i < mounts.size(); ++i) {
        const auto [best, isNew] = bestOf.try_emplace(fileSystemKey(*mounts[i]), i);
        if (!isNew && isBetter(*mounts[i], *mounts[best->second])) best->second = i;
    }
    std::vector<std::size_t> kept;
    kept.reserve(bestOf.size());
    for (const auto& [key, index] : bestOf)
        kept.push_back(index);
    std::sort(kept.begin(), kept.end());
    return kept;
}

bool isCompositeType(std::string_view type) {
    return isOneOf(kCompositeTypes, type);
}

}  // namespace norvane
