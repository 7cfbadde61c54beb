#include "MachineInput.h"

#include <stdlib.h>
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <system_error>

namespace norvane {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kHeading = "=== /";
constexpr std::string_view kArrow = " -> ";
constexpr std::string_view kGone = " gone";
constexpr std::string_view kThen = "=== then\n";
// Enough for several devices; more would only be slow.
constexpr int kMostThings = 64;
constexpr std::size_t kLongestPath = 256;

// Names that are no way out of the folder.
bool isPlain(std::string_view path) {
    if (path.empty() || path.size() > kLongestPath || path.find('\0') != std::string_view::npos) return false;
    const std::string whole = '/' + std::string(path) + '/';
    return whole.find("//") == std::string::npos && whole.find("/./") == std::string::npos &&
           whole.find("/../") == std::string::npos;
}

// Makes the folders that lead there, through no link.
bool makeFolders(const fs::path& top, const fs::path& relative) {
    fs::path folder = top;
    for (const fs::path& name : relative) {
        folder /= name;
        std::error_code error;
        const fs::file_status status = fs::symlink_status(folder, error);
        if (fs::is_directory(status)) continue;
        if (fs::exists(status) || !fs::create_directory(folder, error)) return false;
    }
    return true;
}

}  // namespace

MachineInput::MachineInput(std::string_view text) : rest_(text), thingsLeft_(kMostThings) {
    std::string name = (fs::temp_directory_path() / "norvane-fuzz-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) {
        std::perror(name.c_str());
        std::exit(1);
    }
    folder_ = name;
    goOn();
}

void MachineInput::goOn() {
    if (rest_.starts_with(kThen)) rest_.remove_prefix(kThen.size());
    while (rest_.starts_with(kHeading) && thingsLeft_-- > 0) {
        const std::string_view heading = rest_.substr(0, rest_.find('\n')).substr(kHeading.size());
        rest_.remove_prefix(std::min(kHeading.size() + heading.size() + 1, rest_.size()));
        std::size_t end = 0;  // of the file's text, at the next line that is a heading
        while (end < rest_.size() && !rest_.substr(end).starts_with(kHeading) &&
               !rest_.substr(end).starts_with(kThen)) {
            end = std::min(rest_.find('\n', end), rest_.size() - 1) + 1;
        }
        make(heading, rest_.substr(0, end));
        rest_.remove_prefix(end);
    }
}

MachineInput::~MachineInput() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

void MachineInput::make(std::string_view heading, std::string_view text) const {
    const bool isGone = heading.ends_with(kGone);
    if (isGone) heading.remove_suffix(kGone.size());
    const std::size_t arrow = heading.find(kArrow);
    const std::string_view path = heading.substr(0, arrow);
    if (!isPlain(path)) return;
    const fs::path relative(path);
    const fs::path full = folder_ / relative;
    std::error_code error;
    if (!makeFolders(folder_, relative.parent_path())) return;
    const fs::file_status present = fs::symlink_status(full, error);
    if (isGone) {
        fs::remove(full, error);
    } else if (arrow != std::string_view::npos) {
        fs::create_symlink(fs::path(heading.substr(arrow + kArrow.size())), full, error);
    } else if (!fs::exists(present) || fs::is_regular_file(present)) {
        std::ofstream(full, std::ios::binary | std::ios::trunc) << text;
    }
}

}  // namespace norvane
