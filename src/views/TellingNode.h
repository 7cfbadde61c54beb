#pragma once

#include <utility>

#include "views/WrappingNode.h"

namespace norvane {

// Tells of its child in one node.
class TellingNode final : public WrappingNode {
 public:
    TellingNode(Element child, Accessible told) : WrappingNode(std::move(child)), told_(std::move(told)) {}

 protected:
    void paint(SceneBuilder& scene, const Rect& frame) const override {
        scene.accessible(told_, frame, [&] { paintChildren(scene); });
    }

 private:
    Accessible told_;
};

}  // namespace norvane
