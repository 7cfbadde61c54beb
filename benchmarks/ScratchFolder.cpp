#include "ScratchFolder.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace norvane {

ScratchFolder::ScratchFolder(const std::string& parent) {
    std::error_code error;
    const auto above =
        parent.empty() ? std::filesystem::temp_directory_path(error) : std::filesystem::path(parent);
    std::string name = (above / "norvane-benchmark-XXXXXX").string();
    if (!error && ::mkdtemp(name.data()) != nullptr) path_ = name;
}

ScratchFolder::~ScratchFolder() {
    std::error_code error;
    if (!path_.empty()) std::filesystem::remove_all(path_, error);
}

}  // namespace norvane
