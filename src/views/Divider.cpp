#include "views/Divider.h"

#include <memory>

#include "views/SceneBuilder.h"

namespace norvane {
namespace {

class DividerNode final : public Node {
 protected:
    Size fit(TextRuler&, const Proposal& proposal) const override { return {proposal.width.value_or(0), 1}; }
    void paint(SceneBuilder& scene, const Rect& frame) const override {
        scene.fill(RoundedRect{frame}, scene.palette().color(Ink::separator), Snapping::toPixels);
    }
};

}  // namespace

Element divider() {
    return Element(std::make_unique<DividerNode>());
}

}  // namespace norvane
