#pragma once

#include "views/Update.h"
#include "views/WrappingNode.h"

namespace norvane {

// Shows its child elsewhere than it is.
class OffsetNode final : public WrappingNode {
 public:
    OffsetNode(Element child, Point by) : WrappingNode(std::move(child)), by_(by) {}

 protected:
    void take(Node* before, Update& update) override {
        if (before != nullptr) update.carry(by_, static_cast<const OffsetNode*>(before)->by_);
    }
    void paint(SceneBuilder& scene, const Rect&) const override {
        scene.moved(scene.value(by_), [&] { paintChildren(scene); });
    }

 private:
    Animated<Point> by_;
};

}  // namespace norvane
