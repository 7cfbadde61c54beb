#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace norvane {

std::filesystem::path projectFolder();

// The files of a folder and all below it, as generic paths written from the project's root. Passed over: what
// a build or a tool leaves behind, captured machines, which are kept to the letter as they were found, and
// seeds for fuzzing, which are untidy on purpose.
std::set<std::string> filesBelow(const std::string& folder);

// The headers and sources among them.
std::set<std::string> sourcesBelow(const std::string& folder);

// The whole file, byte for byte; the path is written from the project's root.
std::string contentsOf(const std::string& file);

// The lines of a text, without their line feeds. A last line feed ends a line and begins none.
std::vector<std::string> linesOf(const std::string& text);

// What the first group of a pattern has of each place where it fits.
std::set<std::string> foundIn(const std::string& text, const std::string& pattern);

}  // namespace norvane
