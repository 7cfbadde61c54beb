#include <gtest/gtest.h>

#include <regex>

#include "SourceTree.h"

namespace norvane {
namespace {

using Names = std::set<std::string>;

// Drawn, and not asked for by any source: the program's own, which the desktop shows.
constexpr const char* kKept = "NorvaneIcon";

Names drawn(const std::string& folder) {
    Names names;
    for (const std::filesystem::path file : filesBelow("resources/" + folder))
        names.insert(file.stem().string());
    return names;
}

std::string withoutComments(const std::string& source) {
    static const std::regex literalOrComment(R"re(("(?:[^"\\\n]|\\.)*")|//[^\n]*|/\*[^*]*\*/)re");
    return std::regex_replace(source, literalOrComment, "$1 ");
}

Names literalsIn(const std::string& code) {
    return foundIn(code, R"re('"'|"((?:[^"\\\n]|\\.)*)")re");
}

// The names of pictures where they are written down: what stands for a picture is told by its last word,
// "symbol", "image" or "icon", or one of these and "Name", "Named" or "Of". Taken are the literals in the
// first argument of a call or an initialiser, in what is given to a variable or a member as in `.iconName =
// isOpen ? "eye" : "pin"`, and in what a function returns that is formatted like ours. A name that reaches
// its picture by another way is not seen.
Names pictureNamesIn(const std::string& code, const std::string& word) {
    // "symbol" alone, or at the end of a longer word as in "DrawSymbol".
    const std::string capital = static_cast<char>(word[0] - 'a' + 'A') + word.substr(1);
    if (code.find(word) == std::string::npos && code.find(capital) == std::string::npos) return {};
    const std::string name = "(?:\\b" + word + "|\\w" + capital + ")(?:Named|Name|Of)?_?\\s*";
    Names places = foundIn(code, name + "(?:=(?!=)|[({])([^,;{}]*)");
    const std::regex function("\n( *)[^\n]*" + name + R"re(\([^\n]*\{)re");
    for (std::sregex_iterator found(code.begin(), code.end(), function), end; found != end; ++found) {
        const std::string rest = found->suffix();
        const std::string line = rest.substr(0, rest.find('\n'));
        const bool isOneLine = line.find('}') != std::string::npos;
        places.merge(foundIn(isOneLine ? line : rest.substr(0, rest.find('\n' + (*found)[1].str() + '}')),
                             R"re(\breturn\b([^,;]*))re"));
    }
    Names names;
    for (const std::string& place : places)
        names.merge(literalsIn(place));
    return names;
}

// An icon is a symbol or an image. The Linux side paints what it is told to.
TEST(Pictures, AreDrawnIfAskedForAndAskedForIfDrawn) {
    const Names symbols = drawn("symbols");
    const Names images = drawn("images");
    Names all = symbols;
    all.insert(images.begin(), images.end());
    Names seen, literals;
    for (const std::string& file : sourcesBelow("src")) {
        if (file.starts_with("src/platform/linux/")) continue;
        const std::string code = withoutComments(contentsOf(file));
        literals.merge(literalsIn(code));
        for (const auto& [word, pictures] :
             {std::pair("symbol", &symbols), {"image", &images}, {"icon", &all}}) {
            for (const std::string& name : pictureNamesIn(code, word)) {
                EXPECT_TRUE(pictures->contains(name)) << file << ": \"" << name << "\" is not drawn";
                seen.insert(name);
            }
        }
    }
    EXPECT_TRUE(seen.contains("bolt.circle") && seen.contains("bolt.circle.fill")) << "names go unseen";
    // The table of machines has their symbols second in the innermost braces.
    const Names ofMachines =
        foundIn(contentsOf("src/telemetry/DeviceModel.cpp"), R"re(\{"[^"]*", "([^"]*)"\})re");
    EXPECT_TRUE(ofMachines.contains("laptopcomputer")) << "the table of machines was not understood";
    for (const std::string& name : ofMachines)
        EXPECT_TRUE(symbols.contains(name)) << "the machines' \"" << name << "\" is not drawn";
    EXPECT_TRUE(all.contains(kKept));
    for (const std::string& name : all)
        EXPECT_TRUE(literals.contains(name) || name == kKept) << "nobody uses " << name << ".svg";
}

TEST(Pictures, AreSeenWhereANameIsWritten) {
    const struct {
        const char* word;
        const char* source;
        Names want;
    } cases[] = {
        {"symbol", R"(a(symbol("pin", 3, "label")))", {"pin"}},
        {"symbol", "symbol( // \"old\"\n isOpen ? \"eye\" : f(\"pin\"), \"label\")", {"eye", "pin"}},
        {"symbol", R"(const auto symbolName = "pin"; f("x");)", {"pin"}},
        {"image", R"(DrawImage{"Logo"}; logoImage("x"))", {"Logo", "x"}},
        {"icon", R"(Row{.title = "t", .iconName = "pin", .text = "x"})", {"pin"}},
        {"icon",
         "\nView podIcon(int a) const {\n    if (a == '\"') f(\"x\");\n    return a > 0 ? \"eye\" : "
         "\"pin\";\n}\n"
         "f(\"y\");",
         {"eye", "pin"}},
        {"icon", R"(icon == "x"; /* icon("x") */ iconic("x"); symbols("x"); silicon("x"))", {}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(pictureNamesIn(withoutComments(c.source), c.word), c.want) << c.source;
}

}  // namespace
}  // namespace norvane
