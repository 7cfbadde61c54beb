#include "platform/linux/LinuxUserDefaults.h"

#include <poll.h>
#include <pwd.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <cerrno>
#include <condition_variable>
#include <cstdint>
#include <cstdlib>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "platform/linux/Deadline.h"
#include "platform/linux/DefaultsStorage.h"
#include "platform/linux/DirectoryWatch.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/LinuxMonotonicClock.h"
#include "platform/linux/QueueThread.h"

namespace norvane {
namespace {

// Editors and scripts change a file in several steps; it is read once they are through.
constexpr std::chrono::milliseconds kSettlingTime{50};

bool isAbsolute(const char* path) {
    return path != nullptr && path[0] == '/';
}

}  // namespace

// What the store shares with its thread, which outlives it where the disk hangs.
struct LinuxUserDefaults::State {
    struct Change {
        std::optional<DefaultsValue> value;
        std::uint64_t number = 0;
    };

    State(MainQueue& queue, std::string path, std::weak_ptr<Observers<>> toTell)
        : storage(std::move(path)), observers(std::move(toTell)), mainQueue(&queue) {
        if (!wakeUp) throw std::system_error(errno, std::generic_category(), "eventfd");
        auto reading = storage.read();
        map = std::make_shared<const DefaultsMap>(parseDefaults(reading.text));
        lastText = std::move(reading.text);
    }

    const FileDescriptor wakeUp{eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};

    // Any thread.
    std::shared_ptr<const DefaultsMap> currentMap() const {
        const std::lock_guard lock(mapMutex);
        return map;
    }
    void wake() const {
        const std::uint64_t one = 1;
        [[maybe_unused]] const ssize_t written = write(wakeUp.get(), &one, sizeof one);
    }

    // The thread.
    void run();
    bool writeChanges();
    void readAgain();
    void take(std::string text);
    bool waitForNews();

    // With mutex held.
    void publish(std::shared_ptr<const DefaultsMap> next);
    void tellObservers(const std::shared_ptr<State>& self);

    // The thread's own once it has started.
    DefaultsStorage storage;
    std::string lastText;  // of the file, as far as is known
    LinuxMonotonicClock clock;
    std::optional<DirectoryWatch> watch;
    std::optional<MonotonicInstant> readAgainAt;
    std::weak_ptr<State> self;

    const std::weak_ptr<Observers<>> observers;  // used on the main thread only

    mutable std::mutex mapMutex;
    std::shared_ptr<const DefaultsMap> map;  // guarded by mapMutex; changed with mutex held, too

