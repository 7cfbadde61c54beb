#include "views/Spinner.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>

#include "views/SceneBuilder.h"
#include "views/Update.h"

namespace norvane {
namespace {

constexpr std::chrono::nanoseconds kTurn = std::chrono::milliseconds(900);
// In turns.
constexpr double kLength = 0.28;
// Of the side.
constexpr double kLineWidth = 0.125;
constexpr double kTrackOpacity = 0.2;

class SpinnerNode final : public Node {
 public:
    SpinnerNode(std::string name, double side, const Paint& paint)
        : told_{.role = AccessibleRole::progress, .name = std::move(name)}, side_(side), paint_(paint) {}

 protected:
    Size fit(TextRuler&, const Proposal&) const override { return {side_, side_}; }
    void take(Node* before, Update& update) override {
        if (before != nullptr && static_cast<const SpinnerNode*>(before)->side_ != side_) {
            update.layoutChanged();
        }
    }

    void paint(SceneBuilder& scene, const Rect& frame) const override {
        if (!scene.isStill()) scene.wantFrames(SceneBuilder::kSteadyRate);
        scene.accessible(told_, frame, [&] { paintArcs(scene, frame); });
    }

 private:
    void paintArcs(SceneBuilder& scene, const Rect& frame) const {
        const double side = std::min(frame.size.width, frame.size.height);
        const Color color = scene.palette().color(paint_);
        const double width = side * kLineWidth;
        const Arc track{{frame.midX(), frame.midY()}, (side - width) / 2, 0, 1};
        scene.stroke(track, {.width = width}, color.withOpacity(kTrackOpacity));
        Arc arc = track;
        if (!scene.isStill()) {
            arc.from = std::chrono::duration<double>(scene.now().time_since_epoch() % kTurn) / kTurn;
        }
        arc.to = arc.from + kLength;
        scene.stroke(arc, {.width = width, .cap = LineCap::round}, color);
    }

    Accessible told_;
    double side_;
    Paint paint_;
};

}  // namespace

Element spinner(std::string name, double side, const Paint& paint) {
    return Element(std::make_unique<SpinnerNode>(std::move(name), side, paint));
}

}  // namespace norvane
