#pragma once

#include "views/WrappingNode.h"

namespace norvane {

// Lays its child out as wide as the child likes, and shows it narrowed where that is more than the place.
class CondensedNode final : public WrappingNode {
 public:
    explicit CondensedNode(Element child) : WrappingNode(std::move(child)) {}

 protected:
    Size fit(TextRuler& ruler, const Proposal& proposal) const override;
    void placeChildren(TextRuler& ruler, const Rect& frame) override;
    void take(Node* before, Update& update) override;
    void paint(SceneBuilder& scene, const Rect& frame) const override;

 private:
    // Of the last layout: an evaluation that leads to none keeps it.
    double factor_ = 1;
};

}  // namespace norvane
