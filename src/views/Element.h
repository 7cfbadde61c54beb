#pragma once

#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "drawing/Insets.h"
#include "views/Accessible.h"
#include "views/Child.h"
#include "views/ElementList.h"
#include "views/FrameSize.h"
#include "views/Node.h"
#include "views/Transition.h"
#include "views/WatchedValue.h"

namespace norvane {

// What a screen's body is written in: a description of a thing, built from smaller ones and consumed by what
// it is put into. Modifiers read in the order in which they wrap: the later ones are outside.
//
//     vstack({.alignment = Alignment::start, .spacing = 8},
//            text("Storage", title),
//            when(isFull, [&] { return symbol("eject.fill", font, Ink::red); }),
//            forEach(volumes, [](const Volume& volume) { return row(volume).id(volume.url); }))
class Element {
 public:
    explicit Element(NodePointer node) : node_(std::move(node)) {}
    // Nothing: it keeps its place among others free, so that they stay who they are.
    static Element none() { return Element(nullptr); }
    bool isNone() const { return node_ == nullptr; }

    // Who this is among those beside it, from one evaluation to the next, whatever its place. Without a name
    // it is its place.
    Element id(std::string name) &&;
    // How it comes and goes where that is animated; it fades where nothing is said.
    Element transition(const Transition& transition) &&;
    // In a stack too narrow for all, those of higher priority get what they like first.
    Element layoutPriority(double priority) &&;

    Element padding(const Insets& insets) &&;
    Element frame(const FrameSize& size) &&;
    // Behind it and before it, as large as it.
    Element background(Element behind) &&;
    Element overlay(Element before) &&;

    // As one thing: where several lie upon another, what is behind them does not shine through between.
    Element opacity(double opacity) &&;
    // Shown elsewhere, in points; its place stays.
    Element offset(Point by) &&;
    // Shown larger or smaller about its centre.
    Element scaled(double factor) &&;
    // Cut off at its frame, with round corners.
    Element clipped(double radius = 0) &&;
    // Narrowed horizontally, as a picture, where it would be wider than its place.
    Element condensedToFit() &&;

    // Tells when the pointer enters and leaves.
    Element onHover(std::function<void(bool isOver)> handler) &&;
    // Runs it each time the screen is shown with this in it, and when this joins a screen that is shown.
    Element onAppear(std::function<void()> handler) &&;
    // Runs it after an evaluation in which the value has become another one; the first is no change.
    template <typename Value>
    Element onChange(Value value, std::function<void()> handler) && {
        return std::move(*this).watching(std::make_unique<WatchedValueOf<Value>>(std::move(value)),
                                         std::move(handler));
    }

    // One node to those who cannot see, instead of what is inside or with it below.
    Element accessible(Accessible told) &&;
    // Says nothing to those who cannot see.
    Element accessibleHidden() &&;

 private:
    friend class ElementList;
    template <typename Wrapper, typename... Arguments>
    Element wrapped(Arguments&&... arguments) &&;
    Element watching(std::unique_ptr<WatchedValue> value, std::function<void()> handler) &&;

    NodePointer node_;
    std::optional<std::string> id_;
    Transition transition_;
    double layoutPriority_ = 0;
};

// The element only where the condition holds; it then comes and goes.
Element when(bool condition, const std::function<Element()>& element);

// An element for each member of a range.
template <typename Range, typename Function>
std::vector<Element> forEach(const Range& range, Function function) {
    std::vector<Element> elements;
    elements.reserve(std::size(range));
    for (const auto& member : range)
        elements.push_back(function(member));
    return elements;
}

}  // namespace norvane
