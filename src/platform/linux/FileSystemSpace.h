#pragma once

#include <cstdint>

namespace norvane {

// How large a file system is, in bytes.
struct FileSystemSpace {
    std::uint64_t totalBytes = 0;
    // What a user without privileges may still write.
    std::uint64_t availableBytes = 0;

    bool operator==(const FileSystemSpace&) const = default;
};

}  // namespace norvane
