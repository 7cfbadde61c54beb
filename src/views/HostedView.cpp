#include "views/HostedView.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "views/ComponentNode.h"
#include "views/SceneBuilder.h"

namespace norvane {
namespace {

// Handlers that change state lead to another evaluation, and that to handlers. What has not come to rest
// after so many goes on with the next picture.
constexpr int kMostRounds = 8;

}  // namespace

HostedView::HostedView(std::function<Element()> body, const Platform& platform)
    : body_(std::move(body)),
      ruler_(platform.textRuler),
      appearance_(platform.appearance),
      mainQueue_(platform.dispatch.mainQueue()),
      clock_(platform.monotonicClock) {
    appearanceChange_ = appearance_.onDidChange([this] { invalidate(); });
}

HostedView::~HostedView() = default;

void HostedView::change(const std::function<void()>& changes) {
    perform(std::nullopt, [&] {
        changes();
        pending_.isWhole = true;
    });
}

void HostedView::animate(const Animation& animation, const std::function<void()>& changes) {
    perform(animation, [&] {
        changes();
        pending_.isWhole = true;
    });
}

void HostedView::invalidate() {
    change([] {});
}

void HostedView::perform(const std::optional<Animation>& animation, const std::function<void()>& changes) {
    // What nobody sees does not move, nor what is not to. A plain change inside a moving one moves along.
    const bool mayMove = isOnScreen_ && !reducesMotion();
    const std::optional<Animation> seen = !mayMove ? std::nullopt : animation ? animation : running_;
    if (!pending_.isEmpty() && pending_.animation != seen && root_.node && !isEvaluating_) flush();
    pending_.animation = seen;
    const std::optional<Animation> outer = std::exchange(running_, seen);
    // Whoever changes something may end the view with it.
    const std::weak_ptr<const int> life(life_);
    changes();
    if (life.expired()) return;
    running_ = outer;
    tellChanged();
}

void HostedView::invalidate(const std::shared_ptr<StateCell>& cell) {
    if (std::exchange(cell->isChanged, true)) return;
    pending_.cells.push_back(cell);
}

void HostedView::later(std::function<void()> task) {
    mainQueue_.async([this, life = std::weak_ptr(life_), task = std::move(task)]() mutable {
        if (life.expired()) return;
        if (isOnScreen_) {
            task();
        } else {
            postponed_.push_back(std::move(task));
        }
    });
}

void HostedView::appear() {
    if (std::exchange(isOnScreen_, true)) return;
    isAppearDue_ = true;
    for (auto& task : std::exchange(postponed_, {}))
        later(std::move(task));
    tellChanged();
}

void HostedView::disappear() {
    isOnScreen_ = false;
    isAppearDue_ = false;
    // What has not been seen moving will be in its place.
    pending_.animation.reset();
    layoutAnimation_.reset();
    pointer({PointerEvent::Kind::leave, {}});
    attention_ = {};
    scene_ = {};
    if (root_.node) root_.node->forgetStill();
}

// Until nothing more follows from what has been changed.
void HostedView::evaluate() {
    for (int round = 0; round < kMostRounds; ++round) {
        if (!pending_.isEmpty()) flush();
        if (std::exchange(isAppearDue_, false)) appearAll();
        if (handlers_.empty()) return;
        for (const auto& handler : std::exchange(handlers_, {}))
            handler();
    }
}

Palette HostedView::palette() const {
    return Palette::of(appearance_.isDark(), appearance_.accentColor());
}

Update HostedView::updateBy(const std::optional<Animation>& animation) {
    return {*this, ruler_, palette(), now(), isOnScreen_ && !isAppearDue_, animation};
}

void HostedView::flush() {
    const Pending pending = std::exchange(pending_, {});
    ++edition_;
    Update update = updateBy(pending.animation);
    // The last layout that is due moves by another animation: it comes first.
    if (isLayoutDue_ && root_.node && layoutAnimation_ != update.layoutAnimation()) {
        layOut(isFitted_ ? fitted() : size_);
    }
    isEvaluating_ = true;
    if (pending.isWhole) {
        auto children = childrenOf(listOf(body_()));
        NodePointer before =
            std::exchange(root_.node, children.empty() ? nullptr : std::move(children.front().node));
        if (root_.node) {
            const bool isSame = before && root_.node->isSameKindAs(*before);
            root_.node->update(isSame ? before.get() : nullptr, update);
        }
    } else {
        for (const auto& weak : pending.cells) {
            const auto cell = weak.lock();
            // It may have left, or been evaluated along with what it is in.
            const bool isThere = cell && cell->isChanged && cell->host != nullptr && cell->node != nullptr;
            if (isThere) cell->node->evaluate(update);
        }
    }
    isEvaluating_ = false;
    auto handlers = update.takeHandlers();
    handlers_.insert(handlers_.end(), std::make_move_iterator(handlers.begin()),
                     std::make_move_iterator(handlers.end()));
    if (!update.isLayoutChanged()) return;
    if (root_.node) root_.node->forgetSizes();
    isLayoutDue_ = true;
    layoutAnimation_ = update.layoutAnimation();
}

void HostedView::appearAll() {
    if (!root_.node) return;
    ++edition_;
    Update update = updateBy(std::nullopt);
    root_.node->appear(update);
    auto handlers = update.takeHandlers();
    handlers_.insert(handlers_.end(), std::make_move_iterator(handlers.begin()),
                     std::make_move_iterator(handlers.end()));
}

Size HostedView::fitted() {
    if (!root_.node) return {};
    Size size = root_.node->measure(ruler_, {});
    if (size.height > most_.height) size = root_.node->measure(ruler_, {std::nullopt, most_.height});
    return {std::min(size.width, most_.width), std::min(size.height, most_.height)};
}

Size HostedView::fittingSize(Size most) {
    // In this order, what is no number is 0.
    most_ = {std::max(0.0, most.width), std::max(0.0, most.height)};
    evaluate();
    return fitted();
}

void HostedView::layOut(Size size) {
    // A size that the surface gives by itself is there at once.
    const Update update = updateBy(isLayoutDue_ ? layoutAnimation_ : std::nullopt);
    isLayoutDue_ = false;
    layoutAnimation_.reset();
    ++edition_;
    size_ = size;
    if (!root_.node) return;
    root_.node->place(ruler_, {{}, size});
    root_.node->settle({}, update);
}

DisplayList HostedView::displayList(Size size, MonotonicInstant at) {
    evaluate();
    isFitted_ = size == fitted();
    if (isLayoutDue_ || size != size_) layOut(size);
    scene_ = sceneAt(at, false);
    DisplayList picture = std::exchange(scene_.picture, {});
    // What had the keyboard may be gone; whatever comes to its place later starts without it.
    const bool isFocusThere =
        std::any_of(scene_.regions.begin(), scene_.regions.end(),
                    [this](const SensitiveRegion& region) { return region.key == attention_.focused; });
    if (!isFocusThere) attention_.focused.clear();
    // What stands under a resting pointer may be another thing now.
    if (pointer_ || !hovered_.empty()) hover();
    return picture;
}

Scene HostedView::sceneAt(MonotonicInstant at, bool isTold) {
    const Size size = root_.node ? root_.node->sizeAt(at) : size_;
    SceneBuilder builder(palette(), size, at, attention_,
                         isTold ? SceneBuilder::Purpose::accessibleTree : SceneBuilder::Purpose::picture,
                         reducesMotion() ? SceneBuilder::Motion::none : SceneBuilder::Motion::all, edition_);
    if (root_.node) builder.child(root_);
    return std::move(builder).finish();
}

AccessibleNode HostedView::accessibleTree() {
    if (isOnScreen_) {
        evaluate();
        if (isLayoutDue_) layOut(isFitted_ ? fitted() : size_);
    }
    return sceneAt(now(), true).accessible;
}

bool HostedView::perform(std::string_view key, std::string_view action) {
    const Scene scene = sceneAt(now(), true);
    const auto [first, last] = scene.actions.equal_range(key);
    const auto found =
        std::find_if(first, last, [action](const auto& offered) { return offered.second.first == action; });
    if (found == last) return false;
    found->second.second();
    return true;
}

// --- Pointer ---

void HostedView::pointer(const PointerEvent& event) {
    switch (event.kind) {
        case PointerEvent::Kind::move: {
            pointer_ = event.at;
            hover();
            const SensitiveRegion* region = pressed_.empty() ? nullptr : regionAt(event.at);
            Attention attention = attention_;
            attention.pressed = region != nullptr && region->key == pressed_ ? pressed_ : "";
            setAttention(std::move(attention));
            break;
        }
        case PointerEvent::Kind::leave: {
            pointer_.reset();
            pressed_.clear();
            hover();
            Attention attention = attention_;
            attention.pressed.clear();
            setAttention(std::move(attention));
            break;
        }
        case PointerEvent::Kind::press:
            press(event.at);
            break;
        case PointerEvent::Kind::release:
            release(event.at);
            break;
        case PointerEvent::Kind::scroll:
            scroll(event);
            break;
    }
}

void HostedView::press(Point at) {
    const SensitiveRegion* region = regionAt(at);
    pressed_ = region != nullptr ? region->key : "";
    // Whoever points needs no ring; the keyboard goes on from here.
    setAttention({.pressed = pressed_, .focused = pressed_, .showsFocus = false});
}

void HostedView::release(Point at) {
    const std::string pressed = std::exchange(pressed_, {});
    const SensitiveRegion* region = regionAt(at);
    const auto interaction =
        region != nullptr && !pressed.empty() && region->key == pressed ? region->interaction : nullptr;
    Attention attention = attention_;
    attention.pressed.clear();
    setAttention(std::move(attention));
    if (interaction) interaction->action();
}

void HostedView::scroll(const PointerEvent& event) {
    // The innermost area that can.
    for (auto region = scene_.regions.rbegin(); region != scene_.regions.rend(); ++region) {
        if (!region->interaction->onScroll || !region->frame.contains(event.at)) continue;
        if (region->interaction->onScroll(event.by)) return;
    }
}

const SensitiveRegion* HostedView::regionAt(Point at) const {
    const auto found =
        std::find_if(scene_.regions.rbegin(), scene_.regions.rend(), [&](const SensitiveRegion& region) {
            return region.interaction->action && region.frame.contains(at);
        });
    return found == scene_.regions.rend() ? nullptr : &*found;
}

void HostedView::hover() {
    std::vector<SensitiveRegion> now;
    if (pointer_) {
        std::copy_if(scene_.regions.begin(), scene_.regions.end(), std::back_inserter(now),
                     [&](const SensitiveRegion& region) {
                         return region.interaction->onHover && region.frame.contains(*pointer_);
                     });
    }
    const auto isIn = [](const std::vector<SensitiveRegion>& regions, const SensitiveRegion& wanted) {
        return std::any_of(regions.begin(), regions.end(),
                           [&](const SensitiveRegion& region) { return region.key == wanted.key; });
    };
    // A handler may replace the scene, so what is over what is settled before the first is called.
    const std::vector<SensitiveRegion> before = std::exchange(hovered_, now);
    for (const SensitiveRegion& region : before) {
        if (!isIn(now, region)) region.interaction->onHover(false);
    }
    for (const SensitiveRegion& region : now) {
        if (!isIn(before, region)) region.interaction->onHover(true);
    }
}

// --- Keyboard ---

bool HostedView::key(const KeyEvent& event) {
    switch (event.key) {
        case KeyEvent::Key::tab:
            return moveFocus(false);
        case KeyEvent::Key::backTab:
            return moveFocus(true);
        case KeyEvent::Key::space:
        case KeyEvent::Key::returnKey:
            return pressFocused();
        default:
            break;
    }
    // What has the keyboard comes first, then whatever has a use for the key, the innermost first.
    std::vector<std::shared_ptr<const Interaction>> focused;
    std::vector<std::shared_ptr<const Interaction>> others;
    for (auto region = scene_.regions.rbegin(); region != scene_.regions.rend(); ++region) {
        if (!region->interaction->onKey) continue;
        const bool hasFocus = region->key == attention_.focused;
        if (region->interaction->takesFocus && !hasFocus) continue;
        (hasFocus ? focused : others).push_back(region->interaction);
    }
    const auto uses = [&](const auto& interaction) { return interaction->onKey(event.key); };
    return std::any_of(focused.begin(), focused.end(), uses) ||
           std::any_of(others.begin(), others.end(), uses);
}

bool HostedView::moveFocus(bool isBackward) {
    std::vector<const SensitiveRegion*> stops;
    for (const SensitiveRegion& region : scene_.regions) {
        if (region.interaction->takesFocus) stops.push_back(&region);
    }
    if (stops.empty()) return false;
    const auto current = std::find_if(stops.begin(), stops.end(), [this](const SensitiveRegion* region) {
        return region->key == attention_.focused;
    });
    const std::size_t count = stops.size();
    std::size_t next = isBackward ? count - 1 : 0;
    if (current != stops.end()) {
        const auto at = static_cast<std::size_t>(current - stops.begin());
        next = (at + (isBackward ? count - 1 : 1)) % count;
    }
    focusOn(*stops[next]);
    return true;
}

bool HostedView::focus(std::string_view key) {
    const auto wanted = std::find_if(
        scene_.regions.begin(), scene_.regions.end(),
        [key](const SensitiveRegion& region) { return region.key == key && region.interaction->takesFocus; });
    if (wanted == scene_.regions.end()) return false;
    focusOn(*wanted);
    return true;
}

void HostedView::focusOn(const SensitiveRegion& wanted) {
    const SensitiveRegion region = wanted;  // a change of the attention may replace the scene
    setAttention({.pressed = attention_.pressed, .focused = region.key, .showsFocus = true});
    reveal(region);
}

// Scrolls what it is in so that it can be seen: the innermost area within itself, the others by what is left.
void HostedView::reveal(const SensitiveRegion& region) {
    Rect whole = region.whole;
    for (auto around = scene_.regions.rbegin(); around != scene_.regions.rend(); ++around) {
        const bool isInside = around->interaction->onReveal && region.key.starts_with(around->key + '/');
        if (!isInside) continue;
        const double above = around->whole.minY() - whole.minY();
        const double below = whole.maxY() - around->whole.maxY();
        const double by = above > 0 ? -above : below > 0 ? below : 0;
        around->interaction->onReveal(by);
        whole.origin.y -= by;
    }
}

bool HostedView::pressFocused() {
    const auto focused =
        std::find_if(scene_.regions.begin(), scene_.regions.end(), [this](const SensitiveRegion& region) {
            return region.key == attention_.focused && region.interaction->action;
        });
    if (focused == scene_.regions.end() || !attention_.showsFocus) return false;
    const auto interaction = focused->interaction;  // the action may replace the scene
    interaction->action();
    return true;
}

void HostedView::setAttention(Attention attention) {
    if (attention == attention_) return;
    attention_ = std::move(attention);
    ++edition_;
    tellChanged();
}

}  // namespace norvane
