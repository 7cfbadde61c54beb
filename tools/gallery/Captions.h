#pragma once

#include <string>
#include <vector>

#include "views/Element.h"

namespace norvane {

// A thing over its name.
Element captioned(const std::string& caption, Element thing);
// A thing to the right of its name.
Element labelled(const std::string& label, Element thing);
// Things below one another, and in rows.
Element column(std::vector<Element> things, double spacing = 14);
Element row(std::vector<Element> things, double spacing = 24);
Element table(int columns, std::vector<Element> things);

// For initializer lists, which elements cannot be in.
template <typename... Elements>
std::vector<Element> these(Elements&&... elements) {
    std::vector<Element> things;
    (things.push_back(std::forward<Elements>(elements)), ...);
    return things;
}

}  // namespace norvane
