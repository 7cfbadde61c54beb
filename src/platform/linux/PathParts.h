#pragma once

#include <string>

namespace norvane {

// "/a/b" of "/a/b/c"; "." of a mere name.
inline std::string directoryPart(const std::string& path) {
    const auto slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

// "c" of "/a/b/c".
inline std::string namePart(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

}  // namespace norvane
