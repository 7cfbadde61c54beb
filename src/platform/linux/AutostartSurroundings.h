#pragma once

#include <string>
#include <vector>

namespace norvane {

// What a process has been told of its user's session, as far as starting programs at login depends on it.
struct AutostartSurroundings {
    // The variables that they come from; null for one that is not set.
    struct Variables {
        const char* xdgConfigHome = nullptr;
        const char* home = nullptr;
        const char* xdgConfigDirs = nullptr;
        const char* xdgCurrentDesktop = nullptr;
        const char* path = nullptr;
    };

    std::string configHome;                   // empty where the user has no home
    std::vector<std::string> configFolders;   // for all users, the most important one first
    std::vector<std::string> desktops;        // the most particular one first
    std::vector<std::string> programFolders;  // where a program is looked for by its name alone

    // By the rules of freedesktop.org for base directories and for desktop entries: a relative folder counts
    // as not named.
    static AutostartSurroundings from(const Variables& variables);
    // Of this process.
    static AutostartSurroundings own();
};

}  // namespace norvane
