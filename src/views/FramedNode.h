#pragma once

#include "views/FrameSize.h"
#include "views/WrappingNode.h"

namespace norvane {

// Has a size of its own, and its child somewhere within.
class FramedNode final : public WrappingNode {
 public:
    FramedNode(Element child, const FrameSize& size) : WrappingNode(std::move(child)), size_(size) {}

 protected:
    Size fit(TextRuler& ruler, const Proposal& proposal) const override;
    void placeChildren(TextRuler& ruler, const Rect& frame) override;
    void take(Node* before, Update& update) override;

 private:
    Proposal inside(const Proposal& proposal) const;

    FrameSize size_;
};

}  // namespace norvane
