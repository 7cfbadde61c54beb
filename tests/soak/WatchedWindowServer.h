#pragma once

#include <memory>

#include "platform/WindowServer.h"

namespace norvane {

// Counts the status items that are asked for.
class WatchedWindowServer final : public WindowServer {
 public:
    explicit WatchedWindowServer(WindowServer& server) : server_(server) {}

    std::unique_ptr<StatusItem> statusItemWithLength(double points) override {
        ++items;
        return server_.statusItemWithLength(points);
    }
    std::unique_ptr<PopoverWindow> makePopoverWindow(SurfaceContent& content,
                                                     PopoverWindowObserver& observer) override {
        return server_.makePopoverWindow(content, observer);
    }

    int items = 0;

 private:
    WindowServer& server_;
};

}  // namespace norvane
