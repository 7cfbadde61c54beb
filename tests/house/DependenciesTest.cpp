#include <gtest/gtest.h>

#include <regex>
#include <set>

#include "SourceTree.h"

namespace norvane {
namespace {

// The Debian packages that a script lists, in lines such as `build_packages=(g++ cmake)`; a list may go on
// over several lines.
std::set<std::string> packagesIn(const std::string& script) {
    static const std::regex list(R"(\n[a-z]+_packages=\(([^)]*)\))");
    static const std::regex word(R"(\S+)");
    std::set<std::string> packages;
    for (std::sregex_iterator found(script.begin(), script.end(), list), end; found != end; ++found) {
        const std::string names = (*found)[1];
        for (std::sregex_iterator name(names.begin(), names.end(), word); name != end; ++name) {
            packages.insert(name->str());
        }
    }
    return packages;
}

TEST(Dependencies, EachHasAReason) {
    const std::string reasons = contentsOf("docs/dependencies.md");
    const std::set<std::string> packages = packagesIn(contentsOf("dev"));
    ASSERT_TRUE(packages.contains("g++"));
    for (const std::string& package : packages) {
        EXPECT_NE(reasons.find('`' + package + '`'), std::string::npos)
            << "docs/dependencies.md has no word about " << package;
    }
}

TEST(DependenciesCheck, ReadsListsOfSeveralLines) {
    EXPECT_EQ(packagesIn("x=(no)\nbuild_packages=(g++ cmake\n    libxcb1-dev)\nfont_packages=()\n"),
              (std::set<std::string>{"cmake", "g++", "libxcb1-dev"}));
}

}  // namespace
}  // namespace norvane
