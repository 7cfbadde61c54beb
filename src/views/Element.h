#pragma once

#include <functional>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "platform/AccessibleNode.h"
#include "views/Alignment.h"
#include "views/Node.h"
#include "views/Paint.h"

namespace norvane {

// The size of a frame around an element, in points. What is absent is left to the element; an infinite most
// takes all that is offered.
struct FrameSize {
    std::optional<double> width = {};
    std::optional<double> height = {};
    double minWidth = 0;
    std::optional<double> maxWidth = {};
    std::optional<double> maxHeight = {};
    Alignment horizontal = Alignment::center;
    Alignment vertical = Alignment::center;
};

// What a card looks like: a rounded rectangle behind an element.
struct Card {
    double radius = 0;
    Paint fill = Ink::clear;
    Paint border = Ink::clear;
    double borderWidth = 0;
};

// What a screen's body is written in: a description of a thing, built from smaller ones and consumed by what
// it is put into. Modifiers read in the order in which they wrap: the later ones are outside.
class Element {
 public:
    explicit Element(NodePointer node) : node_(std::move(node)) {}

    Element padding(const Insets& insets) &&;
    Element frame(const FrameSize& size) &&;
    Element background(const Card& card) &&;
    // Tells when the pointer enters and leaves.
    Element onHover(std::function<void(bool isOver)> handler) &&;
    // Narrowed horizontally, as a picture, where it would be wider than its place.
    Element condensedToFit() &&;
    // One node to those who cannot see, instead of what is inside.
    Element accessible(AccessibleRole role, std::string name, std::string value = {}) &&;

    NodePointer take() && { return std::move(node_); }

 private:
    NodePointer node_;
};

// For the functions that make containers: any number of elements as a list.
template <typename... Elements>
std::vector<Element> listOf(Elements&&... elements) {
    std::vector<Element> list;
    list.reserve(sizeof...(elements));
    (list.push_back(std::forward<Elements>(elements)), ...);
    return list;
}

}  // namespace norvane
