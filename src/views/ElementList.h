#pragma once

#include <cstddef>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "views/Child.h"

namespace norvane {

class Element;

// The members of a container, each with a key of its own, in their order.
class ElementList {
 public:
    void add(Element element);
    // Several at one place.
    void add(std::vector<Element> elements);
    // Leaves the list empty.
    std::vector<Child> takeChildren();

 private:
    void add(Element element, std::string key);

    std::vector<Child> children_;
    std::size_t places_ = 0;
    std::unordered_set<std::string> names_;
};

// For the functions that make containers: any number of elements and lists of elements.
template <typename... Elements>
ElementList listOf(Elements&&... elements) {
    ElementList list;
    (list.add(std::forward<Elements>(elements)), ...);
    return list;
}

std::vector<Child> childrenOf(ElementList list);

}  // namespace norvane
