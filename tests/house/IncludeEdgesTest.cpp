#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <regex>

#include "SourceTree.h"

namespace norvane {
namespace {

// Which folders a folder's files may include besides those of their own folder. Main alone may include all.
const std::map<std::string, std::set<std::string>> kPermitted = {
    {"drawing", {}},
    {"platform", {"drawing"}},
    {"platform/linux", {"drawing", "platform"}},
    {"platform/scripted", {"drawing", "platform"}},
    {"preferences", {"drawing", "platform"}},
    {"telemetry", {"drawing", "platform", "preferences"}},
    {"insight", {"drawing", "platform", "preferences", "telemetry"}},
    {"views", {"drawing", "platform"}},
    {"dashboard", {"drawing", "platform", "preferences", "telemetry", "insight", "views"}},
    {"shell", {"drawing", "platform", "preferences", "telemetry", "insight", "views", "dashboard"}},
};

// The only folder that may know the operating system and its libraries.
constexpr const char* kSystemFolder = "platform/linux";

// "platform/linux" for "platform/linux/Lane.h", nothing for "main.cpp".
std::string folderOf(const std::string& file) {
    return std::filesystem::path(file).parent_path().generic_string();
}

// What is wrong with a line of a file, for people to read; empty if it is right or includes nothing. Files
// are written from src/, and `files` are all there are; the file's own header, if it names one, goes to
// `included`.
std::string objectionTo(const std::string& line, const std::string& file, const std::set<std::string>& files,
                        std::set<std::string>* included = nullptr) {
    static const std::regex directive(R"re(^\s*#\s*include\b\s*(?:"([^"]*)"|<([^>]*)>)?.*)re");
    std::smatch parts;
    if (!std::regex_match(line, parts, directive)) return "";
    const std::string from = folderOf(file);
    if (parts[2].matched) {
        const std::string header = parts[2];
        if (files.contains(header)) return "is ours: write it in quotes";
        // The headers of the standard library are those that have no ending.
        const bool isStandard = header.find_first_of("./") == std::string::npos;
        return from == kSystemFolder || isStandard ? "" : "is no header of the standard library";
    }
    const std::string target = parts[1];
    if (!files.contains(target)) return "is not in src/; paths are written from there";
    if (included != nullptr) included->insert(target);
    if (file == "main.cpp") return "";
    const auto permitted = kPermitted.find(from);
    if (permitted == kPermitted.end()) return "stands in a folder that the table of edges does not know";
    const std::string to = folderOf(target);
    return to == from || permitted->second.contains(to) ? "" : from + " may not know " + to;
}

TEST(IncludeEdges, PointDownAndFormNoCircle) {
    std::set<std::string> files;
    for (const std::string& file : sourcesBelow("src"))
        files.insert(file.substr(4));
    ASSERT_TRUE(files.contains("main.cpp") && files.contains("drawing/Rect.h"));
    std::map<std::string, std::set<std::string>> left;  // by file what it includes
    for (const std::string& file : files) {
        std::set<std::string>& included = left[file];
        for (const std::string& line : linesOf(contentsOf("src/" + file)))
            EXPECT_EQ(objectionTo(line, file, files, &included), "") << "src/" << file << ": " << line;
    }
    // Taking away whoever includes none of those that are left ends at the circles.
    const auto leadsOn = [&](const auto& entry) {
        const auto isLeft = [&](const std::string& next) { return left.contains(next); };
        return std::any_of(entry.second.begin(), entry.second.end(), isLeft);
    };
    for (;;) {
        const auto end = std::find_if_not(left.begin(), left.end(), leadsOn);
        if (end == left.end()) break;
        left.erase(end);
    }
    for (const auto& [file, included] : left)
        ADD_FAILURE() << "src/" << file << " is in a circle of includes, or leads to one";
}

TEST(IncludeEdges, AreToldRightFromWrong) {
    const std::set<std::string> files = {"main.cpp",
                                         "drawing/Rect.h",
                                         "platform/Task.h",
                                         "platform/linux/Lane.h",
                                         "platform/scripted/ScriptedMachine.h",
                                         "views/Stack.h",
                                         "telemetry/Tick.h",
                                         "dashboard/RootView.h"};
    const struct {
        const char* file;
        const char* line;
        bool isRight;
    } cases[] = {
        {"drawing/Rect.h", "#include \"platform/Task.h\"", false},
        {"dashboard/X.cpp", "#include \"views/Stack.h\"", true},
        {"shell/X.cpp", "#include \"dashboard/RootView.h\"", true},
        // The sides of the ports
        {"platform/Task.h", "#include \"platform/linux/Lane.h\"", false},
        {"shell/X.cpp", "#include \"platform/scripted/ScriptedMachine.h\"", false},
        {"main.cpp", "#include \"platform/linux/Lane.h\"", true},
        // How a line is written
        {"platform/linux/X.cpp", "#include \"Lane.h\"", false},
        {"views/X.cpp", "  #  include \"telemetry/Tick.h\"  // why", false},
        {"views/X.cpp", "// #include \"telemetry/Tick.h\"", true},
        {"views/X.cpp", "#include <views/Stack.h>", false},
        {"ornaments/X.cpp", "#include \"drawing/Rect.h\"", false},
        // Other people's headers
        {"views/X.cpp", "#include <vector>", true},
        {"views/X.cpp", "#include <unistd.h>", false},
        {"main.cpp", "#include <xcb/xcb.h>", false},
        {"platform/linux/X.cpp", "#include <xcb/xcb.h>", true},
    };
    for (const auto& c : cases)
        EXPECT_EQ(objectionTo(c.line, c.file, files) == "", c.isRight) << c.file << ": " << c.line;
}

}  // namespace
}  // namespace norvane
