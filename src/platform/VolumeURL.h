#pragma once

#include <optional>
#include <string>
#include <utility>

#include "platform/VolumeResourceValues.h"

namespace norvane {

// Where a volume is mounted, with what was found out about it when the volumes were listed.
class VolumeURL {
 public:
    // `path` begins with "/". Without values: they cannot be read.
    VolumeURL(std::string path, std::optional<VolumeResourceValues> values)
        : path_(std::move(path)), values_(std::move(values)) {}

    const std::string& path() const { return path_; }
    // "STICK" of "/media/ada/STICK"; "/" of the root. Any bytes but "/".
    std::string lastPathComponent() const {
        return path_ == "/" ? path_ : path_.substr(path_.rfind('/') + 1);
    }
    const std::optional<VolumeResourceValues>& resourceValues() const { return values_; }

    bool operator==(const VolumeURL&) const = default;

 private:
    std::string path_;
    std::optional<VolumeResourceValues> values_;
};

}  // namespace norvane
