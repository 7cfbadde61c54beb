#pragma once

#include <memory>

#include "views/Button.h"
#include "views/WrappingNode.h"

namespace norvane {

// Does something when it is pressed, and looks held down while it is.
class ButtonNode final : public WrappingNode {
 public:
    ButtonNode(Element label, Accessible told, std::function<void()> action, const ButtonOptions& options);

 protected:
    void paint(SceneBuilder& scene, const Rect& frame) const override;

 private:
    Accessible told_;
    std::shared_ptr<const Interaction> interaction_;  // null where it is not enabled
    double radius_;
    bool dimsWhileHeld_;
};

}  // namespace norvane
