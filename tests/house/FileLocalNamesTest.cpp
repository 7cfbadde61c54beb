#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <regex>
#include <set>

#include "SourceTree.h"

namespace norvane {
namespace {

// What a text declares in unnamed namespaces, as far as a line tells that begins at its left edge: types,
// constants and functions.
std::set<std::string> fileLocalNames(const std::string& text) {
    static const std::regex type(R"(^(?:struct|class|enum class) (\w+)(?: final)?(?: \{| :).*)");
    static const std::regex alias(R"(^using (\w+) =.*)");
    static const std::regex constant(
        R"(^(?:static )?(?:constexpr|const|inline) .*\b(k[A-Z]\w*)(?:\[.*\])?(?: =|\{|;).*)");
    static const std::regex function(R"(^[a-zA-Z][^={]*?\b(\w+)\(.*)");
    std::set<std::string> names;
    bool isInside = false;
    for (const std::string& line : linesOf(text)) {
        if (line == "namespace {") isInside = true;
        if (line == "}  // namespace") isInside = false;
        std::smatch found;
        const bool isDeclaration =
            std::regex_match(line, found, type) || std::regex_match(line, found, alias) ||
            std::regex_match(line, found, constant) || std::regex_match(line, found, function);
        if (isInside && isDeclaration) names.insert(found[1]);
    }
    return names;
}

// Builds may compile the sources of a folder together, many to a file.
TEST(FileLocalNames, AreInOneFileOfTheirFolder) {
    std::map<std::pair<std::string, std::string>, std::string> files;  // by folder and name
    for (const std::string& file : filesBelow("src")) {
        if (!file.ends_with(".cpp")) continue;
        const std::string folder = std::filesystem::path(file).parent_path().generic_string();
        for (const std::string& name : fileLocalNames(contentsOf(file))) {
            const auto [known, isNew] = files.try_emplace({folder, name}, file);
            EXPECT_TRUE(isNew) << name << " is local to " << known->second << " and to " << file;
        }
    }
    EXPECT_GT(files.size(), 300U) << "most files have some";
}

TEST(FileLocalNamesCheck, SeesEachKindOfDeclaration) {
    const std::string text = R"(namespace norvane {
namespace {
constexpr double kWidth = 3;
constexpr std::array kSides{1, 2};
struct Pair {
    int member;
};
using Number = int;
std::optional<int> parsed(std::string_view text) {
    return other(text);
}
}  // namespace
int outside() {
)";
    EXPECT_EQ(fileLocalNames(text), (std::set<std::string>{"Number", "Pair", "kSides", "kWidth", "parsed"}));
}

}  // namespace
}  // namespace norvane
