#include "PictureNames.h"

#include <gtest/gtest.h>

#include <regex>

#include "SourceTree.h"

namespace norvane {
namespace {

using Names = std::set<std::string>;

// Drawn, and not asked for by any source: what the desktop shows.
const Names kKept = {
    "NorvaneIcon",  // the program's own, in menus and settings
};

Names drawn(const std::string& folder) {
    Names names;
    for (const std::string& file : filesBelow("resources/" + folder)) {
        names.insert(std::filesystem::path(file).stem().string());
    }
    return names;
}

// The sources that choose pictures. The Linux side paints what it is told to.
std::vector<std::string> choosingSources() {
    std::vector<std::string> sources;
    for (const std::string& file : filesBelow("src")) {
        const bool isSource = file.ends_with(".h") || file.ends_with(".cpp");
        if (isSource && !file.starts_with("src/platform/linux/")) sources.push_back(file);
    }
    return sources;
}

// The second literals in the innermost braces of a table of machines: their symbols.
Names machineSymbolsIn(const std::string& table) {
    static const std::regex row(R"re(\{"[^"]*", "([^"]*)"\})re");
    Names names;
    for (std::sregex_iterator found(table.begin(), table.end(), row), end; found != end; ++found) {
        names.insert((*found)[1]);
    }
    return names;
}

TEST(PictureNames, AllHaveTheirPictures) {
    const Names symbols = drawn("symbols");
    const Names images = drawn("images");
    ASSERT_TRUE(symbols.contains("pin") && images.contains("NorvaneLogo"));
    const auto expect = [&](const Names& names, const std::string& file, bool maySymbol, bool mayImage) {
        for (const std::string& name : names) {
            EXPECT_TRUE((maySymbol && symbols.contains(name)) || (mayImage && images.contains(name)))
                << file << " asks for \"" << name << "\", which is not drawn";
        }
    };
    Names seen;
    for (const std::string& file : choosingSources()) {
        const PictureNames names = pictureNamesIn(contentsOf(file));
        expect(names.symbols, file, true, false);
        expect(names.images, file, false, true);
        expect(names.icons, file, true, true);
        seen.insert(names.icons.begin(), names.icons.end());
    }
    EXPECT_TRUE(seen.contains("bolt.circle") && seen.contains("bolt.circle.fill")) << "names go unseen";

    const std::string machines = "src/telemetry/DeviceModel.cpp";
    const Names machineSymbols = machineSymbolsIn(contentsOf(machines));
    EXPECT_TRUE(machineSymbols.contains("laptopcomputer")) << "the table of machines was not understood";
    expect(machineSymbols, machines, true, false);
}

TEST(Pictures, AreAllUsedOrKeptOnPurpose) {
    Names literals;
    for (const std::string& file : choosingSources())
        literals.merge(literalsIn(contentsOf(file)));
    Names all = drawn("symbols");
    all.merge(drawn("images"));
    for (const std::string& name : all) {
        EXPECT_TRUE(literals.contains(name) || kKept.contains(name)) << "nobody uses " << name << ".svg";
    }
    for (const std::string& name : kKept)
        EXPECT_TRUE(all.contains(name)) << name << " is kept and not drawn";
}

TEST(PictureNamesCheck, SeesWhereANameIsWritten) {
    struct Case {
        const char* source;
        Names symbols;
        Names images;
        Names icons;
    };
    for (const Case& c : {
             Case{R"(a(symbol("pin", 3, "label")))", {"pin"}, {}, {}},
             Case{"symbol( // \"old\"\n isOpen ? \"eye\" : f(\"pin\"), \"label\")", {"eye", "pin"}, {}, {}},
             Case{R"(const auto symbolName = "pin"; f("x");)", {"pin"}, {}, {}},
             Case{R"(DrawImage{"Logo"}; logoImage("x"))", {}, {"Logo", "x"}, {}},
             Case{R"(Row{.title = "t", .iconName = "pin", .text = "x"})", {}, {}, {"pin"}},
             Case{R"(row.icon_ = isOpen ? "eye" : "pin";)", {}, {}, {"eye", "pin"}},
             Case{"\nView podIcon(int a) const {\n    if (a == '\"') f(\"x\");\n"
                  "    return a > 0 ? \"eye\" : \"pin\";\n}\nf(\"y\");",
                  {},
                  {},
                  {"eye", "pin"}},
             Case{R"(icon == "x"; /* icon("x") */ iconic("x"); symbols("x"); silicon("x"))", {}, {}, {}},
         }) {
        const PictureNames names = pictureNamesIn(c.source);
        EXPECT_EQ(names.symbols, c.symbols) << c.source;
        EXPECT_EQ(names.images, c.images) << c.source;
        EXPECT_EQ(names.icons, c.icons) << c.source;
    }
    EXPECT_EQ(literalsIn(R"(f("a\"b", 'c', "d") // "e")"), (Names{"a\\\"b", "d"}));
    EXPECT_EQ(machineSymbolsIn(R"(Row{"A", {"An A", "a.fill"}}; Model k{"B", "b"};)"),
              (Names{"a.fill", "b"}));
}

}  // namespace
}  // namespace norvane
