#pragma once

#include <gio/gio.h>
#include <string>
#include <string_view>

namespace norvane {

// The text as a server that takes markup shows it literally.
std::string escapedMarkup(std::string_view text);

// What to tell people of an error that a bus or a peer gave: one line of valid UTF-8, not empty, of bounded
// length, without the error's name in front.
std::string describedError(const GError& error);

}  // namespace norvane
