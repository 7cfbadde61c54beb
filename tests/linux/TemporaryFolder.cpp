#include "TemporaryFolder.h"

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace norvane {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
    path_ = (fs::temp_directory_path() / "norvane-test-XXXXXX").string();
    if (::mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no temporary folder");
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

void TemporaryFolder::write(const std::string& file, std::string_view text) const {
    fs::create_directories(fs::path(path_ + file).parent_path());
    std::ofstream stream(path_ + file, std::ios::binary | std::ios::trunc);
    stream << text;
    if (!stream.flush()) throw std::runtime_error("cannot write " + file);
}

std::string TemporaryFolder::text(const std::string& file) const {
    std::ifstream stream(path_ + file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void TemporaryFolder::link(const std::string& file, const std::string& target) const {
    fs::create_directories(fs::path(path_ + file).parent_path());
    fs::create_symlink(target, path_ + file);
}

void TemporaryFolder::makeFolder(const std::string& folder) const {
    fs::create_directories(path_ + folder);
}

void TemporaryFolder::remove(const std::string& file) const {
    fs::remove_all(path_ + file);
}

void TemporaryFolder::copyFrom(const std::string& folder) const {
    fs::copy(folder, path_, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
}

}  // namespace norvane
