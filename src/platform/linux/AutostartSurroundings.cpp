#include "platform/linux/AutostartSurroundings.h"

#include <pwd.h>
#include <unistd.h>
#include <cstdlib>
#include <string_view>

namespace norvane {
namespace {

bool isAbsolutePath(std::string_view path) {
    return path.substr(0, 1) == "/";
}

std::string_view textOfVariable(const char* variable) {
    return variable == nullptr ? std::string_view() : variable;
}

// Without the empty ones.
std::vector<std::string> partsOf(std::string_view list) {
    std::vector<std::string> parts;
    while (!list.empty()) {
        const auto end = list.find(':');
        if (end != 0) parts.emplace_back(list.substr(0, end));
        list.remove_prefix(end == std::string_view::npos ? list.size() : end + 1);
    }
    return parts;
}

std::vector<std::string> foldersOf(std::string_view list) {
    std::vector<std::string> folders = partsOf(list);
    std::erase_if(folders, [](const std::string& folder) { return !isAbsolutePath(folder); });
    return folders;
}

}  // namespace

AutostartSurroundings AutostartSurroundings::from(const Variables& variables) {
    AutostartSurroundings surroundings;
    if (isAbsolutePath(textOfVariable(variables.xdgConfigHome))) {
        surroundings.configHome = variables.xdgConfigHome;
    } else if (isAbsolutePath(textOfVariable(variables.home))) {
        surroundings.configHome = std::string(variables.home) + "/.config";
    }
    const std::string_view configFolders = textOfVariable(variables.xdgConfigDirs);
    surroundings.configFolders = foldersOf(configFolders.empty() ? "/etc/xdg" : configFolders);
    surroundings.desktops = partsOf(textOfVariable(variables.xdgCurrentDesktop));
    surroundings.programFolders = foldersOf(textOfVariable(variables.path));
    return surroundings;
}

AutostartSurroundings AutostartSurroundings::own() {
    const auto surroundingsAt = [](const char* home) {
        return from({.xdgConfigHome = std::getenv("XDG_CONFIG_HOME"),
                     .home = home,
                     .xdgConfigDirs = std::getenv("XDG_CONFIG_DIRS"),
                     .xdgCurrentDesktop = std::getenv("XDG_CURRENT_DESKTOP"),
                     .path = std::getenv("PATH")});
    };
    AutostartSurroundings surroundings = surroundingsAt(std::getenv("HOME"));
    if (!surroundings.configHome.empty()) return surroundings;
    passwd entry{};
    passwd* found = nullptr;
    std::vector<char> buffer(16 * 1024);
    getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found);
    return surroundingsAt(found == nullptr ? nullptr : entry.pw_dir);
}

}  // namespace norvane