    std::mutex mutex;
    std::condition_variable progressed;
    // All guarded by mutex.
    std::map<std::string, Change, std::less<>> unsaved;  // what the file lacks of our changes
    std::uint64_t lastNumber = 0;                        // of the changes made
    std::uint64_t triedNumber = 0;                       // of the changes that the thread has seen to
    bool isTellingUnderWay = false;
    bool isStopped = false;
    bool isFinished = false;
    MainQueue* mainQueue;  // null once the store is gone
    std::thread thread;    // main thread only
};

void LinuxUserDefaults::State::publish(std::shared_ptr<const DefaultsMap> next) {
    // The old map, perhaps the last pointer to it, goes away outside the lock.
    const std::lock_guard lock(mapMutex);
    map.swap(next);
}

void LinuxUserDefaults::State::tellObservers(const std::shared_ptr<State>& state) {
    if (mainQueue == nullptr || std::exchange(isTellingUnderWay, true)) return;
    mainQueue->async([weak = std::weak_ptr(state)] {
        const auto alive = weak.lock();
        if (!alive) return;
        {
            const std::lock_guard lock(alive->mutex);
            alive->isTellingUnderWay = false;
        }
        if (const auto list = alive->observers.lock()) list->tell();
    });
}

void LinuxUserDefaults::State::run() {
    watch.emplace();
    watch->follow(storage.pathAndLinkTargets());
    readAgain();  // it may have changed before it was watched
    do {
        while (writeChanges()) {
        }
        if (readAgainAt && *readAgainAt <= clock.now()) {
            readAgainAt.reset();
            watch->follow(storage.pathAndLinkTargets());
            readAgain();
        }
    } while (waitForNews());
    const std::lock_guard lock(mutex);
    isFinished = true;
    progressed.notify_all();
}

// Whether there was anything to write.
bool LinuxUserDefaults::State::writeChanges() {
    DefaultsChanges changes;
    std::uint64_t number = 0;
    {
        const std::lock_guard lock(mutex);
        if (triedNumber == lastNumber) return false;
        number = lastNumber;
        for (const auto& [key, change] : unsaved)
            changes.emplace(key, change.value);
    }
    auto text = storage.apply(changes);
    if (text) watch->follow(storage.pathAndLinkTargets());
    const bool isWritten = text.has_value();
    // With our own changes come those that somebody else made since the file was last read.
    if (isWritten) take(std::move(*text));
    const std::lock_guard lock(mutex);
    if (isWritten) std::erase_if(unsaved, [&](const auto& entry) { return entry.second.number <= number; });
    triedNumber = number;
    progressed.notify_all();
    return true;
}

void LinuxUserDefaults::State::readAgain() {
    auto reading = storage.read();
    if (reading.state != DefaultsStorage::State::unknown) take(std::move(reading.text));
}

// The file has this text now. Our own writes come here a second time, and change nothing.
void LinuxUserDefaults::State::take(std::string text) {
    if (text == lastText) return;
    auto next = std::make_shared<DefaultsMap>(parseDefaults(text));
    lastText = std::move(text);
    const std::lock_guard lock(mutex);
    for (const auto& [key, change] : unsaved) {
        if (change.value) {
            next->insert_or_assign(key, *change.value);
        } else {
            next->erase(key);
        }
    }
    if (holdSame(*next, *currentMap())) return;
    publish(std::move(next));
    if (const auto state = self.lock()) tellObservers(state);
}

// Sleeps until something is to be done; false when it is time to end.
bool LinuxUserDefaults::State::waitForNews() {
    {
        const std::lock_guard lock(mutex);
        if (isStopped) return triedNumber != lastNumber;
    }
    int timeout = -1;
    if (readAgainAt) {
        const auto rest = std::chrono::ceil<std::chrono::milliseconds>(*readAgainAt - clock.now()).count();
        timeout = static_cast<int>(std::clamp<std::int64_t>(rest, 0, kSettlingTime.count()));
    }
    std::array<pollfd, 2> descriptors{{{wakeUp.get(), POLLIN, 0}, {watch->descriptor(), POLLIN, 0}}};
    poll(descriptors.data(), descriptors.size(), timeout);
    if (descriptors[0].revents != 0) {
        std::uint64_t count = 0;
        [[maybe_unused]] const ssize_t length = read(wakeUp.get(), &count, sizeof count);
    }
    if (descriptors[1].revents != 0 && watch->takeChange() && !readAgainAt) {
        readAgainAt = deadlineAfter(clock.now(), kSettlingTime);
    }
    return true;
}

LinuxUserDefaults::LinuxUserDefaults(MainQueue& mainQueue, std::string path)
    : state_(std::make_shared<State>(mainQueue, std::move(path), observers_)) {
    state_->self = state_;
    state_->thread =
        startQueueThread("defaults", ThreadPriority::utility, [state = state_] { state->run(); });
}

LinuxUserDefaults::~LinuxUserDefaults() {
    State& state = *state_;
    {
        const std::lock_guard lock(state.mutex);
        state.isStopped = true;
        state.mainQueue = nullptr;
    }
    if (!state.thread.joinable()) return;
    state.wake();
    std::unique_lock lock(state.mutex);
    const auto deadline = steadyTime(deadlineAfter(LinuxMonotonicClock().now(), kLongestGoodbye));
    const bool isFinished = state.progressed.wait_until(lock, deadline, [&] { return state.isFinished; });
    lock.unlock();
    if (isFinished) {
        state.thread.join();
    } else {
        state.thread.detach();
    }
}

std::optional<DefaultsValue> LinuxUserDefaults::objectForKey(std::string_view key) const {
    const auto map = state_->currentMap();
    const auto entry = map->find(key);
    return entry == map->end() ? std::nullopt : std::optional(entry->second);
}

void LinuxUserDefaults::setObject(std::string_view key, DefaultsValue value) {
    change(key, storable(std::move(value)));
}

void LinuxUserDefaults::removeObjectForKey(std::string_view key) {
    if (objectForKey(key)) change(key, std::nullopt);
}

void LinuxUserDefaults::change(std::string_view key, std::optional<DefaultsValue> value) {
    State& state = *state_;
    {
        const std::lock_guard lock(state.mutex);
        auto next = std::make_shared<DefaultsMap>(*state.currentMap());
        if (value) {
            next->insert_or_assign(std::string(key), *value);
        } else {
            next->erase(std::string(key));
        }
        state.publish(std::move(next));
        state.unsaved.insert_or_assign(std::string(key), State::Change{std::move(value), ++state.lastNumber});
        state.tellObservers(state_);
    }
    if (!state.thread.joinable()) {
        state.thread =
            startQueueThread("defaults", ThreadPriority::utility, [shared = state_] { shared->run(); });
    }
    state.wake();
}

Cancellation LinuxUserDefaults::onDidChange(std::function<void()> observer) {
    return observers_->add(std::move(observer));
}

bool LinuxUserDefaults::synchronize(std::chrono::milliseconds atMost) {
    State& state = *state_;
    const auto deadline = steadyTime(deadlineAfter(LinuxMonotonicClock().now(), atMost));
    std::unique_lock lock(state.mutex);
    const auto awaited = state.lastNumber;
    state.progressed.wait_until(lock, deadline, [&] { return state.triedNumber >= awaited; });
    return state.unsaved.empty();
}

std::string LinuxUserDefaults::pathIn(const char* xdgConfigHome, const char* home) {
    constexpr const char* kFile = "/norvane/defaults.ini";
    if (isAbsolute(xdgConfigHome)) return std::string(xdgConfigHome) + kFile;
    if (isAbsolute(home)) return std::string(home) + "/.config" + kFile;
    return {};
}

std::string LinuxUserDefaults::defaultPath() {
    std::string path = pathIn(std::getenv("XDG_CONFIG_HOME"), std::getenv("HOME"));
    if (!path.empty()) return path;
    passwd entry{};
    passwd* found = nullptr;
    std::vector<char> buffer(16 * 1024);
    getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found);
    return pathIn(nullptr, found == nullptr ? nullptr : entry.pw_dir);
}

}  // namespace norvane
