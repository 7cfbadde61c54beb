#pragma once

#include <memory>

#include "platform/Dispatch.h"
#include "platform/linux/LinuxBackgroundQueue.h"
#include "platform/linux/LinuxMainQueue.h"

namespace norvane {

// The queues of this process. The serial queues that it made go away before it does.
class LinuxDispatch final : public Dispatch {
 public:
    // Main thread. Throws std::system_error where the process may open no further file.
    LinuxDispatch();
    // Waits for no background task. One that is still running may use both queues until it returns; they
    // drop what it gives them.
    ~LinuxDispatch() override;
    LinuxDispatch(const LinuxDispatch&) = delete;
    LinuxDispatch& operator=(const LinuxDispatch&) = delete;

    LinuxMainQueue& mainQueue() override;
    LinuxBackgroundQueue& backgroundQueue() override;

    // Goes away no sooner than the queues, and than every background task that is still running then.
    // Main thread, once.
    void keep(std::shared_ptr<void> usedByTasks);

    // Throws std::system_error where no thread can be started.
    std::unique_ptr<SerialQueue> makeSerialQueue(std::string_view label) override;

 private:
    struct Queues {
        std::shared_ptr<void> usedByTasks;
        LinuxMainQueue main;
        LinuxBackgroundQueue background;
    };

    std::shared_ptr<Queues> queues_;
};

}  // namespace norvane
