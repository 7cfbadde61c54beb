#pragma once

#include <string>
#include <string_view>

namespace norvane {

// A volume's name as one line that stays what it is: whoever made the file system chose its bytes. What
// breaks a line is a blank, another control character or a byte that is not UTF-8 is U+FFFD, and what turns
// the direction of text is left out.
std::string shownVolumeName(std::string_view name);

}  // namespace norvane
