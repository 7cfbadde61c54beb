#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "Checks.h"

namespace {

constexpr std::string_view kEnding = "Fuzzer";

void (*chosen)(std::string_view text) = nullptr;

}  // namespace

// The target is told by the program's name, as in VmStatFuzzer.
extern "C" int LLVMFuzzerInitialize(const int*, char*** arguments) {
    norvane::Checks checks = norvane::parserChecks();
    checks.merge(norvane::textChecks());
    checks.merge(norvane::fileChecks());
    checks.merge(norvane::machineChecks());
    checks.merge(norvane::viewTreeChecks());
    std::string name = std::filesystem::path((*arguments)[0]).filename().string();
    if (name.ends_with(kEnding)) name.resize(name.size() - kEnding.size());
    const auto found = checks.find(name);
    if (found == checks.end()) {
        std::fprintf(stderr, "no target is called %s\n", name.c_str());
        std::exit(1);
    }
    chosen = found->second;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    chosen({reinterpret_cast<const char*>(data), size});
    return 0;
}

// The font system keeps its tables for the life of the process and does not point at all of them.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libfontconfig";
}
