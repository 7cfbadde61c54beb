#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace norvane {

// The project's root folder.
std::filesystem::path projectFolder();

// The files of a folder and all below it, as generic paths written from the project's root, sorted. An absent
// folder has none. Passed over: what a build or a tool leaves behind, captured machines, which are kept to
// the letter as they were found, and seeds for fuzzing, which are untidy on purpose.
std::vector<std::string> filesBelow(const std::string& folder);

// The whole file, byte for byte; the path is written from the project's root.
std::string contentsOf(const std::string& file);

// The lines of a text, without their line feeds. A last line feed ends a line and begins none.
std::vector<std::string> linesOf(const std::string& text);

}  // namespace norvane
