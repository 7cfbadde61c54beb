#pragma once

#include "platform/scripted/ScriptedWindowServer.h"

namespace norvane {

// The one item in the scripted desktop's panel.
class ScriptedStatusItem final : public StatusItem {
 public:
    ScriptedStatusItem(ScriptedWindowServer& server, double length) : server_(server) {
        server_.hasItem_ = true;
        server_.length_ = length;
    }
    ~ScriptedStatusItem() override {
        server_.hasItem_ = false;
        server_.content_ = nullptr;
        server_.action_ = nullptr;
        server_.menu_.clear();
    }

    void setLength(double points) override { server_.length_ = points; }
    void setContent(SurfaceContent* content) override { server_.content_ = content; }
    void setAction(std::function<void()> action) override { server_.action_ = std::move(action); }
    void setToolTip(const std::string& text) override { server_.toolTip_ = text; }
    void setContextMenu(std::vector<StatusMenuItem> items) override { server_.menu_ = std::move(items); }
    std::optional<Rect> buttonFrame() const override { return server_.buttonFrame(); }
    Cancellation onButtonDidAppear(std::function<void()> observer) override {
        return server_.panelStarted_.add(std::move(observer));
    }
    bool knowsItsPresses() const override { return server_.panelKnowsPresses; }

 private:
    ScriptedWindowServer& server_;
};

}  // namespace norvane
