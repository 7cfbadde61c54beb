#pragma once

#include "views/Update.h"
#include "views/WrappingNode.h"

namespace norvane {

// Shows its child larger or smaller than it is, about its centre.
class ScaledNode final : public WrappingNode {
 public:
    ScaledNode(Element child, double factor) : WrappingNode(std::move(child)), factor_(factor) {}

 protected:
    void take(Node* before, Update& update) override {
        if (before != nullptr) update.carry(factor_, static_cast<const ScaledNode*>(before)->factor_);
    }
    void paint(SceneBuilder& scene, const Rect& frame) const override {
        const double factor = scene.value(factor_);
        scene.scaled(factor, factor, {frame.midX(), frame.midY()}, [&] { paintChildren(scene); });
    }

 private:
    Animated<double> factor_;
};

}  // namespace norvane
