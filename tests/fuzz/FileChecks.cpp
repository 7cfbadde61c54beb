#include <glib.h>

#include <algorithm>
#include <array>
#include <memory>

#include "Checks.h"
#include "platform/linux/AutostartEntry.h"
#include "platform/linux/DefaultsFile.h"
#include "platform/Utf8.h"
#include "Property.h"

namespace norvane {
namespace {

void checkDefaultsFile(std::string_view text) {
    const DefaultsMap map = parseDefaults(text);
    DefaultsChanges removals;
    for (const auto& [key, value] : map)
        removals.emplace(key, std::nullopt);
    require(rewriteDefaults(text, {}) == text, "without changes no byte changes");
    require(holdSame(parseDefaults(rewriteDefaults(text, {map.begin(), map.end()})), map),
            "writing what was read changes nothing");
    require(parseDefaults(rewriteDefaults(text, removals)).empty(), "what was removed is gone");
    const DefaultsMap fresh = parseDefaults(rewriteDefaults({}, {map.begin(), map.end()}));
    const auto hasControls = [](const auto& entry) {
        return std::any_of(entry.first.begin(), entry.first.end(),
                           [](char c) { return static_cast<unsigned char>(c) < ' '; });
    };
    DefaultsMap writable = map;
    std::erase_if(writable, hasControls);
    require(holdSame(fresh, writable), "what was read can be written into a new file");

    const std::string all(text);
    for (const std::string& key : {std::string("norvaneNewKey"), all.substr(0, all.find('\n'))}) {
        for (const DefaultsValue& value : std::array<DefaultsValue, 3>{all, true, 1.0 / 3}) {
            const std::string written = rewriteDefaults(text, {{key, value}});
            const DefaultsMap again = parseDefaults(written);
            require(key != "norvaneNewKey" || again.contains(key), "a new key is written");
            DefaultsMap want = map;
            if (again.contains(key)) want.insert_or_assign(key, storable(value));
            require(holdSame(again, want), "what is written is read back, and nothing else changes");
            require(rewriteDefaults(written, {{key, value}}) == written, "the same again changes no byte");
            want.erase(key);
            require(holdSame(parseDefaults(rewriteDefaults(written, {{key, std::nullopt}})), want),
                    "removing it leaves the others");
        }
    }
}

using KeyFile = std::unique_ptr<GKeyFile, decltype(&g_key_file_unref)>;
constexpr const char* kGroup = "Desktop Entry";

// What others would read differently: a line of theirs ends at a NUL, and they step over what is no UTF-8.
bool isOdd(std::string_view text) {
    return text.find('\0') != std::string_view::npos || repairedUtf8(text) != text;
}

// Null where others refuse it.
KeyFile loaded(std::string_view text) {
    KeyFile file(g_key_file_new(), &g_key_file_unref);
    const bool isGood = !isOdd(text) && g_key_file_load_from_data(file.get(), text.data(), text.size(),
                                                                  G_KEY_FILE_NONE, nullptr) != FALSE;
    if (!isGood) file.reset();
    return file;
}

// An entry that the program has written is read by others as it was meant.
void checkEntryStarting(std::string_view program) {
    const auto text = AutostartEntry::textStarting(program);
    const bool canBeNamed =
        program.starts_with('/') && program.find('=') == std::string_view::npos && !isOdd(program);
    require(text || !canBeNamed, "only what no entry can name is refused");
    if (!text) return;
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

void checkAutostartEntry(std::string_view text) {
    const AutostartEntry entry = AutostartEntry::parse(text);
    require(AutostartEntry::parse(amongUnknownLines(text)) == entry, "unknown lines are passed over");
    require(AutostartEntry::parse(joined(text, "\n[norvane]\nHidden=true\nExec=x\n")) == entry,
            "other groups do not count");
    require(!AutostartEntry::parse(joined(text, "\n[Desktop Entry]\nHidden=true\n"))
                 .isStarted({}, [](const std::string&) { return true; }),
            "whatever is deleted is not started");

    if (const KeyFile file = loaded(text)) {
        GError* failure = nullptr;
        const bool isHidden = g_key_file_get_boolean(file.get(), kGroup, "Hidden", &failure) != FALSE;
        require(failure != nullptr || entry.isDeleted == isHidden,
                "others say the same of a well-formed key");
        g_clear_error(&failure);
    }
    checkEntryStarting(text);
    checkEntryStarting(joined('/', text));
}

}  // namespace

Checks fileChecks() {
    return {{"AutostartEntry", checkAutostartEntry}, {"DefaultsFile", checkDefaultsFile}};
}

}  // namespace norvane
