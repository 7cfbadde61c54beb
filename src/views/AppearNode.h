#pragma once

#include <functional>

#include "views/Update.h"
#include "views/WrappingNode.h"

namespace norvane {

// Tells each time when it comes on the screen.
class AppearNode final : public WrappingNode {
 public:
    AppearNode(Element child, std::function<void()> handler)
        : WrappingNode(std::move(child)), handler_(std::move(handler)) {}

 protected:
    void didAppear(Update& update) override { update.afterwards(handler_); }

 private:
    std::function<void()> handler_;
};

}  // namespace norvane
