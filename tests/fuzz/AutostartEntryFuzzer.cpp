#include <glib.h>

#include <memory>

#include "platform/linux/AutostartEntry.h"
#include "platform/Utf8.h"
#include "Property.h"

namespace norvane {
namespace {

using KeyFile = std::unique_ptr<GKeyFile, decltype(&g_key_file_unref)>;

constexpr const char* kGroup = "Desktop Entry";

std::string withCarriageReturns(std::string_view text) {
    std::string result;
    for (const char each : text) {
        if (each == '\n') result += '\r';
        result += each;
    }
    return result;
}

// Null where others refuse it, or read something else: a line of theirs ends at a null byte, and they step
// over what is no UTF-8.
KeyFile loaded(std::string_view text) {
    KeyFile file(nullptr, &g_key_file_unref);
    if (text.find('\0') != std::string_view::npos || repairedUtf8(text) != text) return file;
    file.reset(g_key_file_new());
    if (g_key_file_load_from_data(file.get(), text.data(), text.size(), G_KEY_FILE_NONE, nullptr) == FALSE)
        file.reset();
    return file;
}

// An entry that the program has written is read by others as it was meant.
void checkWriting(std::string_view program) {
    const auto text = AutostartEntry::textStarting(program);
    if (!text) {
        require(program.substr(0, 1) != "/" || program.find('=') != std::string_view::npos ||
                    program.find('\0') != std::string_view::npos || repairedUtf8(program) != program,
                "only what no entry can name is refused");
        return;
    }
    const AutostartEntry entry = AutostartEntry::parse(*text);
    require(entry.isStarted({}, [](const std::string&) { return false; }), "what is written is started");

    const KeyFile file = loaded(*text);
    require(file != nullptr, "others can read it");
    const std::unique_ptr<gchar, decltype(&g_free)> exec(
        g_key_file_get_string(file.get(), kGroup, "Exec", nullptr), &g_free);
    require(exec != nullptr && entry.exec == exec.get(), "they find the same command line");
    gchar** parts = nullptr;
    require(g_shell_parse_argv(exec.get(), nullptr, &parts, nullptr) != FALSE, "which can be taken apart");
    const std::unique_ptr<gchar*, decltype(&g_strfreev)> owner(parts, &g_strfreev);
    require(parts[1] == nullptr, "it has no arguments");
    std::string named;
    for (const char* each = parts[0]; *each != '\0'; ++each) {
        if (*each == '%') require(*++each == '%', "it has no field codes");
        named += *each;
    }
    require(named == program, "it is the program");
}

}  // namespace

void check(std::string_view text) {
    const AutostartEntry entry = AutostartEntry::parse(text);
    require(AutostartEntry::parse(amongUnknownLines(text)) == entry, "unknown lines are passed over");
    require(AutostartEntry::parse(withCarriageReturns(text)) == entry,
            "the kind of line ends does not count");
    require(AutostartEntry::parse(std::string(text) + "\n[norvane]\nHidden=true\nExec=x\n") == entry,
            "other groups do not count");
    require(!AutostartEntry::parse(std::string(text) + "\n[Desktop Entry]\nHidden=true\n")
                 .isStarted({}, [](const std::string&) { return true; }),
            "whatever is deleted is not started");

    if (const KeyFile file = loaded(text)) {
        GError* failure = nullptr;
        const bool isHidden = g_key_file_get_boolean(file.get(), kGroup, "Hidden", &failure) != FALSE;
        require(failure != nullptr || entry.isDeleted == isHidden,
                "others say the same of a well-formed key");
        g_clear_error(&failure);
    }
    checkWriting(text);
    checkWriting('/' + std::string(text));
}

}  // namespace norvane
