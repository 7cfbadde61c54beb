#include "views/ShapeElement.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <numbers>
#include <utility>

#include "views/SceneBuilder.h"
#include "views/Update.h"

namespace norvane {
namespace {

// A fill's two colours on their way.
struct MovingFill {
    Animated<Color> from;
    Animated<Color> to;

    MovingFill() = default;
    MovingFill(const FillStyle& style, const Palette& palette)
        : from(palette.color(style.from)), to(palette.color(style.to)) {}

    void carry(const MovingFill& before, const Update& update) {
        update.carry(from, before.from);
        update.carry(to, before.to);
    }
    Fill valueIn(SceneBuilder& scene, GradientDirection direction, const Rect& rect) const {
        const Point end = direction == GradientDirection::topToBottom ? Point{rect.minX(), rect.maxY()}
                                                                      : Point{rect.maxX(), rect.minY()};
        return {scene.value(from), scene.value(to), rect.origin, end};
    }
};

// What nobody sees of a movement: of full opacity, and in points along a circle's line.
constexpr double kOpacityStep = 1.0 / 128;
constexpr double kArcStep = 0.25;

// The tone and how opaque it is move each by themselves: a glow breathes on where its tone becomes another
// one, and has the new one all the way.
struct MovingShadow {
    Animated<Color> tone;
    Animated<double> opacity;
    Animated<double> radius;
    Animated<Point> offset;

    MovingShadow(const Shadow& shadow, const Palette& palette)
        : radius(shadow.radius), offset(shadow.offset) {
        Color color = palette.color(shadow.paint);
        opacity.jumpTo(color.alpha);
        color.alpha = 1;
        tone.jumpTo(color);
    }

    void carry(const MovingShadow& before, const Update& update) {
        // What is not there has no tone: it comes in its own, and goes in the one that it had.
        if (opacity.target() == 0) {
            tone = before.tone;
        } else if (before.opacity.target() != 0) {
            update.carry(tone, before.tone);
        }
        update.carry(opacity, before.opacity);
        update.carry(radius, before.radius);
        update.carry(offset, before.offset);
    }
    Color colorIn(SceneBuilder& scene) const {
        return scene.value(tone).withOpacity(std::clamp(scene.stepped(opacity, kOpacityStep), 0.0, 1.0));
    }
};

class ShapeNode final : public Node {
 public:
    ShapeNode(Outline outline, ShapeStyle style)
        : outline_(std::move(outline)),
          style_(std::move(style)),
          from_(outline_.from),
          to_(outline_.to),
          leadingPart_(style_.leadingPart),
          lineWidth_(style_.stroke ? style_.stroke->style.width : 0) {}

 protected:
    Size fit(TextRuler&, const Proposal& proposal) const override {
        return {proposal.width.value_or(0), proposal.height.value_or(0)};
    }

    void take(Node* before, Update& update) override {
        fill_ = MovingFill(style_.fill, update.palette);
        if (style_.stroke) stroke_ = MovingFill(style_.stroke->fill, update.palette);
        for (const Shadow& shadow : style_.shadows)
            shadows_.emplace_back(shadow, update.palette);
        if (before == nullptr) return;
        const auto& last = *static_cast<const ShapeNode*>(before);
        update.carry(from_, last.from_);
        update.carry(to_, last.to_);
        update.carry(leadingPart_, last.leadingPart_);
        fill_.carry(last.fill_, update);
        if (style_.stroke && last.style_.stroke) {
            stroke_.carry(last.stroke_, update);
            update.carry(lineWidth_, last.lineWidth_);
        }
        for (std::size_t i = 0; i < std::min(shadows_.size(), last.shadows_.size()); ++i)
            shadows_[i].carry(last.shadows_[i], update);
    }

    void paint(SceneBuilder& scene, const Rect& frame) const override {
        // Where nothing is there, nothing that goes on in it is worth a picture.
        if (!(scene.value(leadingPart_) > 0)) return;
        const Shape form = formIn(scene, frame);
        const Rect rect = boundsOf(form);
        const bool isFilled = !(style_.fill == FillStyle());
        std::optional<StrokeStyle> line;
        if (style_.stroke) {
            line = style_.stroke->style;
            line->width = scene.value(lineWidth_);
        }
        for (std::size_t i = 0; i < shadows_.size(); ++i) {
            scene.shadow({.shape = form,
                          .stroke = isFilled ? std::nullopt : line,
                          .radius = scene.value(shadows_[i].radius),
                          .offset = scene.value(shadows_[i].offset),
                          .color = shadows_[i].colorIn(scene),
                          .isOutsideOnly = style_.shadows[i].isOutsideOnly});
        }
        scene.fill(form, fill_.valueIn(scene, style_.fill.direction, rect), style_.snapping);
        if (!line) return;
        scene.stroke(form, *line, stroke_.valueIn(scene, style_.stroke->fill.direction, rect),
                     style_.snapping);
    }

 private:
    Shape formIn(SceneBuilder& scene, Rect frame) const {
        const double part = std::max(scene.value(leadingPart_), 0.0);
        frame.size.width *= part;
        switch (outline_.kind) {
            case Outline::Kind::rectangle:
                return RoundedRect{frame};
            case Outline::Kind::roundedRectangle:
                return RoundedRect{frame, outline_.radius, outline_.corners};
            case Outline::Kind::capsule:
                // The beginning of a bar is a dot that grows, and stays within the round end of its track.
                if (part < 1 && frame.size.width < frame.size.height) {
                    const double dot = frame.size.width;
                    return RoundedRect{{{frame.minX(), frame.midY() - dot / 2}, {dot, dot}}, dot / 2};
                }
                return RoundedRect{frame, std::min(frame.size.width, frame.size.height) / 2,
                                   outline_.corners};
            case Outline::Kind::circle: {
                const double side = std::min(frame.size.width, frame.size.height);
                return RoundedRect{{{frame.midX() - side / 2, frame.midY() - side / 2}, {side, side}},
                                   side / 2};
            }
            case Outline::Kind::arc: {
                const double radius = std::min(frame.size.width, frame.size.height) / 2;
                const double step = kArcStep / (2 * std::numbers::pi * radius);
                return Arc{{frame.midX(), frame.midY()},
                           radius,
                           scene.stepped(from_, step),
                           scene.stepped(to_, step)};
            }
            case Outline::Kind::path:
                return PlacedPath{outline_.path, frame.origin};
        }
        return RoundedRect{frame};
    }

    Outline outline_;
    ShapeStyle style_;
    Animated<double> from_;
    Animated<double> to_;
    Animated<double> leadingPart_;
    Animated<double> lineWidth_;
    MovingFill fill_;
    MovingFill stroke_;
    std::vector<MovingShadow> shadows_;
};

}  // namespace

Element shape(const Outline& outline, const ShapeStyle& style) {
    return Element(std::make_unique<ShapeNode>(outline, style));
}

}  // namespace norvane
