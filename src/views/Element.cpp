#include "views/Element.h"

#include <memory>

#include "views/Modifiers.h"

namespace norvane {

Element Element::padding(const Insets& insets) && {
    return Element(paddedNode(std::move(node_), insets));
}
Element Element::frame(const FrameSize& size) && {
    return Element(framedNode(std::move(node_), size));
}
Element Element::background(const Card& card) && {
    return Element(cardNode(std::move(node_), card));
}
Element Element::onHover(std::function<void(bool)> handler) && {
    return Element(hoverNode(std::move(node_), std::move(handler)));
}
Element Element::condensedToFit() && {
    return Element(condensedNode(std::move(node_)));
}
Element Element::accessible(AccessibleRole role, std::string name, std::string value) && {
    return Element(accessibleNode(std::move(node_), role, std::move(name), std::move(value)));
}

}  // namespace norvane
