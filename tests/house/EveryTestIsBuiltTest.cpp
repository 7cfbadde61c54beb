#include <gtest/gtest.h>

#include <regex>
#include <set>

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

// The files that stand in the lines of a text which the pattern fits, written from the project's root.
std::set<std::string> filesNamedIn(const std::string& text, const std::regex& pattern) {
    std::set<std::string> files;
    for (const std::string& line : linesOf(text)) {
        std::smatch parts;
        if (!std::regex_match(line, parts, pattern)) continue;
        const std::filesystem::path file = std::filesystem::path(parts[1].str()).lexically_normal();
        files.insert(file.lexically_relative(projectFolder()).generic_string());
    }
    return files;
}

// What a compilation database compiles.
std::set<std::string> compiledIn(const std::string& database) {
    static const std::regex pattern(R"re(^\s*"file": "(.*)",?\s*$)re");
    return filesNamedIn(database, pattern);
}

// What a file compiles that CMake made to compile several together.
std::set<std::string> joinedIn(const std::string& source) {
    static const std::regex pattern(R"re(^#include "(.*)"$)re");
    return filesNamedIn(source, pattern);
}

std::string builtFile(const std::string& name) {
    return contentsOf((std::filesystem::path(NORVANE_BINARY_DIR) / name).string());
}

TEST(EveryTestIsBuilt, AndEverySourceWithIt) {
    const std::string cache = builtFile("CMakeCache.txt");
    ASSERT_TRUE(isPromised("tests/house/X.cpp", cache)) << "this was built, so the options were read wrongly";
    std::set<std::string> compiled;
    for (const std::string& file : compiledIn(builtFile("compile_commands.json"))) {
        compiled.insert(file);
        if (file.find("/Unity/unity_") != std::string::npos) compiled.merge(joinedIn(contentsOf(file)));
    }
    for (const std::string& file : filesBelow(""))
        EXPECT_TRUE(compiled.contains(file) || !isPromised(file, cache)) << "nobody compiles " << file;
}

TEST(EveryTestIsBuiltCheck, KnowsWhatIsPromisedAndDone) {
    const std::string portable = "NORVANE_LINUX:BOOL=OFF\nNORVANE_TESTS:BOOL=ON\n";
    const std::string release = "//why\nNORVANE_LINUX:BOOL=ON\nNORVANE_BENCHMARKS:BOOL=ON\n";
    const struct {
        const char* file;
        bool isInPortable, isInRelease;
    } cases[] = {{"src/drawing/Rect.cpp", true, true},
                 {"src/drawing/Rect.h", false, false},
                 {"src/main.cpp", false, true},
                 {"src/platform/linux/X.cpp", false, true},
                 {"tests/drawing/RectTest.cpp", true, false},
                 {"tests/linux/XTest.cpp", false, false},
                 {"benchmarks/Tick.cpp", false, true}};
    for (const auto& c : cases) {
        EXPECT_EQ(isPromised(c.file, portable), c.isInPortable) << c.file;
        EXPECT_EQ(isPromised(c.file, release), c.isInRelease) << c.file;
    }
    const std::string root = projectFolder().generic_string();
    EXPECT_EQ(compiledIn("[\n{\n  \"directory\": \"/b\",\n  \"file\": \"" + root +
                         "/src/drawing/Rect.cpp\"\n},\n{\n  \"file\": \"" + root +
                         "/tests/house/../drawing/RectTest.cpp\",\n  \"output\": \"x.o\"\n}\n]\n"),
              (std::set<std::string>{"src/drawing/Rect.cpp", "tests/drawing/RectTest.cpp"}));
    EXPECT_EQ(joinedIn("/* generated */\n\n#include \"" + root + "/src/drawing/Rect.cpp\"\n"),
              (std::set<std::string>{"src/drawing/Rect.cpp"}));
}

}  // namespace
}  // namespace norvane
