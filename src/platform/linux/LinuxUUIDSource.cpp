#include "platform/linux/LinuxUUIDSource.h"

#include <sys/random.h>
#include <time.h>
#include <unistd.h>

namespace norvane {
namespace {

bool kernelRandom(std::span<std::uint8_t> bytes) {
    // Without waiting for the pool, which may be unfilled right after the machine has started.
    return getrandom(bytes.data(), bytes.size(), GRND_NONBLOCK) == static_cast<ssize_t>(bytes.size());
}

std::uint64_t nanosecondsOf(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<std::uint64_t>(time.tv_sec) * 1'000'000'000 + static_cast<std::uint64_t>(time.tv_nsec);
}

// Spreads every bit over the word: the finalizer of SplitMix64.
std::uint64_t scrambled(std::uint64_t word) {
    word = (word ^ (word >> 30)) * 0xbf58476d1ce4e5b9;
    word = (word ^ (word >> 27)) * 0x94d049bb133111eb;
    return word ^ (word >> 31);
}

void store(std::uint64_t word, std::span<std::uint8_t> bytes) {
    for (std::uint8_t& byte : bytes) {
        byte = static_cast<std::uint8_t>(word);
        word >>= 8;
    }
}

}  // namespace

LinuxUUIDSource::LinuxUUIDSource() : LinuxUUIDSource(kernelRandom) {}

UUID LinuxUUIDSource::next() {
    UUID uuid;
    if (!random_(uuid.bytes)) uuid = countedUUID();
    uuid.bytes[6] = static_cast<std::uint8_t>((uuid.bytes[6] & 0x0f) | 0x40);  // version 4
    uuid.bytes[8] = static_cast<std::uint8_t>((uuid.bytes[8] & 0x3f) | 0x80);  // the variant of RFC 4122
    return uuid;
}

// Differs from the others of this source by the count in its first six bytes, and from those of other
// processes and machines, as far as can be had without randomness, by time and process.
UUID LinuxUUIDSource::countedUUID() {
    UUID uuid;
    const std::span<std::uint8_t> bytes = uuid.bytes;
    store(counted_.fetch_add(1, std::memory_order_relaxed), bytes.first(6));
    const auto process = static_cast<std::uint64_t>(getpid());
    store(scrambled(nanosecondsOf(CLOCK_REALTIME)), bytes.subspan(6, 5));
    store(scrambled(nanosecondsOf(CLOCK_MONOTONIC) ^ (process << 40)), bytes.subspan(11, 5));
    return uuid;
}

}  // namespace norvane
