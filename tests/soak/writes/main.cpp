#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>
#include <array>
#include <atomic>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <random>
#include <string>
#include <thread>

#include "platform/linux/LinuxUserDefaults.h"

// Kills processes while they write defaults, again and again, and looks at what is in the file after each.
namespace norvane {
namespace {

constexpr std::size_t kKeys = 6;
constexpr std::size_t kWriters = 2;
// What somebody else has put into the file stays.
constexpr const char* kForeign = "# by hand\n[other]\nkey=kept\n\n[defaults]\n";

// Nobody observes.
class NoQueue final : public MainQueue {
 public:
    void async(Task) override {}
    Cancellation after(std::chrono::nanoseconds, Task) override { return {}; }
};

// Shared with the processes that are killed: the number of the last value of each key that was set, and of
// the last one that was known to be in the file.
struct Progress {
    std::array<std::atomic<std::uint32_t>, kKeys> begun;
    std::array<std::atomic<std::uint32_t>, kKeys> stored;
};

std::string keyNamed(std::size_t key) {
    return "key" + std::to_string(key);
}

// The value with this number: a number, or a text of any length with whatever a text may hold.
DefaultsValue valueOf(std::size_t key, std::uint32_t number) {
    if (key % 2 == 0) return static_cast<double>(number);
    std::string text = std::to_string(number) + ": \"\\\n\xc3\xa9\t= ";
    for (std::uint32_t i = 0; i < number % 300; ++i)
        text += static_cast<char>('a' + i % 26);
    return text;
}

// The number of a value; none where it is not one of ours.
std::optional<std::uint32_t> numberOf(std::size_t key, const DefaultsValue& value) {
    std::uint32_t number = 0;
    if (const auto* const held = std::get_if<double>(&value)) {
        number = static_cast<std::uint32_t>(*held);
    } else if (const auto* const text = std::get_if<std::string>(&value)) {
        std::from_chars(text->data(), text->data() + text->size(), number);
    }
    return valueOf(key, number) == value ? std::optional(number) : std::nullopt;
}

// Each writer has its own keys in the file of both.
[[noreturn]] void writeForEver(std::size_t writer, const std::string& path, Progress& progress) {
    NoQueue queue;
    LinuxUserDefaults defaults(queue, path);
    for (;;) {
        for (std::size_t key = writer; key < kKeys; key += kWriters) {
            const std::uint32_t number = progress.begun[key] + 1;
            progress.begun[key] = number;
            defaults.setObject(keyNamed(key), valueOf(key, number));
        }
        if (!defaults.synchronize()) continue;
        for (std::size_t key = writer; key < kKeys; key += kWriters)
            progress.stored[key] = progress.begun[key].load();
    }
}

// What is wrong with the file; empty where nothing is.
std::string objection(const std::filesystem::path& path, const Progress& progress) {
    std::ifstream file(path, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const DefaultsMap map = parseDefaults(text);
    DefaultsChanges all;
    for (std::size_t key = 0; key < kKeys; ++key) {
        const auto found = map.find(keyNamed(key));
        if (found == map.end()) {
            if (progress.stored[key] > 0) return keyNamed(key) + " is lost";
            continue;
        }
        const auto number = numberOf(key, found->second);
        if (!number) return keyNamed(key) + " is damaged";
        if (*number < progress.stored[key]) return keyNamed(key) + " is older than what was stored";
        if (*number > progress.begun[key]) return keyNamed(key) + " was never set";
        all.emplace(found->first, found->second);
    }
    if (map.size() != all.size()) return "there are keys that nobody has set";
    // No line too few, none too many: what is there is what would be written into the foreign lines. New keys
    // come in any order.
    const std::string whole = rewriteDefaults(kForeign, all);
    if (!text.starts_with(kForeign) || text.size() != whole.size()) return "the file is not whole";
    std::size_t others = 0;
    for (const auto& entry : std::filesystem::directory_iterator(path.parent_path()))
        others += entry.path() == path ? 0 : 1;
    // One for each writer that was killed, until the next write.
    if (others > kWriters) return std::to_string(others) + " files are left behind";
    return {};
}

int killAgainAndAgain(std::uint64_t times) {
    std::string pattern = (std::filesystem::temp_directory_path() / "norvane-writes-XXXXXX").string();
    void* const shared =
        mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (shared == MAP_FAILED || mkdtemp(pattern.data()) == nullptr) {
        std::perror("writes");
        return 2;
    }
    auto& progress = *new (shared) Progress{};
    const std::filesystem::path path = LinuxUserDefaults::pathIn(pattern.c_str(), nullptr);
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << kForeign;

    std::minstd_rand chance(static_cast<unsigned>(times));
    std::string found;
    std::uint64_t kills = 0;
    std::size_t mostLeft = 0;
    while (kills < times && found.empty()) {
        std::array<pid_t, kWriters> writers{};
        // Most of the time one alone: two at a time wait for each other.
        const std::size_t count = chance() % 4 == 0 ? kWriters : 1;
        const std::size_t first = chance() % kWriters;
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t writer = (first + i) % kWriters;
            writers[i] = fork();
            if (writers[i] == 0) writeForEver(writer, path.string(), progress);
            if (writers[i] < 0) {
                std::perror("writes: fork");
                return 2;
            }
        }
        for (std::size_t i = 0; i < count; ++i) {
            // Up to some writes; short ones hit the first.
            std::this_thread::sleep_for(std::chrono::microseconds(chance() % 5'000));
            kill(writers[i], SIGKILL);
            int status = 0;
            waitpid(writers[i], &status, 0);
            if (!WIFSIGNALED(status)) found = "a writer ended by itself";
            ++kills;
        }
        if (found.empty()) found = objection(path, progress);
        std::size_t left = 0;
        for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(path.parent_path()))
            ++left;
        mostLeft = std::max(mostLeft, left - 1);
    }
    std::uint64_t stored = 0;
    for (const auto& number : progress.stored)
        stored += number;
    if (found.empty() && stored == 0) found = "nothing was ever stored";
    std::printf("writes: %llu kills, %llu values stored, at most %zu files left behind: %s\n",
                static_cast<unsigned long long>(kills), static_cast<unsigned long long>(stored), mostLeft,
                found.empty() ? "every file was whole" : found.c_str());
    if (found.empty())
        std::filesystem::remove_all(pattern);
    else
        std::printf("the file is kept: %s\n", path.c_str());
    return found.empty() ? 0 : 1;
}

}  // namespace
}  // namespace norvane

int main(int argc, char** argv) {
    std::uint64_t times = 10'000;
    if (argc > 1) {
        const char* const end = argv[1] + std::strlen(argv[1]);
        const auto [stop, error] = std::from_chars(argv[1], end, times);
        if (argc > 2 || error != std::errc{} || stop != end || times == 0) {
            std::fputs("usage: norvane_writes [TIMES]\n", stderr);
            return 2;
        }
    }
    return norvane::killAgainAndAgain(times);
}
