#pragma once

#include <string>

namespace norvane {

// Which elements the user is busy with, by their paths. Empty for none.
struct Attention {
    // Held down, with the pointer still over it.
    std::string pressed;
    // Has the keyboard.
    std::string focused;
    // The keyboard is being used to get about, so that it must be seen where it is.
    bool showsFocus = false;

    bool operator==(const Attention&) const = default;
};

}  // namespace norvane
