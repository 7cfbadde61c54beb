#pragma once

#include <string>
#include <vector>

#include "NamedPicture.h"

namespace norvane {

// The C++ source that holds the pictures as tables in read-only memory: numbers alone, without a pointer, so
// that nothing is left to do when the program starts. They are sorted by name. Throws `std::length_error`
// where they are too many for the tables' indices.
std::string pictureSource(std::vector<NamedPicture> symbols, std::vector<NamedPicture> images);

}  // namespace norvane
