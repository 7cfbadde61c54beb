#include "platform/linux/FileSystemSpaces.h"

#include <algorithm>
#include <deque>
#include <mutex>
#include <string>
#include <unordered_set>
#include <utility>

#include "platform/linux/QueueThread.h"

namespace norvane {

// One mount. What its thread and the scans share is guarded by the mutex of `Shared`.
struct FileSystemSpaces::Server {
    explicit Server(const Mount& mount) : device(mount.device), path(mount.point) {}

    const DeviceNumber device;
    const std::string path;

    // Waiting for a thread, or with one.
    bool isAsked = false;
    // The scan that asked has gone on without the answer.
    bool isLate = false;
    std::optional<Answer> newest;
    std::optional<MonotonicInstant> pauseEnd;
};

struct FileSystemSpaces::Shared {
    Shared(SystemCalls systemCalls, std::shared_ptr<LaneWaiter> laneWaiter)
        : system(std::move(systemCalls)), waiter(std::move(laneWaiter)) {}

    const SystemCalls system;
    const std::shared_ptr<LaneWaiter> waiter;
    std::mutex mutex;
    std::deque<std::shared_ptr<Server>> waiting;  // guarded by mutex
    std::size_t threads = 0;                      // guarded by mutex
    std::size_t calls = 0;                        // those that are out; guarded by mutex

    // A thread's life: until nothing is waiting any more.
    void work() {
        std::unique_lock lock(mutex);
        while (!waiting.empty()) {
            const std::shared_ptr<Server> server = std::move(waiting.front());
            waiting.pop_front();
            ++calls;
            lock.unlock();
            const Answer answer{spaceOf(server->path), system.now()};
            lock.lock();
            --calls;
            server->newest = answer;
            server->isAsked = false;
            if (std::exchange(server->isLate, false)) server->pauseEnd = answer.at + kPause;
            lock.unlock();
            waiter->arrived();
            lock.lock();
        }
        --threads;
    }

 private:
    std::optional<FileSystemSpace> spaceOf(const std::string& path) const {
        try {
            return system.fileSystemSpace(path);
        } catch (...) {
            return std::nullopt;  // out of memory
        }
    }
};

FileSystemSpaces::FileSystemSpaces(SystemCalls calls, std::shared_ptr<LaneWaiter> waiter)
    : shared_(std::make_shared<Shared>(std::move(calls), std::move(waiter))) {}

FileSystemSpaces::~FileSystemSpaces() {
    const std::lock_guard lock(shared_->mutex);
    shared_->waiting.clear();
}

std::vector<std::optional<FileSystemSpaces::Answer>> FileSystemSpaces::ask(
    const std::vector<const Mount*>& asked, const std::vector<Mount>& table) {
    forgetAllBut(table);
    std::vector<std::shared_ptr<Server>> servers;
    servers.reserve(asked.size());
    for (const Mount* mount : asked)
        servers.push_back(serverOf(*mount));

    const MonotonicInstant begin = shared_->system.now();
    std::vector<std::shared_ptr<Server>> fresh;
    fresh.reserve(servers.size());
    {
        const std::lock_guard lock(shared_->mutex);
        // Those that are out now are late ones from earlier; nobody knows when a thread becomes free of them.
        if (shared_->calls < kMostThreads) {
            for (const auto& server : servers) {
                if (server->isAsked || (server->pauseEnd && begin < *server->pauseEnd)) continue;
                shared_->waiting.push_back(server);
                server->isAsked = true;
                fresh.push_back(server);
            }
        }
        bool canStart = true;
        for (std::size_t i = 0; i < fresh.size() && shared_->threads < kMostThreads && canStart; ++i)
            canStart = startThread(shared_);
    }
    const std::function<bool()> allIn = [&] {
        const std::lock_guard lock(shared_->mutex);
        return std::none_of(fresh.begin(), fresh.end(), [](const auto& server) { return server->isAsked; });
    };
    if (!allIn()) shared_->waiter->wait(allIn, kWait);

    const MonotonicInstant end = shared_->system.now();
    std::vector<std::optional<Answer>> answers;
    answers.reserve(servers.size());
    const std::lock_guard lock(shared_->mutex);
    // What no thread has come to yet is asked anew by the next scan, or not at all.
    for (const auto& server : shared_->waiting)
        server->isAsked = false;
    shared_->waiting.clear();
    for (const auto& server : fresh)
        server->isLate = server->isAsked;
    for (const auto& server : servers) {
        const bool isRecent = server->newest && end - server->newest->at < kOldest;
        answers.push_back(isRecent ? server->newest : std::nullopt);
    }
    return answers;
}

// Comes with the mutex held.
bool FileSystemSpaces::startThread(const std::shared_ptr<Shared>& shared) {
    std::thread thread =
        startQueueThread("volume server", ThreadPriority::normal, [shared] { shared->work(); });
    if (!thread.joinable()) return false;
    thread.detach();
    ++shared->threads;
    return true;
}

std::shared_ptr<FileSystemSpaces::Server> FileSystemSpaces::serverOf(const Mount& mount) {
    std::shared_ptr<Server>& server = servers_[mount.id];
    // The kernel gives an id that has become free to another mount.
    if (!server || server->path != mount.point || server->device != mount.device) {
        server = std::make_shared<Server>(mount);
    }
    return server;
}

void FileSystemSpaces::forgetAllBut(const std::vector<Mount>& table) {
    if (servers_.empty()) return;
    std::unordered_set<std::uint64_t> present;
    for (const Mount& mount : table)
        present.insert(mount.id);
    std::erase_if(servers_, [&](const auto& entry) { return !present.contains(entry.first); });
}

}  // namespace norvane
