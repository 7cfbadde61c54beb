#pragma once

#include <set>
#include <string>
#include <string_view>

namespace norvane {

// The names of pictures that a source asks for.
struct PictureNames {
    std::set<std::string> symbols;
    std::set<std::string> images;
    // Of symbols or of images: an icon may be either.
    std::set<std::string> icons;
};

// Reads the names where they are written down: what stands for a picture is told by its last word. Taken are
// the literals
//   in the first argument of whatever ends in "symbol", "image" or "icon", or in one of these and "Name",
//     "Named" or "Of": a call, or the initialiser of a type such as `DrawSymbol`;
//   in what is given to a variable or a member named so, as in `.iconName = isOpen ? "eye" : "pin"`;
//   in what a function named so returns.
// A name that reaches its picture by another way is not seen.
PictureNames pictureNamesIn(std::string_view source);

// All literals of a source.
std::set<std::string> literalsIn(std::string_view source);

}  // namespace norvane
