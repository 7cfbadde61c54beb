#include <gtest/gtest.h>

#include <optional>
#include <regex>
#include <set>

#include "SourceTree.h"

namespace norvane {
namespace {

// What is untidy about a text file, for people to read; none if nothing is.
std::optional<std::string> untidiness(const std::string& text) {
    if (text.find('\0') != std::string::npos) return std::nullopt;  // a picture or the like
    if (text.find('\t') != std::string::npos) return "has a tab";
    if (text.find('\r') != std::string::npos) return "has a carriage return";
    if (text.find(" \n") != std::string::npos) return "has a trailing blank";
    if (!text.empty() && !text.ends_with('\n')) return "does not end with a line feed";
    if (text.ends_with("\n\n")) return "ends with an empty line";
    return std::nullopt;
}

TEST(Hygiene, NoFileIsUntidyAndNoHeaderReadTwice) {
    const std::vector<std::string> files = filesBelow("");
    ASSERT_FALSE(files.empty());
    for (const std::string& file : files) {
        const std::string text = contentsOf(file);
        const std::optional<std::string> found = untidiness(text);
        EXPECT_FALSE(found) << file << ' ' << *found;
        EXPECT_TRUE(!file.ends_with(".h") || text.starts_with("#pragma once\n")) << file;
    }
}

TEST(HygieneCheck, NoticesWhatIsUntidy) {
    EXPECT_FALSE(untidiness(""));
    EXPECT_FALSE(untidiness("a b\n\nc\n"));
    EXPECT_FALSE(untidiness(std::string("picture\0 \n\t", 11)));
    for (const char* text : {"a\tb\n", "a \n", "a\r\n", "a", "a\n\n", "a\n \n"})
        EXPECT_TRUE(untidiness(text)) << text;
}

// A sanitizer is told to overlook a library of somebody else, or one function of it; never anything of ours.
bool isAboutSomebodyElse(const std::string& suppression) {
    static const std::regex pattern(
        R"((leak|race|deadlock|mutex|signal|thread|called_from_lib):(libfontconfig|libfreetype|libpango|libcairo|libpixman|libharfbuzz|libglib|libgobject|libgio|libxcb|Fc|pango_|cairo_|hb_|g_)[A-Za-z0-9_.-]*)");
    return std::regex_match(suppression, pattern);
}

TEST(Suppressions, NameOtherPeoplesLibrariesOnly) {
    for (const std::string& file : filesBelow("tools/sanitizers")) {
        for (const std::string& line : linesOf(contentsOf(file))) {
            if (line.empty() || line.starts_with('#')) continue;
            EXPECT_TRUE(isAboutSomebodyElse(line)) << file << ": " << line;
        }
    }
}

TEST(SuppressionsCheck, NoticesOneOfOurs) {
    for (const char* right :
         {"leak:libfontconfig.so", "leak:FcConfigParse", "called_from_lib:libglib-2.0.so"}) {
        EXPECT_TRUE(isAboutSomebodyElse(right)) << right;
    }
    for (const char* wrong : {"leak:norvane", "race:norvane::Lane::run", "race:*", "leak:lib", "leak:",
                              "race:std::", "race:src/platform/linux", "leak:libfontconfig.so*norvane"}) {
        EXPECT_FALSE(isAboutSomebodyElse(wrong)) << wrong;
    }
}

}  // namespace
}  // namespace norvane
