#pragma once

#include <set>
#include <string>

namespace norvane {

// The names of pictures that a source asks for.
struct PictureNames {
    std::set<std::string> symbols;
    std::set<std::string> images;
    // Of symbols or of images: an icon may be either.
    std::set<std::string> icons;
};

// Reads the names where they are written down: what stands for a picture is told by its last word, "symbol",
// "image" or "icon", or one of these and "Name", "Named" or "Of". Taken are the literals in the first
// argument of a call or an initialiser, in what is given to a variable or a member as in `.iconName = isOpen
// ? "eye" : "pin"`, and in what a function returns that is formatted like ours. A name that reaches its
// picture by another way is not seen.
PictureNames pictureNamesIn(const std::string& source);

// All literals of a source.
std::set<std::string> literalsIn(const std::string& source);

}  // namespace norvane
