#include <glib.h>

#include <algorithm>
#include <memory>

#include "Checks.h"
#include "platform/linux/EscapedText.h"
#include "platform/linux/KernelText.h"
#include "platform/linux/NotificationText.h"
#include "platform/linux/XSettings.h"
#include "platform/Utf8.h"
#include "Property.h"

namespace norvane {
namespace {

void checkKernelText(std::string_view text) {
    std::string together;
    for (std::string_view rest = text; !rest.empty();)
        together += joined(takeLine(rest), '\n');
    require(together == text || together == joined(text, '\n'), "the lines together are the text");

    std::string_view rest = text;
    together.clear();
    for (std::string_view word = takeWord(rest); !word.empty(); word = takeWord(rest))
        together += word;
    std::string want(text);
    std::erase_if(want, [](char byte) { return byte == ' ' || byte == '\t'; });
    require(rest.empty() && together == want, "the words together are the text without its blanks");

    rest = text;
    const auto number = takeNumber(rest);
    require(number ? rest.size() < text.size() : rest == text, "what is no number stays");
    const auto withSign = parseSignedNumber(text);
    require(!withSign || parseSignedNumber(std::to_string(*withSign)) == withSign,
            "a number survives printing");
    const auto after = numberAfter("cpu", text, 4000);
    require(!after || (text.starts_with("cpu") && *after <= 4000), "a name's number is within its bound");

    const std::string line = collapsed(text);
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; };
    require(line.find("  ") == std::string::npos && std::none_of(line.begin(), line.end(), isControl),
            "there is one blank between two words, and no control byte");
    require(collapsed(line) == line && trimmed(line) == line, "what is collapsed stays as it is");
}

void checkEscapedText(std::string_view text) {
    std::string octal;
    std::string hexadecimal;
    for (const char each : text) {
        constexpr std::string_view kDigits = "0123456789abcdef";
        const auto byte = static_cast<unsigned char>(each);
        octal += {'\\', kDigits[byte / 64], kDigits[byte / 8 % 8], kDigits[byte % 8]};
        hexadecimal += {'\\', 'x', kDigits[byte / 16], kDigits[byte % 16]};
    }
    const bool hasNull = text.find('\0') != std::string_view::npos;
    require(hasNull || (decodedOctal(octal) == text && decodedHex(hexadecimal) == text),
            "every byte can be escaped");
    for (const std::string& decoded : {decodedOctal(text), decodedHex(text)}) {
        require(decoded.size() <= text.size(), "decoding makes no text longer");
        require(hasNull || decoded.find('\0') == std::string::npos, "decoding makes no NULs");
        require(text.find('\\') != std::string_view::npos || decoded == text, "plain text stays as it is");
    }
}

void checkNotificationText(std::string_view text) {
    std::string shown = escapedMarkup(text);
    require(shown.find_first_of("<>") == std::string::npos, "no text is markup");
    for (std::size_t at = shown.find('&'); at != std::string::npos; at = shown.find('&', at + 1)) {
        const std::string entity = shown.substr(at, shown.find(';', at) - at + 1);
        require(entity == "&amp;" || entity == "&lt;" || entity == "&gt;", "an ampersand begins an entity");
        shown.replace(at, entity.size(), entity == "&amp;" ? "&" : entity == "&lt;" ? "<" : ">");
    }
    require(shown == text, "it is shown as it was");

    // What comes from a peer may be anything but a NUL, and has its name before it.
    const std::string message(text.substr(0, text.find('\0')));
    for (const GQuark domain : {G_DBUS_ERROR, G_IO_ERROR}) {
        const std::unique_ptr<GError, decltype(&g_error_free)> error(
            g_error_new_literal(domain, 0, message.c_str()), &g_error_free);
        const std::string described = describedError(*error);
        require(!described.empty() && described.size() <= 500, "a description has a bounded length");
        require(described.find('\n') == std::string::npos, "it is one line");
        require(repairedUtf8(described) == described, "of valid UTF-8");
    }
}

void checkXSettings(std::string_view text) {
    const XSettings settings = parseXSettings(text);
    if (settings == XSettings{}) return;
    require(text.find("Gtk/EnableAnimations") != std::string_view::npos || !settings.reducesMotion,
            "somebody has said that nothing moves");
    require(parseXSettings(joined(text, "more")) == settings, "what follows doesn't matter");
    for (const std::size_t size : {text.size() - 1, text.size() / 2}) {
        const XSettings less = parseXSettings(text.substr(0, size));
        require(less == settings || less == XSettings{}, "settings are said in full or not at all");
    }
}

}  // namespace

Checks textChecks() {
    return {{"EscapedText", checkEscapedText},
            {"KernelText", checkKernelText},
            {"NotificationText", checkNotificationText},
            {"XSettings", checkXSettings}};
}

}  // namespace norvane
