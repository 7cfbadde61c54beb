#include "platform/scripted/ScriptedPopoverWindow.h"

#include <algorithm>

namespace norvane {

void ScriptedPopoverWindow::place(Point topLeft) {
    origin_ = topLeft;
    content_.setChangeHandler([this] { ++changes_; });
}

void ScriptedPopoverWindow::orderFront() {
    auto& shown = server_.shown_;
    shown.erase(std::remove(shown.begin(), shown.end(), this), shown.end());
    shown.push_back(this);
    placesShown_.push_back(origin_);
    picture();  // a window comes up painted
    if (wantsKey_) server_.key_ = this;
}

void ScriptedPopoverWindow::makeKeyWindow() {
    wantsKey_ = true;
    if (isShown()) server_.key_ = this;
}

void ScriptedPopoverWindow::setFrame(const Rect& frame) {
    origin_ = frame.origin;
    if (isShown()) placesShown_.push_back(origin_);
}

bool ScriptedPopoverWindow::isShown() const {
    return std::find(server_.shown_.begin(), server_.shown_.end(), this) != server_.shown_.end();
}

void ScriptedPopoverWindow::orderOut() {
    auto& shown = server_.shown_;
    shown.erase(std::remove(shown.begin(), shown.end(), this), shown.end());
    if (server_.key_ == this) server_.key_ = nullptr;
    content_.setChangeHandler(nullptr);
    wantsKey_ = false;
    changes_ = 0;
    placesShown_.clear();
}

DisplayList ScriptedPopoverWindow::picture() {
    return content_.displayList(content_.fittingSize(), server_.time_.monotonic());
}

}  // namespace norvane
