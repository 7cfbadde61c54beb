#pragma once

#include <optional>
#include <string>

namespace norvane {

class RootFolder;

// What people call this machine's processor, or failing that its chip, its board or its model. Any bytes, on
// one line, without needless blanks; none where nothing is known. Reads some files; any thread.
std::optional<std::string> readBrandString(const RootFolder& root);

}  // namespace norvane
