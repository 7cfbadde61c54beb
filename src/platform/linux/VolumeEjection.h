#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/BackgroundReader.h"
#include "platform/linux/BusConnection.h"
#include "platform/linux/RootFolder.h"
#include "platform/linux/UDisksObjects.h"

namespace norvane {

// One ejection under way: through the storage service, which may ask the user for a password and writes out
// what the device has not got yet. Once the volume is unmounted the ejection has gone well; that its device
// is let go of is tried, and no more. Main thread only. Going away, this gives up waiting, which stops
// nothing that the service has begun.
class VolumeEjection {
 public:
    // The bus is the system's; it and the queues outlive this. `ended` is told once, never from within the
    // constructor, and may be the end of this.
    VolumeEjection(BusConnection& systemBus, MainQueue& mainQueue, BackgroundQueue& backgroundQueue,
                   RootFolder root, std::string path,
                   std::function<void(std::optional<std::string> error)> ended);

 private:
    void askForObjects(const DeviceNumber& device);
    void unmount();
    void letGo();
    void goOn();
    void end(std::optional<std::string> error);
    void call(const UDisksObjects::Call& call, BusConnection::Answered answered);

    BusConnection& bus_;
    const RootFolder root_;
    const std::string path_;
    std::function<void(std::optional<std::string> error)> ended_;

    BackgroundReader reader_;
    UDisksObjects objects_;
    UDisksObjects::Call unmount_;
    std::vector<UDisksObjects::Call> calls_;
    std::size_t next_ = 0;
    Cancellation call_;
};

}  // namespace norvane
