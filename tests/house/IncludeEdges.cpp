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

const std::set<std::string> kStandardHeaders = {
    "algorithm",
    "any",
    "array",
    "atomic",
    "barrier",
    "bit",
    "bitset",
    "cassert",
    "cctype",
    "cerrno",
    "cfenv",
    "cfloat",
    "charconv",
    "chrono",
    "cinttypes",
    "climits",
    "clocale",
    "cmath",
    "codecvt",
    "compare",
    "complex",
    "concepts",
    "condition_variable",
    "coroutine",
    "csetjmp",
    "csignal",
    "cstdarg",
    "cstddef",
    "cstdint",
    "cstdio",
    "cstdlib",
    "cstring",
    "ctime",
    "cuchar",
    "cwchar",
    "cwctype",
    "deque",
    "exception",
    "execution",
    "filesystem",
    "format",
    "forward_list",
    "fstream",
    "functional",
    "future",
    "initializer_list",
    "iomanip",
    "ios",
    "iosfwd",
    "iostream",
    "istream",
    "iterator",
    "latch",
    "limits",
    "list",
    "locale",
    "map",
    "memory",
    "memory_resource",
    "mutex",
    "new",
    "numbers",
    "numeric",
    "optional",
    "ostream",
    "queue",
    "random",
    "ranges",
    "ratio",
    "regex",
    "scoped_allocator",
    "semaphore",
    "set",
    "shared_mutex",
    "source_location",
    "span",
    "sstream",
    "stack",
    "stdexcept",
    "stop_token",
    "streambuf",
    "string",
    "string_view",
    "syncstream",
    "system_error",
    "thread",
    "tuple",
    "type_traits",
    "typeindex",
    "typeinfo",
    "unordered_map",
    "unordered_set",
    "utility",
    "valarray",
    "variant",
    "vector",
    "version",
};

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
        if (from == kSystemFolder || kStandardHeaders.contains(include.target)) return std::nullopt;
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

std::vector<std::string> circleIn(const std::map<std::string, std::set<std::string>>& includedBy) {
    enum class State { unseen, onTheWay, done };
    struct Walk {
        const std::map<std::string, std::set<std::string>>& edges;
        std::map<std::string, State> states{};
        std::vector<std::string> way{};

        // Whether a circle was found; it is then the end of the way.
        bool visit(const std::string& file) {
            State& state = states[file];
            if (state == State::done) return false;
            way.push_back(file);
            if (state == State::onTheWay) return true;
            state = State::onTheWay;
            if (const auto found = edges.find(file); found != edges.end()) {
                for (const std::string& next : found->second) {
                    if (visit(next)) return true;
                }
            }
            states[file] = State::done;
            way.pop_back();
            return false;
        }
    };
    Walk walk{includedBy};
    for (const auto& [file, included] : includedBy) {
        if (!walk.visit(file)) continue;
        return {std::find(walk.way.begin(), walk.way.end(), walk.way.back()), walk.way.end()};
    }
    return {};
}

}  // namespace norvane
