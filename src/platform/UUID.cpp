#include "platform/UUID.h"

#include <cstddef>

namespace norvane {

std::string uuidString(const UUID& uuid) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    for (std::size_t i = 0; i < uuid.bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
        text += kDigits[uuid.bytes[i] >> 4];
        text += kDigits[uuid.bytes[i] & 0xF];
    }
    return text;
}

}  // namespace norvane
