#pragma once

#include "views/WrappingNode.h"

namespace norvane {

// Cuts its child off at its frame.
class ClippedNode final : public WrappingNode {
 public:
    ClippedNode(Element child, double radius) : WrappingNode(std::move(child)), radius_(radius) {}

 protected:
    void paint(SceneBuilder& scene, const Rect& frame) const override {
        scene.group(1, RoundedRect{frame, radius_}, [&] { paintChildren(scene); });
    }

 private:
    double radius_;
};

}  // namespace norvane
