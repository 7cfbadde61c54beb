#include "SourceTree.h"

#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>
#include <stdexcept>

namespace norvane {

namespace fs = std::filesystem;

fs::path projectFolder() {
    return NORVANE_SOURCE_DIR;
}

std::set<std::string> filesBelow(const std::string& folder) {
    std::set<std::string> files;
    const fs::path top = (projectFolder() / folder).lexically_normal();
    for (fs::recursive_directory_iterator entry(top), end; entry != end; ++entry) {
        const std::string name = entry->path().filename().string();
        const bool isPassedOver = name == "build" || name == "fixtures" || name == "seeds" ||
                                  (name.starts_with('.') && name != ".ci");
        if (entry->is_directory() && isPassedOver) entry.disable_recursion_pending();
        if (!entry->is_regular_file()) continue;
        files.insert(entry->path().lexically_relative(projectFolder()).generic_string());
    }
    return files;
}

std::set<std::string> sourcesBelow(const std::string& folder) {
    std::set<std::string> files = filesBelow(folder);
    std::erase_if(files,
                  [](const std::string& file) { return !file.ends_with(".h") && !file.ends_with(".cpp"); });
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
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

std::set<std::string> foundIn(const std::string& text, const std::string& pattern) {
    const std::regex regex(pattern);
    std::set<std::string> found;
    for (std::sregex_iterator each(text.begin(), text.end(), regex), end; each != end; ++each) {
        if ((*each)[1].matched) found.insert((*each)[1]);
    }
    return found;
}

}  // namespace norvane
