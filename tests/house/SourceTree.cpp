#include "SourceTree.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace norvane {
namespace {

bool isPassedOver(const std::filesystem::path& folder) {
    const std::string name = folder.filename().string();
    return name == "build" || name == "fixtures" || name == "seeds" ||
           (name.starts_with('.') && name != ".ci");
}

}  // namespace

std::filesystem::path projectFolder() {
    return NORVANE_SOURCE_DIR;
}

std::vector<std::string> filesBelow(const std::string& folder) {
    namespace fs = std::filesystem;
    std::vector<std::string> files;
    const fs::path top = (projectFolder() / folder).lexically_normal();
    if (!fs::is_directory(top)) return files;
    for (fs::recursive_directory_iterator entry(top), end; entry != end; ++entry) {
        if (entry->is_directory() && isPassedOver(entry->path())) entry.disable_recursion_pending();
        if (entry->is_regular_file()) {
            files.push_back(entry->path().lexically_relative(projectFolder()).generic_string());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::string contentsOf(const std::string& file) {
    std::ifstream stream(projectFolder() / file, std::ios::binary);
    std::string contents{std::istreambuf_iterator<char>(stream), {}};
    if (!stream.is_open() || stream.bad()) throw std::runtime_error("cannot read " + file);
    return contents;
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

}  // namespace norvane
