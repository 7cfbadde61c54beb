#include "platform/linux/AutostartEntry.h"

#include <algorithm>

#include "platform/linux/KernelText.h"
#include "platform/Utf8.h"

namespace norvane {
namespace {

constexpr std::string_view kHeading = "[Desktop Entry]";
constexpr std::string_view kEntryBlanks = " \t\r\v\f";

std::optional<bool> booleanOf(std::string_view value) {
    // Entries from before version 1.0 have digits.
    if (value == "true" || value == "1") return true;
    if (value == "false" || value == "0") return false;
    return std::nullopt;
}

// The character that a backslash and this one stand for; 0 for none.
char unescaped(char letter) {
    switch (letter) {
        case 's':
            return ' ';
        case 'n':
            return '\n';
        case 't':
            return '\t';
        case 'r':
            return '\r';
        case '\\':
            return '\\';
        default:
            return 0;
    }
}

std::string stringOf(std::string_view value) {
    std::string text;
    for (std::size_t k = 0; k < value.size(); ++k) {
        const char meant = value[k] == '\\' && k + 1 < value.size() ? unescaped(value[k + 1]) : '\0';
        text += meant != 0 ? meant : value[k];
        if (meant != 0) ++k;
    }
    return text;
}

// Parts end with a semicolon, the last one perhaps without; empty ones name nothing.
std::vector<std::string> listOf(std::string_view value) {
    std::vector<std::string> parts;
    std::string part;
    const auto finish = [&] {
        if (!part.empty()) parts.push_back(std::move(part));
        part.clear();
    };
    for (std::size_t k = 0; k < value.size(); ++k) {
        if (value[k] == ';') {
            finish();
        } else if (value[k] == '\\' && k + 1 < value.size()) {
            const char next = value[++k];
            const char meant = next == ';' ? ';' : unescaped(next);
            if (meant == 0) part += '\\';
            part += meant != 0 ? meant : next;
        } else {
            part += value[k];
        }
    }
    finish();
    return parts;
}

bool isIn(const std::vector<std::string>& list, const std::string& name) {
    return std::find(list.begin(), list.end(), name) != list.end();
}

// A program of a command line in its quotes, and that as the value of a key: two layers of backslashes.
std::string quoted(std::string_view program) {
    std::string value = "\"";
    for (const char each : program) {
        switch (each) {
            case '"':
            case '`':
            case '$':
                value += R"(\\)";
                value += each;
                break;
            case '\\':
                value += R"(\\\\)";
                break;
            case '%':
                value += "%%";
                break;
            case '\n':
                value += "\\n";
                break;
            case '\t':
                value += "\\t";
                break;
            case '\r':
                value += "\\r";
                break;
            default:
                value += each;
        }
    }
    return value + '"';
}

std::string beginning() {
    std::string text(kHeading);
    text += "\nType=Application\nName=Norvane\n";
    return text;
}

}  // namespace

AutostartEntry AutostartEntry::parse(std::string_view text) {
    AutostartEntry entry;
    // Of each desktop's own key the last one counts, whatever the other one says.
    bool isOffInGnome = false;
    bool isOffInMate = false;
    bool isInside = false;
    while (!text.empty()) {
        const auto end = text.find('\n');
        const std::string_view line = trimmed(text.substr(0, end), kEntryBlanks);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (line.empty() || line.front() == '#') continue;
        if (line.front() == '[') {
            isInside = line == kHeading;
            continue;
        }
        const auto equals = line.find('=');
        if (!isInside || equals == std::string_view::npos) continue;
        const std::string_view key = trimmed(line.substr(0, equals), kEntryBlanks);
        const std::string_view value = trimmed(line.substr(equals + 1), kEntryBlanks);
        const auto boolean = booleanOf(value);
        if (key == "Type") {
            entry.isApplication = value == "Application";
        } else if (key == "Exec") {
            entry.exec = stringOf(value);
        } else if (key == "TryExec") {
            entry.tryExec = stringOf(value);
        } else if (key == "OnlyShowIn") {
            entry.onlyShowIn = listOf(value);
        } else if (key == "NotShowIn") {
            entry.notShowIn = listOf(value);
        } else if (key == "Hidden") {
            entry.isDeleted = boolean == true;
        } else if (key == "X-GNOME-Autostart-enabled") {
            isOffInGnome = boolean == false;
        } else if (key == "X-MATE-Autostart-enabled") {
            isOffInMate = boolean == false;
        }
    }
    entry.isSwitchedOffByKey = isOffInGnome || isOffInMate;
    return entry;
}

bool AutostartEntry::isStarted(const std::vector<std::string>& desktops,
                               const std::function<bool(const std::string&)>& isProgram) const {
    if (!isApplication || exec.empty()) return false;  // nothing that could be started
    if (isDeleted || isSwitchedOffByKey || !isShownOn(desktops)) return false;
    return tryExec.empty() || isProgram(tryExec);
}

// The first desktop that one of the lists has decides.
bool AutostartEntry::isShownOn(const std::vector<std::string>& desktops) const {
    for (const std::string& each : desktops) {
        if (onlyShowIn && isIn(*onlyShowIn, each)) return true;
        if (isIn(notShowIn, each)) return false;
    }
    return !onlyShowIn;
}

std::optional<std::string> AutostartEntry::textStarting(std::string_view program) {
    const bool canBeNamed = program.substr(0, 1) == "/" && program.find('=') == std::string_view::npos &&
                            program.find('\0') == std::string_view::npos && repairedUtf8(program) == program;
    if (!canBeNamed) return std::nullopt;
    return beginning() + "Exec=" + quoted(program) + "\nX-GNOME-Autostart-enabled=true\n";
}

std::string AutostartEntry::deletedText() {
    return beginning() + "Hidden=true\n";
}

}  // namespace norvane
