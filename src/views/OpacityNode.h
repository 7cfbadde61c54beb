#pragma once

#include <optional>

#include "views/Update.h"
#include "views/WrappingNode.h"

namespace norvane {

// Shows its child as one thing of that opacity.
class OpacityNode final : public WrappingNode {
 public:
    OpacityNode(Element child, double opacity) : WrappingNode(std::move(child)), opacity_(opacity) {}

 protected:
    void take(Node* before, Update& update) override {
        if (before != nullptr) update.carry(opacity_, static_cast<const OpacityNode*>(before)->opacity_);
    }
    void paint(SceneBuilder& scene, const Rect&) const override {
        const double shown = scene.value(opacity_);
        // What fades in is told from its first moment, what fades out no longer.
        scene.group(scene.isTold() ? opacity_.target() : shown, std::nullopt, [&] { paintChildren(scene); });
    }

 private:
    Animated<double> opacity_;
};

}  // namespace norvane
