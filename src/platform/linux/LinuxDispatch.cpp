#include "platform/linux/LinuxDispatch.h"

#include <utility>

#include "platform/linux/LinuxSerialQueue.h"

namespace norvane {

LinuxDispatch::LinuxDispatch() : queues_(std::make_shared<Queues>()) {}

LinuxDispatch::~LinuxDispatch() {
    queues_->main.close();
    queues_->background.close(queues_);
}

LinuxMainQueue& LinuxDispatch::mainQueue() {
    return queues_->main;
}

LinuxBackgroundQueue& LinuxDispatch::backgroundQueue() {
    return queues_->background;
}

void LinuxDispatch::keep(std::shared_ptr<void> usedByTasks) {
    queues_->usedByTasks = std::move(usedByTasks);
}

std::unique_ptr<SerialQueue> LinuxDispatch::makeSerialQueue(std::string_view label) {
    return std::make_unique<LinuxSerialQueue>(label);
}

}  // namespace norvane
