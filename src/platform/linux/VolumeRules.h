#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "platform/linux/DesktopMountOptions.h"
#include "platform/linux/Mount.h"

namespace norvane {

// Which mounts people think of as volumes.

// Who answers for a file system.
enum class FileSystemKind {
    // The kernel, from memory, for what lies on devices of this machine.
    disk,
    // A server, which may be gone.
    network,
    // A program on this machine, which may be stuck.
    userSpace,
    // Plumbing of the kernel or the desktop.
    other,
};

FileSystemKind fileSystemKind(std::string_view type);

// Whether asking the file system may wait for somebody else, even for ever.
bool mayHang(const Mount& mount);

// Whether the mount is for people; that other mounts show the same file system does not matter here.
bool isVolume(const Mount& mount, const DesktopMountOptions& options);

// Which of the mounts to show, by their index, in ascending order: one for each file system.
std::vector<std::size_t> onePerFileSystem(const std::vector<const Mount*>& mounts);

// Whether `/` is of a kind that an operating system is put together from: an image or a layer, whose size
// says nothing about the room that there is.
bool isCompositeType(std::string_view type);

}  // namespace norvane
