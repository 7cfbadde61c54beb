#include "views/FramedNode.h"

#include <algorithm>

#include "views/Update.h"

namespace norvane {
namespace {

double lengthOf(std::optional<double> fixed, double least, std::optional<double> most,
                std::optional<double> offered, double inner) {
    if (fixed) return *fixed;
    if (most)
        inner =
            offered ? std::max(std::min(inner, *most), std::min(*most, *offered)) : std::min(inner, *most);
    return std::max(inner, least);
}

std::optional<double> offeredInside(std::optional<double> fixed, double least, std::optional<double> most,
                                    std::optional<double> offered) {
    if (fixed) return fixed;
    if (most && offered) offered = std::min(*most, *offered);
    return offered ? std::optional(std::max(*offered, least)) : offered;
}

}  // namespace

// What the child is offered of what the frame is offered.
Proposal FramedNode::inside(const Proposal& proposal) const {
    return {offeredInside(size_.width, size_.minWidth, size_.maxWidth, proposal.width),
            offeredInside(size_.height, size_.minHeight, size_.maxHeight, proposal.height)};
}

Size FramedNode::fit(TextRuler& ruler, const Proposal& proposal) const {
    const Size inner = measureChild(ruler, inside(proposal));
    return {lengthOf(size_.width, size_.minWidth, size_.maxWidth, proposal.width, inner.width),
            lengthOf(size_.height, size_.minHeight, size_.maxHeight, proposal.height, inner.height)};
}

void FramedNode::placeChildren(TextRuler& ruler, const Rect& frame) {
    const Size inner = measureChild(ruler, inside({frame.size.width, frame.size.height}));
    placeChild(ruler, {{frame.minX() + alignedOffset(size_.horizontal, inner.width, frame.size.width),
                        frame.minY() + alignedOffset(size_.vertical, inner.height, frame.size.height)},
                       inner});
}

void FramedNode::take(Node* before, Update& update) {
    if (before != nullptr && !(static_cast<const FramedNode*>(before)->size_ == size_))
        update.layoutChanged();
}

}  // namespace norvane
