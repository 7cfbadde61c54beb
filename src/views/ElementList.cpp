#include "views/ElementList.h"

#include <algorithm>

#include "views/Element.h"

namespace norvane {
namespace {

// Of an element with a name. No place is written like that, and the parts of a path are set apart by slashes.
std::string keyOf(std::string name) {
    std::replace(name.begin(), name.end(), '/', '|');
    return '#' + name;
}

}  // namespace

void ElementList::add(Element element) {
    add(std::move(element), std::to_string(places_++));
}

void ElementList::add(std::vector<Element> elements) {
    const std::string place = std::to_string(places_++) + '.';
    for (std::size_t i = 0; i < elements.size(); ++i)
        add(std::move(elements[i]), place + std::to_string(i));
}

void ElementList::add(Element element, std::string key) {
    if (element.isNone()) return;
    if (element.id_) {
        std::string named = keyOf(*std::move(element.id_));
        // Of several of one name the first has it; the others are their places.
        if (names_.insert(named).second) key = std::move(named);
    }
    children_.push_back({.key = std::move(key),
                         .node = std::move(element.node_),
                         .transition = element.transition_,
                         .layoutPriority = element.layoutPriority_});
}

std::vector<Child> ElementList::takeChildren() {
    places_ = 0;
    names_.clear();
    return std::exchange(children_, {});
}

}  // namespace norvane
