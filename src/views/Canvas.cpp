#include "views/Canvas.h"

#include <memory>
#include <utility>

#include "views/SceneBuilder.h"

namespace norvane {
namespace {

class CanvasNode final : public Node {
 public:
    explicit CanvasNode(std::function<void(SceneBuilder&, const Rect&)> draw) : draw_(std::move(draw)) {}

 protected:
    Size fit(TextRuler&, const Proposal& proposal) const override {
        return {proposal.width.value_or(0), proposal.height.value_or(0)};
    }
    void paint(SceneBuilder& scene, const Rect& frame) const override { draw_(scene, frame); }

 private:
    std::function<void(SceneBuilder&, const Rect&)> draw_;
};

}  // namespace

Element canvas(std::function<void(SceneBuilder&, const Rect&)> draw) {
    return Element(std::make_unique<CanvasNode>(std::move(draw)));
}

}  // namespace norvane
