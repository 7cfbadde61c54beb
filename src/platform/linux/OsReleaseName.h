#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace norvane {

// What the operating system calls itself: the value of NAME in the text of /etc/os-release, which is written
// like assignments of a shell (os-release(5)). None where it is missing, empty or not well-formed.
std::optional<std::string> parseOsReleaseName(std::string_view text);

}  // namespace norvane
