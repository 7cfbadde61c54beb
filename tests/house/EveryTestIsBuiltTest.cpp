#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <set>

#include "SourceTree.h"

namespace norvane {
namespace {

// Which parts of the sources a build configuration takes.
struct Configuration {
    bool hasLinux = false;
    bool hasTests = false;
    bool hasBenchmarks = false;
};

// The configuration as CMake stored it: lines such as "NORVANE_LINUX:BOOL=ON".
Configuration configurationIn(const std::string& cmakeCache) {
    const auto isOn = [lines = linesOf(cmakeCache)](const std::string& option) {
        static const std::regex pattern(R"(([A-Z_]+):[A-Z]+=(ON|TRUE|YES|Y|1))", std::regex::icase);
        return std::any_of(lines.begin(), lines.end(), [&](const std::string& line) {
            std::smatch parts;
            return std::regex_match(line, parts, pattern) && parts[1] == option;
        });
    };
    return {isOn("NORVANE_LINUX"), isOn("NORVANE_TESTS"), isOn("NORVANE_BENCHMARKS")};
}

// Whether the configuration promises to compile this file, written from the project's root.
bool isPromised(const std::string& file, const Configuration& configuration) {
    if (!file.ends_with(".cpp")) return false;
    for (const char* part : {"src/main.cpp", "src/platform/linux/", "tests/bus/", "tests/desktop/",
                             "tests/devices/", "tests/fuzz/", "tests/linux/", "tests/machines/",
                             "tests/privilege/", "tests/soak/writes/", "tests/windows/"}) {
        if (file.starts_with(part) && !configuration.hasLinux) return false;
    }
    if (file.starts_with("src/")) return true;
    if (file.starts_with("tests/")) return configuration.hasTests;
    return file.starts_with("benchmarks/") && configuration.hasBenchmarks;
}

// What a compilation database compiles, written from the project's root where it lies there.
std::set<std::string> compiledIn(const std::string& database) {
    static const std::regex pattern(R"re(^\s*"file": "(.*)",?\s*$)re");
    std::set<std::string> files;
    for (const std::string& line : linesOf(database)) {
        std::smatch parts;
        if (!std::regex_match(line, parts, pattern)) continue;
        const std::filesystem::path file = std::filesystem::path(parts[1].str()).lexically_normal();
        files.insert(file.lexically_relative(projectFolder()).generic_string());
    }
    return files;
}

std::vector<std::string> forgotten(const std::vector<std::string>& files, const Configuration& configuration,
                                   const std::set<std::string>& compiled) {
    std::vector<std::string> forgotten;
    for (const std::string& file : files) {
        if (isPromised(file, configuration) && !compiled.contains(file)) forgotten.push_back(file);
    }
    return forgotten;
}

std::string builtFile(const std::string& name) {
    return contentsOf((std::filesystem::path(NORVANE_BINARY_DIR) / name).string());
}

TEST(EveryTestIsBuilt, AndEverySourceWithIt) {
    const Configuration configuration = configurationIn(builtFile("CMakeCache.txt"));
    ASSERT_TRUE(configuration.hasTests) << "this test was built, so the configuration was read wrongly";
    const std::set<std::string> compiled = compiledIn(builtFile("compile_commands.json"));
    for (const std::string& file : forgotten(filesBelow(""), configuration, compiled)) {
        ADD_FAILURE() << "nobody compiles " << file;
    }
}

TEST(EveryTestIsBuiltCheck, NoticesAForgottenFile) {
    const std::string root = projectFolder().generic_string();
    const std::string database =
        "[\n{\n  \"directory\": \"/b\",\n  \"command\": \"c++ -c x.cpp\",\n  \"file\": \"" + root +
        "/src/drawing/Rect.cpp\"\n},\n{\n  \"file\": \"" + root +
        "/tests/house/../drawing/RectTest.cpp\",\n  \"output\": \"x.o\"\n}\n]\n";
    const std::vector<std::string> files = {"benchmarks/Tick.cpp",
                                            "src/drawing/Damage.cpp",
                                            "src/drawing/Rect.cpp",
                                            "src/drawing/Rect.h",
                                            "src/main.cpp",
                                            "src/platform/linux/X.cpp",
                                            "tests/drawing/DamageTest.cpp",
                                            "tests/drawing/RectTest.cpp",
                                            "tests/linux/XTest.cpp"};
    using Files = std::vector<std::string>;
    const std::set<std::string> compiled = compiledIn(database);
    EXPECT_EQ(forgotten(files, configurationIn("NORVANE_LINUX:BOOL=OFF\nNORVANE_TESTS:BOOL=ON\n"), compiled),
              (Files{"src/drawing/Damage.cpp", "tests/drawing/DamageTest.cpp"}));
    EXPECT_EQ(
        forgotten(files, configurationIn("//why\nNORVANE_LINUX:BOOL=ON\nNORVANE_BENCHMARKS:BOOL=ON\n"),
                  compiled),
        (Files{"benchmarks/Tick.cpp", "src/drawing/Damage.cpp", "src/main.cpp", "src/platform/linux/X.cpp"}))
        << "without the tests";
}

}  // namespace
}  // namespace norvane
