#include "views/ButtonNode.h"

#include <utility>

namespace norvane {
namespace {

constexpr double kHeldOpacity = 0.55;
constexpr double kDisabledOpacity = 0.35;

}  // namespace

ButtonNode::ButtonNode(Element label, Accessible told, std::function<void()> action,
                       const ButtonOptions& options)
    : WrappingNode(std::move(label)),
      told_(std::move(told)),
      radius_(options.radius),
      dimsWhileHeld_(options.dimsWhileHeld) {
    // What does nothing cannot be pressed.
    const bool isEnabled = options.isEnabled && action;
    told_.isEnabled = isEnabled;
    if (!isEnabled) return;
    told_.actions.insert(told_.actions.begin(), {"press", action});
    auto interaction = std::make_shared<Interaction>();
    interaction->action = std::move(action);
    interaction->takesFocus = options.takesFocus;
    interaction_ = std::move(interaction);
}

void ButtonNode::paint(SceneBuilder& scene, const Rect& frame) const {
    if (interaction_) scene.sense(frame, interaction_, radius_);
    const bool isDimmed = dimsWhileHeld_ && scene.isPressed();
    const double opacity = !interaction_ ? kDisabledOpacity : isDimmed ? kHeldOpacity : 1.0;
    scene.accessible(told_, frame,
                     [&] { scene.group(opacity, std::nullopt, [&] { paintChildren(scene); }); });
}

}  // namespace norvane
