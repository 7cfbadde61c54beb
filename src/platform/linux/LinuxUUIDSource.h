#pragma once

#include <atomic>
#include <cstdint>
#include <span>

#include "platform/UUIDSource.h"

namespace norvane {

// Random identifiers (RFC 4122, version 4).
class LinuxUUIDSource final : public UUIDSource {
 public:
    // Fills all of it with random bytes, or says that it cannot.
    using RandomBytes = bool (*)(std::span<std::uint8_t>);

    // The kernel's own random bytes.
    LinuxUUIDSource();
    explicit LinuxUUIDSource(RandomBytes random) : random_(random) {}

    UUID next() override;

 private:
    UUID countedUUID();

    RandomBytes random_;
    std::atomic<std::uint64_t> counted_ = 0;
};

}  // namespace norvane
