#include <gtest/gtest.h>

#include "IncludeEdges.h"
#include "SourceTree.h"

namespace norvane {
namespace {

std::vector<std::string> sources() {
    std::vector<std::string> sources;
    for (const std::string& file : filesBelow("src")) {
        if (file.ends_with(".h") || file.ends_with(".cpp")) sources.push_back(file.substr(4));
    }
    return sources;
}

TEST(IncludeEdges, AllPointDown) {
    const std::vector<std::string> all = sources();
    const std::set<std::string> files(all.begin(), all.end());
    ASSERT_TRUE(files.contains("main.cpp") && files.contains("drawing/Rect.h"));
    for (const std::string& file : files) {
        for (const Include& include : includesOf(file, contentsOf("src/" + file))) {
            const std::optional<std::string> objection = objectionTo(include, files);
            EXPECT_FALSE(objection) << "src/" << file << ':' << include.line << ": \"" << include.target
                                    << "\" " << *objection;
        }
    }
}

TEST(IncludeEdges, FormNoCircle) {
    std::map<std::string, std::set<std::string>> included;
    for (const std::string& file : sources()) {
        for (const Include& include : includesOf(file, contentsOf("src/" + file))) {
            if (include.isQuoted) included[file].insert(include.target);
        }
    }
    EXPECT_EQ(filesInCircles(included), std::set<std::string>{});
}

TEST(IncludeEdgesCheck, KnowsRightFromWrong) {
    const std::set<std::string> files = {
        "main.cpp",           "drawing/Rect.h",        "platform/Task.h",
        "platform/Sysctl.h",  "platform/linux/Lane.h", "platform/scripted/ScriptedMachine.h",
        "views/Stack.h",      "telemetry/Tick.h",      "insight/StatusLine.h",
        "shell/Controller.h", "dashboard/RootView.h",  "preferences/PreferencesStore.h"};
    struct Case {
        const char* file;
        const char* line;
        bool isRight;
    };
    for (const Case& c : {
             Case{"platform/Sysctl.h", "#include \"platform/Task.h\"", true},
             Case{"drawing/Rect.h", "#include \"platform/Task.h\"", false},
             Case{"preferences/X.cpp", "#include \"telemetry/Tick.h\"", false},
             Case{"telemetry/X.cpp", "#include \"preferences/PreferencesStore.h\"", true},
             Case{"insight/X.cpp", "#include \"dashboard/RootView.h\"", false},
             Case{"dashboard/X.cpp", "#include \"views/Stack.h\"", true},
             Case{"dashboard/X.cpp", "#include \"shell/Controller.h\"", false},
             Case{"shell/X.cpp", "#include \"dashboard/RootView.h\"", true},
             Case{"views/X.cpp", "#include \"preferences/PreferencesStore.h\"", false},
             // The sides of the ports
             Case{"platform/Task.h", "#include \"platform/linux/Lane.h\"", false},
             Case{"shell/X.cpp", "#include \"platform/linux/Lane.h\"", false},
             Case{"shell/X.cpp", "#include \"platform/scripted/ScriptedMachine.h\"", false},
             Case{"platform/linux/X.cpp", "#include \"platform/scripted/ScriptedMachine.h\"", false},
             Case{"main.cpp", "#include \"platform/linux/Lane.h\"", true},
             Case{"shell/X.cpp", "#include \"main.cpp\"", false},
             // How a line is written
             Case{"platform/linux/X.cpp", "#include \"Lane.h\"", false},
             Case{"platform/linux/X.cpp", "#include \"../Sysctl.h\"", false},
             Case{"platform/linux/X.cpp", "  #  include \"platform/linux/Lane.h\"  // why", true},
             Case{"views/X.cpp", "#  include \"telemetry/Tick.h\"  // why", false},
             Case{"views/X.cpp", "#include <views/Stack.h>", false},
             Case{"views/X.cpp", "#include \"views/Gone.h\"", false},
             Case{"views/X.cpp", "#include THE_FILE", false},
             Case{"ornaments/X.cpp", "#include \"drawing/Rect.h\"", false},
             // Other people's headers
             Case{"views/X.cpp", "#include <vector>", true},
             Case{"views/X.cpp", "#include <unistd.h>", false},
             Case{"main.cpp", "#include <xcb/xcb.h>", false},
             Case{"platform/linux/X.cpp", "#include <xcb/xcb.h>", true},
         }) {
        const std::vector<Include> includes = includesOf(c.file, std::string("// Copies.\n") + c.line + "\n");
        ASSERT_EQ(includes.size(), 1U) << c.line;
        EXPECT_EQ(includes[0].line, 2U);
        EXPECT_EQ(!objectionTo(includes[0], files), c.isRight) << c.file << ": " << c.line;
    }
    EXPECT_TRUE(includesOf("views/X.cpp", "// #include \"telemetry/Tick.h\"\nint includes = 3;\n").empty());
}

TEST(IncludeEdgesCheck, FindsTheCircle) {
    using Files = std::set<std::string>;
    EXPECT_EQ(filesInCircles({{"a", {"b", "c"}}, {"b", {"d"}}, {"c", {"d"}}}), Files{});
    EXPECT_EQ(filesInCircles({{"a", {"b", "d"}}, {"b", {"c"}}, {"c", {"b"}}, {"e", {"e"}}}),
              (Files{"a", "b", "c", "e"}));
}

}  // namespace
}  // namespace norvane
