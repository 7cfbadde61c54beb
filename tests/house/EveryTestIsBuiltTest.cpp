#include <gtest/gtest.h>

#include <regex>

#include "SourceTree.h"

namespace norvane {
namespace {

// Whether a build of these options, as CMake stores them, promises to compile this file.
bool isPromised(const std::string& file, const std::string& cmakeCache) {
    const auto isOn = [&](const std::string& option) {
        return std::regex_search(
            '\n' + cmakeCache, std::regex("\n" + option + ":[A-Z]+=(ON|TRUE|YES|Y|1)\n", std::regex::icase));
    };
    static const std::regex ofLinux(
        "src/main.cpp|src/platform/linux/.*|"
        "tests/(bus|desktop|devices|fuzz|linux|machines|privilege|soak/writes|windows)/.*");
    if (!file.ends_with(".cpp")) return false;
    if (std::regex_match(file, ofLinux) && !isOn("NORVANE_LINUX")) return false;
    return file.starts_with("src/") || (file.starts_with("tests/") && isOn("NORVANE_TESTS")) ||
           (file.starts_with("benchmarks/") && isOn("NORVANE_BENCHMARKS"));
}

// The files that a pattern finds, written from the project's root.
std::set<std::string> filesNamedIn(const std::string& text, const std::string& pattern) {
    std::set<std::string> files;
    for (const std::filesystem::path file : foundIn(text, pattern))
        files.insert(file.lexically_normal().lexically_relative(projectFolder()).generic_string());
    return files;
}

TEST(EveryTestIsBuilt, AndEverySourceWithIt) {
    const std::filesystem::path build = NORVANE_BINARY_DIR;
    const std::string cache = contentsOf((build / "CMakeCache.txt").string());
    ASSERT_TRUE(isPromised("tests/house/X.cpp", cache)) << "this was built, so the options were read wrongly";
    const std::string portable = "NORVANE_LINUX:BOOL=OFF\nNORVANE_TESTS:BOOL=ON\n";
    ASSERT_FALSE(isPromised("tests/linux/X.cpp", portable) || isPromised("benchmarks/X.cpp", portable));
    std::set<std::string> compiled =
        filesNamedIn(contentsOf((build / "compile_commands.json").string()), R"re("file": "(.*)")re");
    // CMake makes files that compile several together.
    for (const std::string& file : std::set(compiled)) {
        if (file.find("/Unity/unity_") == std::string::npos) continue;
        compiled.merge(filesNamedIn(contentsOf(file), R"re(#include "(.*)")re"));
    }
    for (const std::string& file : sourcesBelow(""))
        EXPECT_TRUE(compiled.contains(file) || !isPromised(file, cache)) << "nobody compiles " << file;
}

}  // namespace
}  // namespace norvane
