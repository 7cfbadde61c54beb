#include <memory>

#include "platform/linux/NotificationText.h"
#include "platform/Utf8.h"
#include "Property.h"

namespace norvane {

void check(std::string_view text) {
    const std::string markup = escapedMarkup(text);
    require(markup.find_first_of("<>") == std::string::npos, "no text is markup");
    std::string shown;
    for (std::size_t k = 0; k < markup.size(); ++k) {
        if (markup[k] != '&') {
            shown += markup[k];
            continue;
        }
        const std::string entity = markup.substr(k + 1, markup.find(';', k) - k - 1);
        require(entity == "amp" || entity == "lt" || entity == "gt", "an ampersand begins an entity");
        shown += entity == "amp" ? '&' : entity == "lt" ? '<' : '>';
        k += entity.size() + 1;
    }
    require(shown == text, "it is shown as it was");

    // What comes from a peer may be anything but a NUL, and has its name before it.
    const std::string message(text.substr(0, text.find('\0')));
    const auto release = [](GError* error) { g_error_free(error); };
    for (const GQuark domain : {G_DBUS_ERROR, G_IO_ERROR}) {
        const std::unique_ptr<GError, decltype(release)> error(
            g_error_new_literal(domain, 0, message.c_str()), release);
        const std::string described = describedError(*error);
        require(!described.empty() && described.size() <= 500, "a description has a bounded length");
        require(described.find('\n') == std::string::npos, "it is one line");
        require(repairedUtf8(described) == described, "of valid UTF-8");
    }
}

}  // namespace norvane
