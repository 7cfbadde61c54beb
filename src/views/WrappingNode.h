#pragma once

#include <utility>

#include "views/Node.h"
#include "views/SceneBuilder.h"

namespace norvane {

// A node around one other that, unless it says otherwise, is as large as it and adds nothing.
class WrappingNode : public Node {
 public:
    explicit WrappingNode(NodePointer child) : child_(std::move(child)) {}

    Size measure(TextRuler& ruler, const Proposal& proposal) const override {
        return child_->measure(ruler, proposal);
    }
    void place(TextRuler& ruler, const Rect& frame) override {
        frame_ = frame;
        child_->place(ruler, frame);
    }
    void build(SceneBuilder& scene) const override { scene.child(0, *child_); }

 protected:
    Node& child() const { return *child_; }
    const Rect& frame() const { return frame_; }
    void setFrame(const Rect& frame) { frame_ = frame; }

 private:
    NodePointer child_;
    Rect frame_;
};

}  // namespace norvane
