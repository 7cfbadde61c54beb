#include "platform/linux/OsReleaseName.h"

#include "platform/linux/KernelText.h"

namespace norvane {

namespace {

// What a shell makes of the word, without expanding variables. None where a quote does not end.
std::optional<std::string> unquoted(std::string_view word) {
    std::string result;
    char quote = '\0';
    for (std::size_t k = 0; k < word.size(); ++k) {
        const char byte = word[k];
        if (byte == '\\' && quote != '\'') {
            if (k + 1 == word.size()) return std::nullopt;
            const char next = word[k + 1];
            // Within quotes it stands for itself before anything that means nothing there.
            if (quote == '"' && std::string_view("\"$`\\").find(next) == std::string_view::npos) {
                result += byte;
            }
            result += next;
            ++k;
        } else if (quote != '\0' ? byte == quote : byte == '"' || byte == '\'') {
            quote = quote == '\0' ? byte : '\0';
        } else if (quote == '\0' && (byte == ' ' || byte == '\t')) {
            break;
        } else {
            result += byte;
        }
    }
    if (quote != '\0') return std::nullopt;
    return result;
}

}  // namespace

std::optional<std::string> parseOsReleaseName(std::string_view text) {
    std::optional<std::string> name;
    while (!text.empty()) {
        const std::string_view line = trimmed(takeLine(text));
        constexpr std::string_view kName = "NAME=";
        if (line.starts_with(kName)) name = unquoted(line.substr(kName.size()));
    }
    if (name && name->empty()) return std::nullopt;
    return name;
}

}  // namespace norvane
