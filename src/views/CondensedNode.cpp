#include "views/CondensedNode.h"

#include <algorithm>

namespace norvane {

Size CondensedNode::fit(TextRuler& ruler, const Proposal& proposal) const {
    const Size natural = measureChild(ruler, {std::nullopt, proposal.height});
    return {proposal.width ? std::min(natural.width, *proposal.width) : natural.width, natural.height};
}

void CondensedNode::placeChildren(TextRuler& ruler, const Rect& frame) {
    const Size natural = measureChild(ruler, {std::nullopt, frame.size.height});
    const double width = std::max(natural.width, frame.size.width);
    factor_ = width > 0 ? frame.size.width / width : 1;
    placeChild(ruler, {frame.origin, {width, frame.size.height}});
}

void CondensedNode::take(Node* before, Update&) {
    if (before != nullptr) factor_ = static_cast<const CondensedNode*>(before)->factor_;
}

void CondensedNode::paint(SceneBuilder& scene, const Rect& frame) const {
    scene.scaled(factor_, 1, {frame.minX(), 0}, [&] { paintChildren(scene); });
}

}  // namespace norvane
