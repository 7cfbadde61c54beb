#include "platform/Utf8.h"

#include <cstddef>

namespace norvane {
namespace {

struct Sequence {
    std::size_t length = 1;  // bytes that belong together, at least 1
    bool isWhole = false;
};

// The character, or the piece of one, that the text begins with.
Sequence firstSequence(std::string_view bytes) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const unsigned lead = byte(0);
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
        if (i >= bytes.size() || byte(i) < low || byte(i) > high) return {i, false};
        low = 0x80;
        high = 0xBF;
    }
    return {length, true};
}

}  // namespace

Utf8Character takeUtf8Character(std::string_view& text) {
    const Sequence sequence = firstSequence(text);
    const std::string_view bytes = text.substr(0, sequence.length);
    text.remove_prefix(sequence.length);
    if (!sequence.isWhole) return {};
    // The first byte's leading ones count the bytes, and are no part of the value.
    const auto lead = static_cast<unsigned char>(bytes.front());
    char32_t value = bytes.size() == 1 ? lead : lead & (0x7FU >> bytes.size());
    for (const char byte : bytes.substr(1))
        value = value << 6U | (static_cast<unsigned char>(byte) & 0x3FU);
    return {value, bytes};
}

std::string repairedUtf8(std::string_view bytes) {
    std::string repaired;
    repaired.reserve(bytes.size());
    while (!bytes.empty())
        repaired += takeUtf8Character(bytes).bytes;
    return repaired;
}

}  // namespace norvane
