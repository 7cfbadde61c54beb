#include "views/LayeredNode.h"

namespace norvane {
namespace {

constexpr const char* kThing = "thing";

std::vector<Child> layers(Element thing, LayeredNode::Place place, Element other) {
    // By name, so that the thing stays what it is while the other one comes and goes.
    thing = std::move(thing).id(kThing);
    if (place == LayeredNode::Place::behind) return childrenOf(listOf(std::move(other), std::move(thing)));
    return childrenOf(listOf(std::move(thing), std::move(other)));
}

}  // namespace

LayeredNode::LayeredNode(Element thing, Place place, Element other)
    : Node(layers(std::move(thing), place, std::move(other))), place_(place) {}

Size LayeredNode::fit(TextRuler& ruler, const Proposal& proposal) const {
    return thing().measure(ruler, proposal);
}

const Node& LayeredNode::thing() const {
    return place_ == Place::behind ? *children().back().node : *children().front().node;
}

}  // namespace norvane
