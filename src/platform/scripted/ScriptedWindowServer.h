#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/MainQueue.h"
#include "platform/Observers.h"
#include "platform/scripted/ScriptedTime.h"
#include "platform/WindowServer.h"

namespace norvane {

class ScriptedPopoverWindow;

// A desktop with one screen, a panel along its top and a pointer that goes where a test says. Everything that
// is made here can be found again, looked at and clicked.
class ScriptedWindowServer final : public WindowServer {
 public:
    // Both outlive the server.
    ScriptedWindowServer(const ScriptedTime& time, MainQueue& mainQueue)
        : time_(time), mainQueue_(mainQueue) {}

    std::unique_ptr<StatusItem> statusItemWithLength(double points) override;
    std::unique_ptr<PopoverWindow> makePopoverWindow(SurfaceContent& content,
                                                     PopoverWindowObserver& observer) override;

    // The whole screen and the part of it that the panel leaves free; none for a machine without a screen.
    std::optional<Rect> screen = Rect{{0, 0}, {1600, 1000}};
    static constexpr double kPanelHeight = 22;
    std::optional<Rect> visibleFrame() const;

    // Where the panel puts the item's right edge, from the right edge of the screen.
    double statusItemRightMargin = 0;
    // Whether a panel is running: without one the item has no button.
    bool hasPanel = true;
    // Brings the panel up.
    void startPanel();
    // Whether it tells of a press on the item at once, and not after popovers took it for one outside.
    bool panelKnowsPresses = true;

    // Whether windows paint the frames that their contents wish for. Without, they paint what has changed.
    bool runsFrames = false;

    // The status item as the user sees it. Asked without an item, there is nothing.
    double statusItemLength() const { return length_; }
    std::optional<Rect> buttonFrame() const;
    SurfaceContent* statusItemContent() const { return content_; }
    DisplayList statusItemPicture() const;
    void clickStatusItem();
    const std::string& toolTip() const { return toolTip_; }
    const std::vector<StatusMenuItem>& contextMenu() const { return menu_; }

    // The windows that are on the screen, the front one last.
    const std::vector<ScriptedPopoverWindow*>& windows() const { return shown_; }
    // Presses and releases a button of the pointer there: a press outside of a window tells that window.
    void click(Point at);
    // The keyboard's focus goes to another program.
    void focusElsewhere();
    // A key for the window that has the keyboard.
    void press(KeyEvent::Key key);

 private:
    friend class ScriptedStatusItem;
    friend class ScriptedPopoverWindow;

    const ScriptedTime& time_;
    MainQueue& mainQueue_;
    double length_ = 0;
    bool hasItem_ = false;
    SurfaceContent* content_ = nullptr;
    std::function<void()> action_;
    std::string toolTip_;
    std::vector<StatusMenuItem> menu_;
    Observers<> panelStarted_;
    std::vector<ScriptedPopoverWindow*> shown_;
    ScriptedPopoverWindow* key_ = nullptr;
};

}  // namespace norvane
