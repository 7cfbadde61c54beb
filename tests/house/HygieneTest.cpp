#include <gtest/gtest.h>

#include <regex>

#include "SourceTree.h"

namespace norvane {
namespace {

// What is untidy about a text file, for people to read; empty if nothing is.
std::string untidiness(const std::string& text) {
    if (text.find('\0') != std::string::npos) return "";  // a picture or the like
    if (text.find('\t') != std::string::npos) return "has a tab";
    if (text.find('\r') != std::string::npos) return "has a carriage return";
    if (text.find(" \n") != std::string::npos) return "has a trailing blank";
    if (!text.empty() && !text.ends_with('\n')) return "does not end with a line feed";
    return text.ends_with("\n\n") ? "ends with an empty line" : "";
}

TEST(Hygiene, NoFileIsUntidyAndNoHeaderReadTwice) {
    for (const char* text : {"a\tb\n", "a \n", "a\r\n", "a", "a\n\n", "a\n \n"})
        EXPECT_NE(untidiness(text), "") << text;
    const std::set<std::string> files = filesBelow("");
    ASSERT_TRUE(files.contains("dev"));
    for (const std::string& file : files) {
        const std::string text = contentsOf(file);
        EXPECT_EQ(untidiness(text), "") << file;
        EXPECT_TRUE(!file.ends_with(".h") || text.starts_with("#pragma once\n")) << file;
    }
}

// A sanitizer is told to overlook a library of somebody else, or one function of it; never anything of ours.
bool isAboutSomebodyElse(const std::string& suppression) {
    static const std::regex pattern(
        "(leak|race|deadlock|mutex|signal|thread|called_from_lib):"
        "(lib(fontconfig|freetype|pango|cairo|pixman|harfbuzz|glib|gobject|gio|xcb)|Fc|pango_|cairo_|hb_|g_)"
        "[A-Za-z0-9_.-]*");
    return std::regex_match(suppression, pattern);
}

TEST(Suppressions, NameOtherPeoplesLibrariesOnly) {
    for (const char* wrong : {"leak:norvane", "race:norvane::Lane::run", "race:*", "leak:lib",
                              "race:std::", "race:src/platform/linux", "leak:libfontconfig.so*norvane"})
        EXPECT_FALSE(isAboutSomebodyElse(wrong)) << wrong;
    for (const std::string& file : filesBelow("tools/sanitizers")) {
        for (const std::string& line : linesOf(contentsOf(file)))
            EXPECT_TRUE(line.empty() || line.starts_with('#') || isAboutSomebodyElse(line))
                << file << ": " << line;
    }
}

// The Debian packages that ./dev lists, in lines such as `build_packages=(g++ cmake)`; a list may go on over
// several lines.
TEST(Dependencies, EachHasAReason) {
    const std::string reasons = contentsOf("docs/dependencies.md");
    std::set<std::string> packages;
    for (const std::string& list : foundIn(contentsOf("dev"), R"(\n[a-z]+_packages=\(([^)]*)\))"))
        packages.merge(foundIn(list, R"((\S+))"));
    ASSERT_TRUE(packages.contains("g++") && packages.contains("libglib2.0-dev"))
        << "the lists were read wrongly";
    for (const std::string& package : packages)
        EXPECT_NE(reasons.find('`' + package + '`'), std::string::npos)
            << "there is no word about " << package;
}

}  // namespace
}  // namespace norvane
