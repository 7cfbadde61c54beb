#include "views/Symbol.h"

#include <memory>
#include <utility>

#include "views/SceneBuilder.h"
#include "views/Update.h"

namespace norvane {
namespace {

// Of the font's size: symbols are drawn with some air around them.
constexpr double kSide = 1.25;

class SymbolNode final : public Node {
 public:
    SymbolNode(std::string name, double side, const Paint& paint)
        : name_(std::move(name)), side_(side), paint_(paint) {}

 protected:
    Size fit(TextRuler&, const Proposal&) const override { return {side_, side_}; }
    void take(Node* before, Update& update) override {
        color_.jumpTo(update.palette.color(paint_));
        if (before == nullptr) return;
        const auto& last = *static_cast<const SymbolNode*>(before);
        if (last.side_ != side_) update.layoutChanged();
        update.carry(color_, last.color_);
    }
    void paint(SceneBuilder& scene, const Rect& frame) const override {
        scene.symbol(name_, frame, scene.value(color_));
    }

 private:
    std::string name_;
    double side_;
    Paint paint_;
    Animated<Color> color_;
};

}  // namespace

Element symbol(std::string name, const Font& font, const Paint& paint) {
    return Element(std::make_unique<SymbolNode>(std::move(name), font.size * kSide, paint));
}

}  // namespace norvane
