#pragma once

#include <utility>

#include "views/WrappingNode.h"

namespace norvane {

// Tells nothing of its child.
class SilentNode final : public WrappingNode {
 public:
    explicit SilentNode(Element child) : WrappingNode(std::move(child)) {}

 protected:
    void paint(SceneBuilder& scene, const Rect&) const override {
        scene.inaccessible([&] { paintChildren(scene); });
    }
};

}  // namespace norvane
