#include "views/Element.h"

#include "views/AppearNode.h"
#include "views/ChangeNode.h"
#include "views/ClippedNode.h"
#include "views/CondensedNode.h"
#include "views/FramedNode.h"
#include "views/LayeredNode.h"
#include "views/OffsetNode.h"
#include "views/OpacityNode.h"
#include "views/PaddedNode.h"
#include "views/ScaledNode.h"
#include "views/SensitiveNode.h"
#include "views/SilentNode.h"
#include "views/TellingNode.h"

namespace norvane {

template <typename Wrapper, typename... Arguments>
Element Element::wrapped(Arguments&&... arguments) && {
    if (isNone()) return std::move(*this);
    // What it is to those beside it stays outside.
    Element outside = Element::none();
    outside.id_ = std::exchange(id_, std::nullopt);
    outside.transition_ = std::exchange(transition_, {});
    outside.layoutPriority_ = std::exchange(layoutPriority_, 0);
    outside.node_ = std::make_unique<Wrapper>(std::move(*this), std::forward<Arguments>(arguments)...);
    return outside;
}

Element Element::id(std::string name) && {
    id_ = std::move(name);
    return std::move(*this);
}
Element Element::transition(const Transition& transition) && {
    transition_ = transition;
    return std::move(*this);
}
Element Element::layoutPriority(double priority) && {
    layoutPriority_ = priority;
    return std::move(*this);
}

Element Element::padding(const Insets& insets) && {
    return std::move(*this).wrapped<PaddedNode>(insets);
}
Element Element::frame(const FrameSize& size) && {
    return std::move(*this).wrapped<FramedNode>(size);
}
Element Element::background(Element behind) && {
    return std::move(*this).wrapped<LayeredNode>(LayeredNode::Place::behind, std::move(behind));
}
Element Element::overlay(Element before) && {
    return std::move(*this).wrapped<LayeredNode>(LayeredNode::Place::before, std::move(before));
}

Element Element::opacity(double opacity) && {
    return std::move(*this).wrapped<OpacityNode>(opacity);
}
Element Element::offset(Point by) && {
    return std::move(*this).wrapped<OffsetNode>(by);
}
Element Element::scaled(double factor) && {
    return std::move(*this).wrapped<ScaledNode>(factor);
}
Element Element::clipped(double radius) && {
    return std::move(*this).wrapped<ClippedNode>(radius);
}
Element Element::condensedToFit() && {
    return std::move(*this).wrapped<CondensedNode>();
}

Element Element::onHover(std::function<void(bool)> handler) && {
    auto interaction = std::make_shared<Interaction>();
    interaction->onHover = std::move(handler);
    return std::move(*this).wrapped<SensitiveNode>(std::move(interaction));
}
Element Element::onAppear(std::function<void()> handler) && {
    return std::move(*this).wrapped<AppearNode>(std::move(handler));
}

Element Element::watching(std::unique_ptr<WatchedValue> value, std::function<void()> handler) && {
    return std::move(*this).wrapped<ChangeNode>(std::move(value), std::move(handler));
}

Element Element::accessible(Accessible told) && {
    return std::move(*this).wrapped<TellingNode>(std::move(told));
}
Element Element::accessibleHidden() && {
    return std::move(*this).wrapped<SilentNode>();
}

std::vector<Child> childrenOf(ElementList list) {
    return list.takeChildren();
}

Element when(bool condition, const std::function<Element()>& element) {
    return condition ? element() : Element::none();
}

}  // namespace norvane
