#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Platform.h"
#include "platform/SurfaceContent.h"
#include "views/Attention.h"
#include "views/Element.h"
#include "views/Palette.h"
#include "views/Scene.h"
#include "views/Update.h"
#include "views/ViewHost.h"

namespace norvane {

// Shows a screen on a surface. The screen is its body, a function of its state: it is evaluated when the
// surface asks and the state has changed since, never on its own; a closed one waits for its next showing.
// Its tree of nodes, and the state in it, last from one showing to the next; pictures do not. Main thread
// only.
class HostedView : public SurfaceContent, private ViewHost {
 public:
    // All outlive the view; so does what `body` looks at.
    HostedView(std::function<Element()> body, const Platform& platform);
    ~HostedView() override;
    HostedView(const HostedView&) = delete;
    HostedView& operator=(const HostedView&) = delete;

    // Changes what the body looks at: everything is in its new place at once, or moves there.
    void change(const std::function<void()>& changes);
    void animate(const Animation& animation, const std::function<void()>& changes);
    // What the body looks at has been changed already.
    void invalidate();

    void appear() override;
    void disappear() override;

    Size fittingSize(Size most) override;
    DisplayList displayList(Size size, MonotonicInstant at) override;
    double frameRate() const override { return scene_.frameRate; }
    AccessibleNode accessibleTree() override;
    void pointer(const PointerEvent& event) override;
    bool key(const KeyEvent& event) override;
    bool perform(std::string_view key, std::string_view action) override;
    bool focus(std::string_view key) override;

 private:
    // Changes that have been made under one animation and not been evaluated yet.
    struct Pending {
        std::optional<Animation> animation = {};
        bool isWhole = false;  // the screen's own body has to be evaluated
        std::vector<std::weak_ptr<StateCell>> cells = {};

        bool isEmpty() const { return !isWhole && cells.empty(); }
    };

    void perform(const std::optional<Animation>& animation, const std::function<void()>& changes) override;
    void invalidate(const std::shared_ptr<StateCell>& cell) override;
    void repaint() override {
        ++edition_;
        tellChanged();
    }
    void later(std::function<void()> task) override;
    MonotonicInstant now() const override { return clock_.now(); }
    bool reducesMotion() const override { return appearance_.reducesMotion(); }

    void evaluate();
    void flush();
    void appearAll();
    Palette palette() const;
    Update updateBy(const std::optional<Animation>& animation);
    Size fitted();
    void layOut(Size size);
    Scene sceneAt(MonotonicInstant at, bool isTold);

    const SensitiveRegion* regionAt(Point at) const;
    void hover();
    void press(Point at);
    void release(Point at);
    void scroll(const PointerEvent& event);
    bool moveFocus(bool isBackward);
    void focusOn(const SensitiveRegion& wanted);
    void reveal(const SensitiveRegion& region);
    bool pressFocused();
    void setAttention(Attention attention);

    std::function<Element()> body_;
    TextRuler& ruler_;
    Appearance& appearance_;
    MainQueue& mainQueue_;
    MonotonicClock& clock_;
    Cancellation appearanceChange_;

    Child root_{.key = "0", .node = nullptr, .transition = {}};  // no node before the first evaluation
    Pending pending_{.isWhole = true};
    std::optional<Animation> running_;  // of the change that is being made
    bool isEvaluating_ = false;
    std::vector<std::function<void()>> handlers_;  // to be run when the tree is whole

    bool isOnScreen_ = false;
    bool isAppearDue_ = false;
    std::vector<std::function<void()>> postponed_;  // until it is on the screen

    Size most_;
    Size size_;
    bool isFitted_ = true;  // the surface gives it the size that it likes
    bool isLayoutDue_ = true;
    std::optional<Animation> layoutAnimation_;

    Scene scene_;                // the last picture's
    std::uint64_t edition_ = 1;  // counts whatever happens to the tree, so that pictures in between can share
    Attention attention_;
    std::string pressed_;           // the region in which the button went down; empty for none
    std::optional<Point> pointer_;  // none while it is elsewhere
    std::vector<SensitiveRegion> hovered_;

    // Tasks that are waiting find out by it that the view is gone.
    std::shared_ptr<const int> life_ = std::make_shared<const int>(0);
};

}  // namespace norvane
