#include "views/Node.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <typeinfo>
#include <unordered_map>

#include "views/SceneBuilder.h"
#include "views/Update.h"

namespace norvane {
namespace {

// Proposals that are remembered. One round of layout makes fewer for a node, also for one deep within rows
// and columns in turn; a node that forgot one of them would ask all that is below it again. A size that is
// animated would bring a new one with each frame.
constexpr std::size_t kMostSizes = 32;
// Whoever presses faster than things fade does not pile them up.
constexpr std::size_t kMostLeaving = 8;

double plain(double length, std::optional<double> offered) {
    if (std::isnan(length) || length < 0) return 0;
    const bool mayBeInfinite = offered && std::isinf(*offered);
    return std::isinf(length) && !mayBeInfinite ? 0 : length;
}

std::optional<double> plain(std::optional<double> offered) {
    if (!offered) return offered;
    return std::isnan(*offered) ? 0 : std::max(*offered, 0.0);
}

double finite(double value) {
    return std::isfinite(value) ? value : 0;
}

// Finds children by their keys, in the order in which they mostly come: the one that they had.
class Keys {
 public:
    explicit Keys(std::vector<Child>& children) : children_(children) {}

    Child* find(std::string_view key) {
        if (next_ < children_.size() && children_[next_].key == key) return &children_[next_++];
        if (places_.empty()) {
            for (std::size_t i = 0; i < children_.size(); ++i)
                places_.emplace(children_[i].key, i);
        }
        const auto found = places_.find(key);
        if (found == places_.end()) return nullptr;
        next_ = found->second + 1;
        return &children_[found->second];
    }

 private:
    std::vector<Child>& children_;
    std::size_t next_ = 0;
    std::unordered_map<std::string_view, std::size_t> places_;
};

}  // namespace

Node::Node() = default;
Node::Node(std::vector<Child> children) : children_(std::move(children)) {}
Node::~Node() = default;

bool Node::isSameKindAs(const Node& other) const {
    return typeid(*this) == typeid(other);
}

Size Node::measure(TextRuler& ruler, const Proposal& proposal) const {
    const Proposal offered{plain(proposal.width), plain(proposal.height)};
    for (const auto& [known, size] : sizes_) {
        if (known == offered) return size;
    }
    const Size wanted = fit(ruler, offered);
    const Size size{plain(wanted.width, offered.width), plain(wanted.height, offered.height)};
    if (sizes_.size() >= kMostSizes) sizes_.erase(sizes_.begin());
    sizes_.emplace_back(offered, size);
    return size;
}

void Node::place(TextRuler& ruler, const Rect& frame) {
    frame_ = {{finite(frame.origin.x), finite(frame.origin.y)},
              {finite(std::max(frame.size.width, 0.0)), finite(std::max(frame.size.height, 0.0))}};
    placeChildren(ruler, frame_);
}

void Node::placeChildren(TextRuler& ruler, const Rect& frame) {
    for (const Child& child : children_)
        child.node->place(ruler, frame);
}

void Node::update(Node* before, Update& update) {
    if (before != nullptr) {
        frame_ = before->frame_;
        place_ = before->place_;
        isPlaced_ = before->isPlaced_;
        // Right as long as nothing says that layout changes; then they are forgotten, all over the tree.
        sizes_ = std::move(before->sizes_);
    } else {
        update.layoutChanged();
    }
    take(before, update);
    if (before != nullptr) {
        adopt(std::move(before->children_), std::move(before->leaving_), true, update);
    } else {
        adopt({}, {}, false, update);
        if (update.isOnScreen) didAppear(update);
    }
}

void Node::replaceChildren(std::vector<Child> children, Update& update) {
    std::vector<Child> before = std::exchange(children_, std::move(children));
    adopt(std::move(before), std::move(leaving_), true, update);
}

void Node::adopt(std::vector<Child> before, std::vector<Child> leaving, bool isContinued, Update& update) {
    leaving_ = std::move(leaving);
    Keys keys(before);
    const Child* last = nullptr;
    for (Child& child : children_) {
        Child* old = keys.find(child.key);
        if (old != nullptr && (!old->node || !child.node->isSameKindAs(*old->node))) old = nullptr;
        child.node->update(old != nullptr ? old->node.get() : nullptr, update);
        if (old != nullptr) {
            // Others of the same size in another order are placed anew as well.
            if (old < last || old->layoutPriority != child.layoutPriority) update.layoutChanged();
            last = old;
            child.presence = old->presence;
            old->node.reset();
        } else if (isContinued && update.layoutAnimation() && child.transition != Transition::none()) {
            child.presence.jumpTo(0);
            child.presence.animateTo(1, *update.layoutAnimation(), update.now);
        }
    }
    for (Child& old : before) {
        if (!old.node) continue;
        update.layoutChanged();
        letGo(std::move(old), update);
    }
    prune(update.now);
}

void Node::letGo(Child child, const Update& update) {
    const bool isSeenGoing = update.layoutAnimation() && child.transition != Transition::none();
    if (!isSeenGoing) return;
    child.presence.animateTo(0, *update.layoutAnimation(), update.now);
    child.node->retire();
    if (leaving_.size() >= kMostLeaving) leaving_.erase(leaving_.begin());
    leaving_.push_back(std::move(child));
}

void Node::take(Node*, Update&) {}

void Node::settle(Point parentOrigin, const Update& update) {
    const Rect wanted{{frame_.minX() - parentOrigin.x, frame_.minY() - parentOrigin.y}, frame_.size};
    if (std::exchange(isPlaced_, true)) {
        update.move(place_, wanted, update.layoutAnimation());
    } else {
        place_.jumpTo(wanted);
    }
    for (const Child& child : children_)
        child.node->settle(frame_.origin, update);
}

void Node::forgetSizes() {
    sizes_.clear();
    for (const Child& child : children_)
        child.node->forgetSizes();
}

void Node::forgetStill() const {
    still_.reset();
    for (const Child& child : children_)
        child.node->forgetStill();
    for (const Child& child : leaving_)
        child.node->forgetStill();
}

void Node::appear(Update& update) {
    didAppear(update);
    for (const Child& child : children_)
        child.node->appear(update);
}

void Node::didAppear(Update&) {}

void Node::retire() {
    didRetire();
    for (const Child& child : children_)
        child.node->retire();
}

void Node::prune(MonotonicInstant now) {
    leaving_.erase(std::remove_if(leaving_.begin(), leaving_.end(),
                                  [now](const Child& child) { return !child.presence.isMovingAt(now); }),
                   leaving_.end());
}

void Node::build(SceneBuilder& scene) const {
    const Rect place = scene.value(place_);
    const Point parent = scene.origin();
    const Rect now{{parent.x + place.minX(), parent.y + place.minY()}, place.size};
    scene.inside(now.origin, [&] { paint(scene, now); });
}

void Node::paint(SceneBuilder& scene, const Rect&) const {
    paintChildren(scene);
}

void Node::paintChildren(SceneBuilder& scene) const {
    // What leaves is behind what has come in its place.
    for (std::size_t i = 0; i < leaving_.size(); ++i)
        scene.leaving(i, leaving_[i]);
    for (const Child& child : children_)
        scene.child(child);
}

}  // namespace norvane
