#include "IncludeEdges.h"

#include <algorithm>
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

// The headers of the standard library are those that have no ending.
bool isStandard(const std::string& header) {
    return header.find_first_of("./") == std::string::npos;
}

// "platform/linux" for "platform/linux/Lane.h", nothing for "main.cpp".
std::string folderOf(const std::string& file) {
    const std::size_t slash = file.rfind('/');
    return slash == std::string::npos ? "" : file.substr(0, slash);
}

}  // namespace

std::vector<Include> includesOf(const std::string& file, const std::string& text) {
    static const std::regex directive(R"re(^\s*#\s*include\b\s*(?:"([^"]*)"|<([^>]*)>)?.*)re");
    std::vector<Include> includes;
    std::size_t number = 0;
    for (const std::string& line : linesOf(text)) {
        ++number;
        std::smatch parts;
        if (!std::regex_match(line, parts, directive)) continue;
        includes.push_back({file, number, parts[1].matched ? parts[1] : parts[2], parts[1].matched});
    }
    return includes;
}

std::optional<std::string> objectionTo(const Include& include, const std::set<std::string>& files) {
    const std::string from = folderOf(include.file);
    if (include.target.empty()) return "names no file";
    if (!include.isQuoted) {
        if (files.contains(include.target)) return "is ours: write it in quotes";
        if (from == kSystemFolder || isStandard(include.target)) return std::nullopt;
        return "is no header of the standard library";
    }
    if (!files.contains(include.target)) return "is not in src/; paths are written from there";

    if (include.file == "main.cpp") return std::nullopt;
    const auto permitted = kPermitted.find(from);
    if (permitted == kPermitted.end()) return "stands in a folder that the table of edges does not know";
    const std::string to = folderOf(include.target);
    if (to == from || permitted->second.contains(to)) return std::nullopt;
    return from + " may not know " + (to.empty() ? "main" : to);
}

std::set<std::string> filesInCircles(std::map<std::string, std::set<std::string>> included) {
    const auto leadsOn = [&](const auto& file) {
        return std::any_of(file.second.begin(), file.second.end(),
                           [&](const std::string& next) { return included.contains(next); });
    };
    for (;;) {
        const auto end = std::find_if_not(included.begin(), included.end(), leadsOn);
        if (end == included.end()) break;
        included.erase(end);
    }
    std::set<std::string> left;
    for (const auto& [file, others] : included)
        left.insert(file);
    return left;
}

}  // namespace norvane
