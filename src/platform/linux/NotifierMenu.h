#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "platform/linux/BusConnection.h"
#include "platform/MainQueue.h"
#include "platform/StatusMenuItem.h"

namespace norvane {

// The context menu that panels show for a notifier item, which they read from the session bus
// (com.canonical.dbusmenu): a list of commands. Main thread only.
class NotifierMenu {
 public:
    static constexpr const char* kPath = "/MenuBar";

    // Both outlive it.
    NotifierMenu(BusConnection& sessionBus, MainQueue& mainQueue);
    NotifierMenu(const NotifierMenu&) = delete;
    NotifierMenu& operator=(const NotifierMenu&) = delete;

    // The actions are called by the queue. What was clicked on before the items changed is forgotten.
    void setItems(std::vector<StatusMenuItem> items);

 private:
    // The whole menu, whose items are counted from 1.
    static constexpr std::int32_t kRoot = 0;

    bool isThere(std::int32_t id) const;
    GVariant* called(std::string_view method, GVariant* arguments);
    GVariant* layout(GVariant* arguments) const;
    GVariant* groupProperties(GVariant* arguments) const;
    GVariant* property(GVariant* arguments) const;
    GVariant* event(GVariant* arguments);
    GVariant* eventGroup(GVariant* arguments);
    GVariant* aboutToShow(GVariant* arguments) const;
    GVariant* aboutToShowGroup(GVariant* arguments) const;
    GVariant* node(std::int32_t id, std::int32_t depth, GVariant* names) const;
    GVariant* properties(std::int32_t id, GVariant* names) const;
    GVariant* valueOf(std::int32_t id, std::string_view name) const;
    void click(std::int32_t id);

    BusConnection& bus_;
    MainQueue& mainQueue_;
    std::shared_ptr<const std::vector<StatusMenuItem>> items_;
    std::uint32_t revision_ = 1;
    Cancellation object_;
};

}  // namespace norvane
