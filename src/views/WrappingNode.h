#pragma once

#include <utility>

#include "views/Element.h"
#include "views/Node.h"
#include "views/SceneBuilder.h"

namespace norvane {

// A node around one other that, unless it says otherwise, is as large as it and adds nothing.
class WrappingNode : public Node {
 public:
    explicit WrappingNode(Element child) : Node(childrenOf(listOf(std::move(child)))) {}

 protected:
    // Nothing where the element is none.
    Size fit(TextRuler& ruler, const Proposal& proposal) const override {
        return measureChild(ruler, proposal);
    }
    Size measureChild(TextRuler& ruler, const Proposal& proposal) const {
        return children().empty() ? Size{} : children().front().node->measure(ruler, proposal);
    }
    void placeChild(TextRuler& ruler, const Rect& frame) {
        if (!children().empty()) children().front().node->place(ruler, frame);
    }
};

}  // namespace norvane
