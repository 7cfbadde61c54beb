#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "views/Update.h"
#include "views/WatchedValue.h"
#include "views/WrappingNode.h"

namespace norvane {

// Tells when a value is another one than at the evaluation before.
class ChangeNode final : public WrappingNode {
 public:
    ChangeNode(Element child, std::unique_ptr<WatchedValue> value, std::function<void()> handler)
        : WrappingNode(std::move(child)), value_(std::move(value)), handler_(std::move(handler)) {}

 protected:
    void take(Node* before, Update& update) override {
        const auto* last = static_cast<const ChangeNode*>(before);
        if (last != nullptr && !value_->isSameAs(*last->value_)) update.afterwards(handler_);
    }

 private:
    std::unique_ptr<WatchedValue> value_;
    std::function<void()> handler_;
};

}  // namespace norvane
