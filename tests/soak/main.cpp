#include <charconv>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "Soak.h"

namespace {

bool read(const char* text, auto& number) {
    const char* const end = text + std::strlen(text);
    const auto [stop, error] = std::from_chars(text, end, number);
    return error == std::errc{} && stop == end && number > 0;
}

}  // namespace

// Lives through many days in virtual time. A seed of its own makes each run another one.
int main(int argc, char** argv) {
    std::uint64_t seed =
        static_cast<std::uint64_t>(std::chrono::system_clock::now().time_since_epoch().count()) / 1'000'000;
    int days = 365;
    for (int i = 1; i < argc; i += 2) {
        const std::string_view option = argv[i];
        const bool isRead = i + 1 < argc && (option == "--seed"   ? read(argv[i + 1], seed)
                                             : option == "--days" ? read(argv[i + 1], days)
                                                                  : false);
        if (!isRead) {
            std::fputs("usage: norvane_soak [--seed N] [--days N]\n", stderr);
            return 2;
        }
    }
    std::printf("soak: seed %llu\n", static_cast<unsigned long long>(seed));
    std::fflush(stdout);
    return norvane::Soak(seed, days).run() ? 0 : 1;
}
