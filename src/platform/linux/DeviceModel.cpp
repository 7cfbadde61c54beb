#include "platform/linux/DeviceModel.h"

namespace norvane {

std::optional<std::string> readDeviceModel(const RootFolder&) {
    return std::nullopt;
}

}  // namespace norvane
