#include "platform/linux/BusAddress.h"

#include <algorithm>

namespace norvane {

std::string localBusAddress(std::string_view address) {
    std::string local;
    while (!address.empty()) {
        const std::size_t end = std::min(address.find(';'), address.size());
        const std::string_view place = address.substr(0, end);
        if (place.starts_with("unix:")) {
            if (!local.empty()) local += ';';
            local += place;
        }
        address.remove_prefix(std::min(end + 1, address.size()));
    }
    return local;
}

}  // namespace norvane
