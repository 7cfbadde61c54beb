#include "views/PaddedNode.h"

#include <algorithm>

#include "views/Update.h"

namespace norvane {

Size PaddedNode::fit(TextRuler& ruler, const Proposal& proposal) const {
    const double horizontal = insets_.left + insets_.right;
    const double vertical = insets_.top + insets_.bottom;
    const auto less = [](std::optional<double> length, double by) {
        return length ? std::optional(std::max(*length - by, 0.0)) : std::nullopt;
    };
    const Size inner =
        measureChild(ruler, {less(proposal.width, horizontal), less(proposal.height, vertical)});
    return {inner.width + horizontal, inner.height + vertical};
}

void PaddedNode::take(Node* before, Update& update) {
    if (before != nullptr && static_cast<const PaddedNode*>(before)->insets_ != insets_)
        update.layoutChanged();
}

}  // namespace norvane
