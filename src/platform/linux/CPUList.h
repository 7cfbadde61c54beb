#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace norvane {

// A list of processors as the kernel writes them, "0-3,8,10-11", ascending; it may be empty. None where the
// text is no such list, or names a processor above 65535.
std::optional<std::vector<unsigned>> parseCPUList(std::string_view text);

}  // namespace norvane
