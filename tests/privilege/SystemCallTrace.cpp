#include "SystemCallTrace.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace norvane {
namespace {

constexpr std::string_view kUnfinished = " <unfinished ...>";

std::string_view withoutBlanks(std::string_view text) {
    while (text.starts_with(' '))
        text.remove_prefix(1);
    while (text.ends_with(' '))
        text.remove_suffix(1);
    return text;
}

bool isNameLetter(char each) {
    return (each >= 'a' && each <= 'z') || (each >= '0' && each <= '9') || each == '_';
}

// The number that the text begins with, which is taken away from it.
std::optional<int> takeNumber(std::string_view& text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || number < 0) return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return number;
}

// What is between the parentheses, cut at the commas that are in no text, structure or remark. The rest
// begins after the closing parenthesis; none where there is no such one.
struct Arguments {
    std::vector<std::string> list;
    std::string_view rest;
};

std::optional<Arguments> argumentsAt(std::string_view text) {
    Arguments arguments;
    int depth = 0;
    std::size_t begin = 0;
    const auto cut = [&](std::size_t end) {
        const auto argument = withoutBlanks(text.substr(begin, end - begin));
        if (!argument.empty()) arguments.list.emplace_back(argument);
        begin = end + 1;
    };
    for (std::size_t k = 0; k < text.size(); ++k) {
        const char each = text[k];
        if (each == '"') {
            // Up to the end of the text.
            for (++k; k < text.size() && text[k] != '"'; ++k) {
                if (text[k] == '\\') ++k;
            }
        } else if (text.substr(k).starts_with("/*")) {
            k = text.find("*/", k + 2);
            if (k == std::string_view::npos) return std::nullopt;
            ++k;
        } else if (each == '(' || each == '[' || each == '{') {
            ++depth;
        } else if (depth > 0 && (each == ')' || each == ']' || each == '}')) {
            --depth;
        } else if (each == ')') {
            cut(k);
            arguments.rest = text.substr(k + 1);
            return arguments;
        } else if (each == ',' && depth == 0) {
            cut(k);
        }
    }
    return std::nullopt;
}

}  // namespace

std::vector<std::string> SystemCallTrace::Call::texts() const {
    std::vector<std::string> texts;
    for (const std::string& each : arguments) {
        if (each.size() >= 2 && each.front() == '"' && each.back() == '"')
            texts.push_back(each.substr(1, each.size() - 2));
    }
    return texts;
}

bool SystemCallTrace::Call::mentions(std::string_view words) const {
    return std::any_of(arguments.begin(), arguments.end(), [&](const std::string& argument) {
        return argument.find(words) != std::string::npos;
    });
}

SystemCallTrace::SystemCallTrace(std::string_view text) {
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        std::string_view rest = line;
        const auto thread = takeNumber(rest);
        const bool isRead = thread && rest.starts_with(' ') && take(*thread, withoutBlanks(rest));
        if (!isRead) unreadable_.emplace_back(line);
    }
    while (!begun_.empty())
        giveUp(begun_.begin()->first);
}

bool SystemCallTrace::take(int thread, std::string_view line) {
    if (!firstThread_) firstThread_ = thread;
    if (line.starts_with("--- ")) return true;  // a signal
    if (line.starts_with("+++ ")) return takeEnd(thread, line);
    if (line.ends_with(kUnfinished)) {
        line.remove_suffix(kUnfinished.size());
        return begun_.emplace(thread, line).second;
    }
    if (!line.starts_with("<... ")) return add(line);
    auto begun = begun_.extract(thread);
    constexpr std::string_view kResumed = " resumed>";
    const std::size_t mark = line.find(kResumed);
    if (begun.empty() || mark == std::string_view::npos) return false;
    line.remove_prefix(mark + kResumed.size());
    if (line.starts_with(kUnfinished)) line.remove_prefix(kUnfinished.size());
    return add(begun.mapped() + std::string(line));
}

void SystemCallTrace::giveUp(int thread) {
    const auto begun = begun_.extract(thread);
    if (begun.empty()) return;
    if (!add(begun.mapped() + ") = ?")) unreadable_.push_back(begun.mapped());
}

bool SystemCallTrace::takeEnd(int thread, std::string_view line) {
    giveUp(thread);
    if (thread != firstThread_) return true;
    constexpr std::string_view kExited = "+++ exited with ";
    if (line.starts_with(kExited)) {
        line.remove_prefix(kExited.size());
        exitStatus_ = takeNumber(line);
        return exitStatus_.has_value();
    }
    exitStatus_ = -1;
    return true;
}

bool SystemCallTrace::add(std::string_view line) {
    auto call = parse(line);
    if (call) calls_.push_back(std::move(*call));
    return call.has_value();
}

std::optional<SystemCallTrace::Call> SystemCallTrace::parse(std::string_view line) {
    const auto nameEnd = std::find_if_not(line.begin(), line.end(), isNameLetter);
    const auto nameLength = static_cast<std::size_t>(nameEnd - line.begin());
    if (nameLength == 0 || nameEnd == line.end() || *nameEnd != '(') return std::nullopt;
    auto arguments = argumentsAt(line.substr(nameLength + 1));
    if (!arguments) return std::nullopt;
    const std::string_view rest = withoutBlanks(arguments->rest);
    if (!rest.starts_with("= ")) return std::nullopt;
    return Call{.name = std::string(line.substr(0, nameLength)),
                .arguments = std::move(arguments->list),
                .result = std::string(withoutBlanks(rest.substr(2))),
                .line = std::string(line)};
}

}  // namespace norvane
