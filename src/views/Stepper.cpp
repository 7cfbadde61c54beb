#include "views/Stepper.h"

#include <memory>
#include <utility>

#include "views/Button.h"
#include "views/SceneBuilder.h"
#include "views/ShapeElement.h"
#include "views/Stack.h"
#include "views/Symbol.h"
#include "views/WrappingNode.h"

namespace norvane {
namespace {

// In points.
constexpr double kSideWidth = 25;
constexpr double kHeight = 20;
constexpr double kCornerRadius = 6;
constexpr double kDividerHeight = 12;
constexpr Font kSymbolFont{.size = 10, .weight = FontWeight::semibold};

using Step = std::function<void()>;

// Empty where there is nowhere to go.
Step stepTo(std::optional<double> next, const std::function<void(double)>& changed) {
    if (!next) return {};
    return [next = *next, changed] { changed(next); };
}

Element side(const char* symbolName, const Step& step) {
    Element label = symbol(symbolName, kSymbolFont).frame({.width = kSideWidth, .height = kHeight});
    return button(Accessible{}, std::move(label), step,
                  {.radius = kCornerRadius, .isEnabled = step != nullptr, .takesFocus = false});
}

Element sides(const Step& down, const Step& up) {
    Element line = shape(Outline::rectangle(),
                         {.fill = Paint(Ink::primary).withOpacity(0.15), .snapping = Snapping::toPixels})
                       .frame({.width = 1, .height = kDividerHeight});
    return hstack({}, side("minus", down), std::move(line), side("plus", up))
        .background(shape(Outline::roundedRectangle(kCornerRadius),
                          {.fill = Paint(Ink::primary).withOpacity(0.08),
                           .stroke = Stroke{.fill = Paint(Ink::primary).withOpacity(0.1)},
                           .snapping = Snapping::toPixels}));
}

// One thing to the keyboard and to those who do not see it.
class StepperNode final : public WrappingNode {
 public:
    StepperNode(const StepperOptions& options, double value, Step down, Step up)
        : WrappingNode(sides(down, up)),
          told_{.role = AccessibleRole::spinButton, .name = options.name, .value = options.valueText} {
        told_.number = {.now = value,
                        .least = options.stepping.least,
                        .most = options.stepping.most,
                        .step = options.stepping.step};
        if (up) told_.actions.emplace_back("increment", up);
        if (down) told_.actions.emplace_back("decrement", down);
        auto interaction = std::make_shared<Interaction>();
        interaction->takesFocus = true;
        // At the end of the range it keeps its keys all the same.
        interaction->onKey = [down = std::move(down), up = std::move(up)](KeyEvent::Key key) {
            if (key != KeyEvent::Key::up && key != KeyEvent::Key::down) return false;
            const Step& step = key == KeyEvent::Key::up ? up : down;
            if (step) step();
            return true;
        };
        interaction_ = std::move(interaction);
    }

 protected:
    void paint(SceneBuilder& scene, const Rect& frame) const override {
        scene.sense(frame, interaction_, kCornerRadius);
        scene.accessible(told_, frame, [&] { paintChildren(scene); });
    }

 private:
    Accessible told_;
    std::shared_ptr<const Interaction> interaction_;
};

}  // namespace

Element stepper(const StepperOptions& options, double value, std::function<void(double)> changed) {
    return Element(std::make_unique<StepperNode>(options, value,
                                                 stepTo(options.stepping.down(value), changed),
                                                 stepTo(options.stepping.up(value), changed)));
}

}  // namespace norvane
