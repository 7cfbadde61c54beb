#include "dashboard/ArdoMultiCPUGraph.h"

#include <cmath>
#include <utility>

#include "dashboard/ArdoGridBackground.h"
#include "dashboard/CachedPaths.h"
#include "dashboard/CoreItem.h"
#include "drawing/DisplayList.h"
#include "views/DepthStack.h"
#include "views/Node.h"
#include "views/SceneBuilder.h"
#include "views/Update.h"

namespace norvane {
namespace {

constexpr double kLineWidth = 1.2;
// Lines stand out of the picture's edges by half their width.
constexpr double kOverhang = 1;

// The graph's picture, made once for each sample and moved in between. What it was made for is kept with it.
class SlidingGraphNode final : public Node {
 public:
    SlidingGraphNode(std::shared_ptr<const std::vector<CPUHistoryPoint>> history, double refreshInterval)
        : history_(std::move(history)), refreshInterval_(refreshInterval) {}

 protected:
    Size fit(TextRuler&, const Proposal& proposal) const override {
        return {proposal.width.value_or(0), proposal.height.value_or(0)};
    }

    void take(Node* before, Update& update) override {
        isDark_ = update.palette.isDark();
        if (before == nullptr) return;
        auto& last = *static_cast<SlidingGraphNode*>(before);
        graphOffset_ = last.graphOffset_;
        if (history_ == last.history_) {
            if (isDark_ == last.isDark_) {
                geoSize_ = last.geoSize_;
                cached_ = std::move(last.cached_);
            }
            return;
        }
        // The newest point enters from the right, and everything glides to its new place until the next one.
        graphOffset_.jumpTo(1);
        graphOffset_.animateTo(0, Animation::linear(refreshInterval_), update.now);
    }

    void paint(SceneBuilder& scene, const Rect& frame) const override {
        if (!cached_ || geoSize_ != frame.size) {
            geoSize_ = frame.size;
            cached_ = picture(scene.palette());
        }
        const double step = CachedPaths::step(frame.size.width);
        const double offset = scene.value(graphOffset_) * step;
        const double top = frame.minY() + frame.size.height - cached_->size.height + kOverhang;
        scene.group(1, RoundedRect{frame}, [&] {
            scene.picture(cached_, {frame.minX() - step + offset, top});
        });
    }

 private:
    // One step wider than the graph, to the left, where the oldest point is; no higher than its highest
    // point, so that little moves while the machine has little to do.
    std::shared_ptr<const DisplayList> picture(const Palette& palette) const {
        const CachedPaths paths = CachedPaths::of(*history_, geoSize_);
        const double step = CachedPaths::step(geoSize_.width);
        auto list = std::make_shared<DisplayList>();
        const double empty = std::floor(geoSize_.height * (1 - CachedPaths::highest(*history_)));
        list->size = {geoSize_.width + step, geoSize_.height - empty + 2 * kOverhang};
        const Point origin{step, kOverhang - empty};
        const Point bottom{step, origin.y + geoSize_.height};
        const auto tone = [&](Ink ink, double opacity) {
            return palette.color(Paint(ink).withOpacity(opacity));
        };
        const auto add = [&](const char* key, DrawCommand command) {
            list->items.push_back({key, {{}, list->size}, std::move(command)});
        };
        const auto placed = [&](const std::shared_ptr<const Path>& path) { return PlacedPath{path, origin}; };
        const StrokeStyle line{.width = kLineWidth, .cap = LineCap::round, .join = LineJoin::round};
        add("effBand", FillShape{placed(paths.effBand),
                                 {tone(kEfficiencyInk, 0.5), tone(kEfficiencyInk, 0.1), origin, bottom}});
        add("effStroke", StrokeShape{placed(paths.effStroke), line, tone(kEfficiencyInk, 1)});
        add("perfBand", FillShape{placed(paths.perfBand),
                                  {tone(kPerformanceInk, 0.6), tone(kPerformanceInk, 0.15), origin, bottom}});
        add("perfStroke", StrokeShape{placed(paths.perfStroke), line, tone(kPerformanceInk, 0.6)});
        return list;
    }

    std::shared_ptr<const std::vector<CPUHistoryPoint>> history_;
    double refreshInterval_;
    bool isDark_ = false;
    // In steps from one point to the next.
    Animated<double> graphOffset_;
    mutable Size geoSize_;
    mutable std::shared_ptr<const DisplayList> cached_;  // null until it is first painted
};

}  // namespace

Element ArdoMultiCPUGraph::body() const {
    return zstack({},                                        //
                  ArdoGridBackground{}.body().opacity(0.1),  //
                  when(history != nullptr, [this] {
                      return Element(std::make_unique<SlidingGraphNode>(history, refreshInterval));
                  }));
}

}  // namespace norvane
