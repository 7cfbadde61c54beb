#pragma once

#include "drawing/Insets.h"
#include "views/WrappingNode.h"

namespace norvane {

// Keeps its child away from its edges.
class PaddedNode final : public WrappingNode {
 public:
    PaddedNode(Element child, const Insets& insets) : WrappingNode(std::move(child)), insets_(insets) {}

 protected:
    Size fit(TextRuler& ruler, const Proposal& proposal) const override;
    void placeChildren(TextRuler& ruler, const Rect& frame) override {
        placeChild(ruler, frame.inset(insets_));
    }
    void take(Node* before, Update& update) override;

 private:
    Insets insets_;
};

}  // namespace norvane
