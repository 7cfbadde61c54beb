#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

namespace norvane {

// Where the files of a captured machine are.
inline std::string fixture(const std::string& machine) {
    const std::string folder = std::string(NORVANE_SOURCE_DIR "/tests/fixtures/") + machine;
    if (!std::filesystem::is_directory(folder)) throw std::runtime_error("no such machine: " + folder);
    return folder;
}

}  // namespace norvane
