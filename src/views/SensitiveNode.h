#pragma once

#include <memory>

#include "views/WrappingNode.h"

namespace norvane {

// Minds the pointer and the keyboard where its child is.
class SensitiveNode final : public WrappingNode {
 public:
    SensitiveNode(Element child, std::shared_ptr<const Interaction> interaction, double radius = 4)
        : WrappingNode(std::move(child)), interaction_(std::move(interaction)), radius_(radius) {}

 protected:
    void paint(SceneBuilder& scene, const Rect& frame) const override {
        scene.sense(frame, interaction_, radius_);
        paintChildren(scene);
    }

 private:
    std::shared_ptr<const Interaction> interaction_;
    double radius_;
};

}  // namespace norvane
