#include "views/Text.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include "views/SceneBuilder.h"
#include "views/Update.h"

namespace norvane {
namespace {

// Of the font's size: about three letters.
constexpr double kLeastWidth = 2;

class TextNode final : public Node {
 public:
    TextNode(std::string text, const TextStyle& style, const Paint& paint)
        : text_(std::move(text)), style_(style), paint_(paint) {}

 protected:
    Size fit(TextRuler& ruler, const Proposal& proposal) const override {
        // Setting a text costs more than all the rest of a layout, so it is done once for itself, and again
        // only where there is truly less room.
        if (!natural_) natural_ = ruler.measure(text_, style_, TextRuler::kUnlimitedWidth).size;
        if (!proposal.width || *proposal.width >= natural_->width) return *natural_;
        // How small it could be is asked for the sake of the others: nobody reads words set in a letter's
        // width, so it is never set like that for an answer.
        const double least = std::min(kLeastWidth * style_.font.size, natural_->width);
        if (*proposal.width == 0) return {least, natural_->height};
        isBroken_ = true;
        return ruler.measure(text_, style_, *proposal.width).size;
    }
    void take(Node* before, Update& update) override {
        color_.jumpTo(update.palette.color(paint_));
        if (before == nullptr) return;
        const auto& last = *static_cast<const TextNode*>(before);
        const bool isSame = last.text_ == text_ && last.style_ == style_;
        if (isSame || takesTheRoomOf(last, update.ruler)) {
            natural_ = last.natural_;
            isBroken_ = last.isBroken_;
        } else {
            update.layoutChanged();
        }
        update.carry(color_, last.color_);
    }
    // Set as it was laid out, wherever it stands at this moment.
    void paint(SceneBuilder& scene, const Rect& now) const override {
        scene.text(text_, style_, {now.origin, frame().size}, scene.value(color_));
    }

 private:
    // Figures change every second and mostly keep their widths: nothing around them moves then.
    bool takesTheRoomOf(const TextNode& last, TextRuler& ruler) const {
        if (!last.natural_ || last.isBroken_ || !(last.style_ == style_)) return false;
        return ruler.measure(text_, style_, TextRuler::kUnlimitedWidth).size == *last.natural_;
    }

    std::string text_;
    TextStyle style_;
    Paint paint_;
    mutable std::optional<Size> natural_;  // on as few lines as it has
    mutable bool isBroken_ = false;        // has been set in less room than that
    Animated<Color> color_;
};

}  // namespace

Element text(std::string text, const TextStyle& style, const Paint& paint) {
    return Element(std::make_unique<TextNode>(std::move(text), style, paint));
}

}  // namespace norvane
