#pragma once

#include <string>
#include <string_view>

#include "dashboard/ExternalVolume.h"

namespace norvane {

// A volume's name as one line that stays what it is: whoever made the file system chose its bytes. What
// breaks a line is a blank, another control character or a byte that is not UTF-8 is U+FFFD. What turns the
// direction of text or cannot be seen is left out, and so are more marks than a letter can have.
std::string shownVolumeName(std::string_view name);

// The same of a volume: where nothing is left of its name, the folder that it is mounted at has to do.
std::string shownVolumeName(const ExternalVolume& volume);

}  // namespace norvane
