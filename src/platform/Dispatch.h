#pragma once

#include <memory>
#include <string_view>

#include "platform/BackgroundQueue.h"
#include "platform/MainQueue.h"
#include "platform/SerialQueue.h"

namespace norvane {

// Where work runs. The main queue and the background queue live as long as this does.
class Dispatch {
 public:
    virtual ~Dispatch() = default;

    virtual MainQueue& mainQueue() = 0;
    virtual BackgroundQueue& backgroundQueue() = 0;

    // A new serial queue of utility priority. The label is for people: debuggers, thread lists.
    virtual std::unique_ptr<SerialQueue> makeSerialQueue(std::string_view label) = 0;
};

}  // namespace norvane
