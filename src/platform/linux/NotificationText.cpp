#include "platform/linux/NotificationText.h"

#include <memory>

#include "platform/linux/GErrorPointer.h"
#include "platform/linux/KernelText.h"
#include "platform/Utf8.h"

namespace norvane {
namespace {

constexpr std::size_t kLongestDescription = 500;

// Whole characters only; the text is valid UTF-8.
std::string_view cut(std::string_view text, std::size_t length) {
    if (text.size() <= length) return text;
    while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80)
        --length;
    return text.substr(0, length);
}

}  // namespace

std::string escapedMarkup(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    for (const char byte : text) {
        switch (byte) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            default:
                escaped += byte;
        }
    }
    return escaped;
}

std::string describedError(const GError& error) {
    const GErrorPointer stripped(g_error_copy(&error));
    g_dbus_error_strip_remote_error(stripped.get());
    std::string text = collapsed(repairedUtf8(stripped->message));
    if (text.empty()) {
        const std::unique_ptr<gchar, decltype(&g_free)> name(g_dbus_error_get_remote_error(&error), &g_free);
        if (name) text = collapsed(repairedUtf8(name.get()));
    }
    if (text.empty()) text = "Unknown error";
    return std::string(cut(text, kLongestDescription));
}

}  // namespace norvane
