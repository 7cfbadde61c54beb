#pragma once

#include <cstdint>

#include "platform/UUIDSource.h"

namespace norvane {

// Identities that count up from 1.
class ScriptedUUIDSource final : public UUIDSource {
 public:
    UUID next() override {
        UUID uuid;
        auto byte = uuid.bytes.rbegin();
        std::uint64_t rest = ++count_;
        while (rest != 0) {
            *byte++ = static_cast<std::uint8_t>(rest & 0xFF);
            rest >>= 8;
        }
        return uuid;
    }

 private:
    std::uint64_t count_ = 0;
};

}  // namespace norvane
