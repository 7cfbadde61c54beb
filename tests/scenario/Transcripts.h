#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace norvane {

// Of the project's files, by their paths from its root.
std::string contentsOf(const std::string& file);
std::vector<std::string> linesOf(const std::string& text);

// Plays the text's lines and gives the lines that were printed. An objection is the last of them, as
// "LINE: reason".
std::vector<std::string> played(const std::string& scenario);

}  // namespace norvane
