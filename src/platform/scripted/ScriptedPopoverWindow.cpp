#include "platform/scripted/ScriptedPopoverWindow.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace norvane {
namespace {

// Kept free at the far edge of the screen, in points.
constexpr double kMargin = 8;

}  // namespace

void ScriptedPopoverWindow::place(const Rect& anchor) {
    anchor_ = anchor;
    hangsUp_ = server_.screen && anchor.midY() > server_.screen->midY();
    content_.setChangeHandler([this] {
        ++changes_;
        repaintSoon();
    });
    size_ = content_.fittingSize(most());
    left_ = anchor.midX() - size_.width / 2;
}

Size ScriptedPopoverWindow::most() const {
    const Rect screen = visibleFrame().value_or(Rect{{}, {1e6, 1e6}});
    const double room = hangsUp_ ? anchor_.minY() - screen.minY() : screen.maxY() - anchor_.maxY();
    return {screen.size.width, std::max(room - kGap - kMargin, 0.0)};
}

Rect ScriptedPopoverWindow::frame() const {
    const double top = hangsUp_ ? anchor_.minY() - kGap - size_.height : anchor_.maxY() + kGap;
    return {{left_, top}, size_};
}

void ScriptedPopoverWindow::orderFront() {
    auto& shown = server_.shown_;
    const bool wasShown = isShown();
    shown.erase(std::remove(shown.begin(), shown.end(), this), shown.end());
    shown.push_back(this);
    if (wasShown) return;
    repaint();  // a window comes up painted
    placesShown_.push_back(frame().origin);
    if (wantsKey_) server_.key_ = this;
}

void ScriptedPopoverWindow::makeKeyWindow() {
    wantsKey_ = true;
    if (isShown()) server_.key_ = this;
}

void ScriptedPopoverWindow::setFrame(const Rect& frame) {
    left_ = frame.minX();
    if (isShown()) placesShown_.push_back(this->frame().origin);
}

bool ScriptedPopoverWindow::isShown() const {
    return std::find(server_.shown_.begin(), server_.shown_.end(), this) != server_.shown_.end();
}

void ScriptedPopoverWindow::orderOut() {
    auto& shown = server_.shown_;
    shown.erase(std::remove(shown.begin(), shown.end(), this), shown.end());
    if (server_.key_ == this) server_.key_ = nullptr;
    content_.setChangeHandler(nullptr);
    repaint_.cancel();
    isRepaintDue_ = false;
    wantsKey_ = false;
    changes_ = 0;
    pictures_ = 0;
    placesShown_.clear();
    lastPicture_ = {};
}

void ScriptedPopoverWindow::repaintSoon() {
    if (!isShown() || std::exchange(isRepaintDue_, true)) return;
    repaint_ = server_.mainQueue_.after(std::chrono::nanoseconds(0), [this] {
        isRepaintDue_ = false;
        repaint();
    });
}

void ScriptedPopoverWindow::repaint() {
    ++pictures_;
    lastPicture_ = picture();
    if (!server_.runsFrames || content_.frameRate() <= 0 || isRepaintDue_) return;
    isRepaintDue_ = true;
    const std::chrono::duration<double> wait(1 / content_.frameRate());
    repaint_ = server_.mainQueue_.after(std::chrono::duration_cast<std::chrono::nanoseconds>(wait), [this] {
        isRepaintDue_ = false;
        repaint();
    });
}

DisplayList ScriptedPopoverWindow::picture() {
    size_ = content_.fittingSize(most());
    return content_.displayList(size_, server_.time_.monotonic());
}

}  // namespace norvane
