#include "MachineInput.h"

#include <algorithm>
#include <exception>
#include <filesystem>

namespace norvane {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kHeading = "=== /";
constexpr std::string_view kArrow = " -> ";
constexpr std::string_view kGone = " gone";
constexpr std::string_view kThen = "=== then\n";
constexpr std::size_t kLongestPath = 256;

}  // namespace

void MachineInput::goOn() {
    if (rest_.starts_with(kThen)) rest_.remove_prefix(kThen.size());
    while (rest_.starts_with(kHeading) && thingsLeft_-- > 0) {
        const std::string_view heading = rest_.substr(0, rest_.find('\n')).substr(kHeading.size() - 1);
        rest_.remove_prefix(std::min(kHeading.size() + heading.size(), rest_.size()));
        std::size_t end = 0;  // of the file's text, at the next line that is a heading
        while (end < rest_.size() && !rest_.substr(end).starts_with(kHeading) &&
               !rest_.substr(end).starts_with(kThen)) {
            end = std::min(rest_.find('\n', end), rest_.size() - 1) + 1;
        }
        make(heading, rest_.substr(0, end));
        rest_.remove_prefix(end);
    }
}

// Where no name and no link leads out of the folder.
bool MachineInput::canMake(std::string_view path) const {
    if (path.size() > kLongestPath || path.find('\0') != std::string_view::npos) return false;
    const std::string whole = std::string(path) + '/';
    if (whole.find("//") != std::string::npos || whole.find("/./") != std::string::npos) return false;
    if (whole.find("/../") != std::string::npos) return false;
    fs::path folder = folder_.path();
    for (const fs::path& name : fs::path(path).parent_path().relative_path()) {
        folder /= name;
        if (fs::is_symlink(fs::symlink_status(folder))) return false;
    }
    return true;
}

void MachineInput::make(std::string_view heading, std::string_view text) const {
    const bool isGone = heading.ends_with(kGone);
    if (isGone) heading.remove_suffix(kGone.size());
    const std::size_t arrow = heading.find(kArrow);
    const std::string path(heading.substr(0, arrow));
    try {
        if (!canMake(path)) return;
        if (isGone) {
            folder_.remove(path);
        } else if (arrow != std::string_view::npos) {
            folder_.link(path, std::string(heading.substr(arrow + kArrow.size())));
        } else if (!fs::is_symlink(fs::symlink_status(folder_.path() + path))) {
            folder_.write(path, text);
        }
    } catch (const std::exception&) {
        return;
    }
}

}  // namespace norvane
