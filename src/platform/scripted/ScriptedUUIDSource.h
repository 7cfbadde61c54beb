#pragma once

#include <cstdint>

#include "platform/UUIDSource.h"

namespace norvane {

// Identities that count up from 1.
class ScriptedUUIDSource final : public UUIDSource {
 public:
    UUID next() override {
        UUID uuid;
        std::uint64_t rest = ++count_;
        for (auto byte = uuid.bytes.rbegin(); rest != 0; ++byte, rest >>= 8) {
            *byte = static_cast<std::uint8_t>(rest & 0xFF);
        }
        return uuid;
    }

 private:
    std::uint64_t count_ = 0;
};

}  // namespace norvane
