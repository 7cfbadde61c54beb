#include "ScratchFolder.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace norvane {

ScratchFolder::ScratchFolder() {
    std::error_code error;
    std::string name = (std::filesystem::temp_directory_path(error) / "norvane-benchmark-XXXXXX").string();
    if (!error && ::mkdtemp(name.data()) != nullptr) path_ = name;
}

ScratchFolder::~ScratchFolder() {
    std::error_code error;
    if (!path_.empty()) std::filesystem::remove_all(path_, error);
}

}  // namespace norvane
