#include "platform/Utf8.h"

#include <cstddef>

namespace norvane {
namespace {

struct Sequence {
    std::size_t length = 1;  // bytes that belong together, at least 1
    bool isWhole = false;
};

// The character, or the piece of one, that begins at `at`.
Sequence sequenceAt(std::string_view bytes, std::size_t at) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const unsigned lead = byte(at);
    if (lead < 0x80) return {1, true};
    std::size_t length = 0;
    // The second byte's range is what keeps out overlong forms, surrogates and values beyond U+10FFFF.
    unsigned low = 0x80;
    unsigned high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        if (lead == 0xE0) low = 0xA0;
        if (lead == 0xED) high = 0x9F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        if (lead == 0xF0) low = 0x90;
        if (lead == 0xF4) high = 0x8F;
    } else {
        return {};
    }
    for (std::size_t i = 1; i < length; ++i) {
        if (at + i >= bytes.size() || byte(at + i) < low || byte(at + i) > high) return {i, false};
        low = 0x80;
        high = 0xBF;
    }
    return {length, true};
}

}  // namespace

std::string repairedUtf8(std::string_view bytes) {
    std::string repaired;
    repaired.reserve(bytes.size());
    for (std::size_t at = 0; at < bytes.size();) {
        const Sequence sequence = sequenceAt(bytes, at);
        if (sequence.isWhole) {
            repaired.append(bytes.substr(at, sequence.length));
        } else {
            repaired.append("\xEF\xBF\xBD");
        }
        at += sequence.length;
    }
    return repaired;
}

}  // namespace norvane
