#include "views/ScrollArea.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

#include "views/Interaction.h"
#include "views/Update.h"
#include "views/WrappingNode.h"

namespace norvane {
namespace {

constexpr double kLine = 40;
constexpr double kIndicatorWidth = 4;
constexpr double kIndicatorGap = 2;
constexpr double kShortestIndicator = 24;
const Animation kGlide = Animation::easeOut(0.12);

// What lasts while the area stays in the tree: how far its contents have moved up.
struct Scrolling {
    ViewHost* host = nullptr;
    Animated<double> offset;
    double room = 0;
    double contents = 0;

    double most() const { return std::max(contents - room, 0.0); }
    bool canScroll() const { return most() > 0; }

    bool scrollTo(double target) {
        if (std::isnan(target)) return false;
        const double bounded = std::clamp(target, 0.0, most());
        if (bounded == offset.target()) return false;
        if (host->reducesMotion()) {
            offset.jumpTo(bounded);
        } else {
            offset.animateTo(bounded, kGlide, host->now());
        }
        host->repaint();
        return true;
    }
    // With a key: a move that is not possible any more leaves the key to others.
    bool key(KeyEvent::Key key) {
        const double page = std::max(room - kLine, kLine);
        switch (key) {
            case KeyEvent::Key::up:
                return scrollTo(offset.target() - kLine);
            case KeyEvent::Key::down:
                return scrollTo(offset.target() + kLine);
            case KeyEvent::Key::pageUp:
                return scrollTo(offset.target() - page);
            case KeyEvent::Key::pageDown:
                return scrollTo(offset.target() + page);
            case KeyEvent::Key::home:
                return scrollTo(0);
            case KeyEvent::Key::end:
                return scrollTo(most());
            default:
                return false;
        }
    }
};

class ScrollNode final : public WrappingNode {
 public:
    ScrollNode(Element contents, double least) : WrappingNode(std::move(contents)), least_(least) {}

 protected:
    Size fit(TextRuler& ruler, const Proposal& proposal) const override {
        const Size whole = measureChild(ruler, {proposal.width, std::nullopt});
        if (!proposal.height) return whole;
        return {whole.width, std::clamp(*proposal.height, std::min(least_, whole.height), whole.height)};
    }

    void placeChildren(TextRuler& ruler, const Rect& frame) override {
        const Size whole = measureChild(ruler, {frame.size.width, std::nullopt});
        scrolling_->room = frame.size.height;
        scrolling_->contents = whole.height;
        // Contents that have become shorter stay at the edge.
        if (scrolling_->offset.target() > scrolling_->most()) scrolling_->offset.jumpTo(scrolling_->most());
        placeChild(ruler, {frame.origin, {frame.size.width, whole.height}});
    }

    void take(Node* before, Update& update) override {
        scrolling_ =
            before != nullptr ? static_cast<ScrollNode*>(before)->scrolling_ : std::make_shared<Scrolling>();
        scrolling_->host = &update.host;
        auto interaction = std::make_shared<Interaction>();
        interaction->onScroll = [weak = std::weak_ptr(scrolling_)](Point by) {
            const auto scrolling = weak.lock();
            return scrolling && scrolling->scrollTo(scrolling->offset.target() + by.y);
        };
        interaction->onKey = [weak = std::weak_ptr(scrolling_)](KeyEvent::Key key) {
            const auto scrolling = weak.lock();
            return scrolling && scrolling->key(key);
        };
        interaction_ = std::move(interaction);
    }

    void paint(SceneBuilder& scene, const Rect& frame) const override {
        if (!scrolling_->canScroll()) {
            paintChildren(scene);
            return;
        }
        const double offset = std::clamp(scene.value(scrolling_->offset), 0.0, scrolling_->most());
        auto interaction = std::make_shared<Interaction>(*interaction_);
        interaction->onReveal = [weak = std::weak_ptr(scrolling_), offset](double by) {
            if (const auto scrolling = weak.lock()) scrolling->scrollTo(offset + by);
        };
        scene.sense(frame, std::move(interaction));
        scene.accessible({.role = AccessibleRole::scrollArea, .containsMore = true}, frame, [&] {
            scene.group(1, RoundedRect{frame}, [&] {
                scene.moved({0, -offset}, [&] { paintChildren(scene); });
                paintIndicator(scene, frame, offset);
            });
        });
    }

 private:
    void paintIndicator(SceneBuilder& scene, const Rect& frame, double offset) const {
        const double room = frame.size.height;
        const double length =
            std::clamp(room * room / scrolling_->contents, std::min(kShortestIndicator, room), room);
        const double top = frame.minY() + (room - length) * offset / scrolling_->most();
        scene.fill(
            RoundedRect{{{frame.maxX() - kIndicatorWidth - kIndicatorGap, top}, {kIndicatorWidth, length}},
                        kIndicatorWidth / 2},
            scene.palette().color(Paint(Ink::primary).withOpacity(0.3)));
    }

    double least_;
    std::shared_ptr<Scrolling> scrolling_;
    std::shared_ptr<const Interaction> interaction_;
};

}  // namespace

Element scrollArea(Element contents, double least) {
    return Element(std::make_unique<ScrollNode>(std::move(contents), least));
}

}  // namespace norvane
