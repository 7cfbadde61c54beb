#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace norvane {

// What the system knows of a mounted volume. What it does not know is absent.
struct VolumeResourceValues {
    // Any bytes: names come from whoever made the file system.
    std::optional<std::string> volumeName;
    // Bytes.
    std::optional<std::int64_t> volumeTotalCapacity;
    // Bytes that this user may still write.
    std::optional<std::int64_t> volumeAvailableCapacity;
    // Whether it is part of the machine; absent where the question makes no sense, as on a network.
    std::optional<bool> volumeIsInternal;
    std::optional<bool> volumeIsRootFileSystem;
    std::optional<bool> volumeIsEjectable;

    bool operator==(const VolumeResourceValues&) const = default;
};

}  // namespace norvane
