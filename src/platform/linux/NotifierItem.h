#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/BusConnection.h"
#include "platform/linux/BusName.h"
#include "platform/linux/NotifierImage.h"
#include "platform/linux/SpacedTask.h"
#include "platform/MainQueue.h"
#include "platform/MonotonicClock.h"

namespace norvane {

// A notifier item on the session bus ("StatusNotifierItem", freedesktop.org; org.kde.StatusNotifierItem), as
// panels see it: they read its picture and its texts, and call it when it is clicked on. It registers at the
// watcher, and again at each one that takes its place. When this goes away, so does the item. Main thread
// only.
class NotifierItem {
 public:
    // Panels read the whole item anew for each picture that they are told of.
    static constexpr std::chrono::nanoseconds kPicturePause = std::chrono::seconds(1);
    static constexpr std::chrono::nanoseconds kToolTipPause = std::chrono::seconds(5);
    // What a watcher has to take the item.
    static constexpr std::chrono::milliseconds kLimit = std::chrono::seconds(2);

    // Each may end the item, but for `paint`.
    struct Handlers {
        // The picture of now, in all sizes that there are.
        std::function<std::vector<NotifierImage>()> paint;
        // Clicked on, as the panel says where: in pixels of the screen, or 0,0 where it does not know. Any
        // numbers may come.
        std::function<void(int x, int y)> activated;
        // A watcher has taken the item.
        std::function<void()> registered;
        // It cannot be shown: the watcher, or the bus, does not take it. A watcher that is gone is no
        // refusal.
        std::function<void()> refused;
    };

    // All outlive it. No two items of a process have the same number.
    NotifierItem(BusConnection& sessionBus, MainQueue& mainQueue, const MonotonicClock& clock,
                 unsigned number, Handlers handlers, std::chrono::milliseconds limit = kLimit);
    NotifierItem(const NotifierItem&) = delete;
    NotifierItem& operator=(const NotifierItem&) = delete;

    bool isRegistered() const { return isRegistered_; }

    // It is painted anew as soon as may be, and panels are told if it looks different.
    void pictureChanged();
    // Plain text.
    void setToolTip(std::string_view text);

 private:
    void nameChanged(bool isOwned);
    void watcherChanged(bool isThere);
    void registerAtWatcher();
    void refuse();
    GVariant* called(std::string_view method, GVariant* arguments) const;
    GVariant* read(std::string_view property);
    // Whether there is another picture now.
    bool repaint();
    bool tellToolTip();

    BusConnection& bus_;
    const std::chrono::milliseconds limit_;
    const Handlers handlers_;

    std::vector<NotifierImage> pictures_;
    bool isPainted_ = false;
    bool isStale_ = false;  // something has changed since then
    SpacedTask repainting_;
    std::string toolTip_;      // markup
    std::string toldToolTip_;  // what panels have been told of
    SpacedTask tellingToolTip_;

    bool isRegistered_ = false;
    Cancellation object_;
    Cancellation watcher_;
    BusName name_;
    Cancellation registration_;
};

}  // namespace norvane
