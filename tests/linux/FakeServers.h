#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <condition_variable>
#include <map>
#include <mutex>
#include <set>
#include <thread>

#include "FakeSystemCalls.h"
#include "platform/linux/LaneWaiter.h"

namespace norvane {

// File systems whose sizes a test sets and whose servers it may hang, and the waiter of those who ask them.
// The waiter lets as many calls begin as the test expects and all return that do not hang; only then, if one
// does, has the time granted passed. So nothing depends on how fast threads are.
class FakeServers {
 public:
    explicit FakeServers(FakeSystemCalls& system) : waiter_(std::make_shared<Waiter>(state_, system)) {
        system.calls.fileSystemSpace = [state = state_](const std::string& path) { return state->ask(path); };
    }
    // Leaves no thread behind.
    ~FakeServers() {
        std::unique_lock lock(state_->mutex);
        state_->hanging.clear();
        state_->changed.notify_all();
        state_->await(lock, [this] { return state_->allAccountedFor() && state_->out.empty(); });
    }
    FakeServers(const FakeServers&) = delete;
    FakeServers& operator=(const FakeServers&) = delete;

    std::shared_ptr<LaneWaiter> waiter() const { return waiter_; }

    // Without a space, the call fails.
    void set(const std::string& path, std::optional<FileSystemSpace> space) {
        const std::lock_guard lock(state_->mutex);
        state_->spaces[path] = space;
    }
    void hang(const std::string& path) {
        const std::lock_guard lock(state_->mutex);
        state_->hanging.insert(path);
    }
    // The server is back. Returns when the calls that were out have been taken note of.
    void release(const std::string& path) {
        std::unique_lock lock(state_->mutex);
        state_->hanging.erase(path);
        state_->changed.notify_all();
        state_->await(lock, [&] { return state_->allAccountedFor() && !state_->out.contains(path); });
    }

    // How many calls by way of threads the next scan is going to begin.
    void expectCalls(std::size_t count) {
        const std::lock_guard lock(state_->mutex);
        state_->expected = state_->served + count;
    }
    // The paths of all calls since this was asked last.
    std::vector<std::string> takeAsked() {
        const std::lock_guard lock(state_->mutex);
        return std::exchange(state_->asked, {});
    }
    std::size_t callsOut() const {
        const std::lock_guard lock(state_->mutex);
        return state_->out.size();
    }
    // What the waits since this was asked last were granted.
    std::vector<std::chrono::nanoseconds> takeGranted() {
        const std::lock_guard lock(state_->mutex);
        return std::exchange(state_->granted, {});
    }

 private:
    struct State {
        std::mutex mutex;
        std::condition_variable changed;
        // All guarded by mutex.
        const std::thread::id testThread = std::this_thread::get_id();
        std::map<std::string, std::optional<FileSystemSpace>> spaces;
        std::set<std::string> hanging;
        std::multiset<std::string> out;
        std::vector<std::string> asked;
        std::vector<std::chrono::nanoseconds> granted;
        std::size_t served = 0;  // calls by way of threads
        std::size_t arrived = 0;
        std::size_t expected = 0;

        std::optional<FileSystemSpace> ask(const std::string& path) {
            std::unique_lock lock(mutex);
            asked.push_back(path);
            if (std::this_thread::get_id() != testThread) {
                ++served;
                const auto entry = out.insert(path);
                changed.notify_all();
                changed.wait(lock, [&] { return !hanging.contains(path); });
                out.erase(entry);
            }
            return spaces[path];
        }
        // Whether every call hangs or has been taken note of.
        bool allAccountedFor() const {
            return arrived + out.size() == served &&
                   std::all_of(out.begin(), out.end(),
                               [this](const auto& path) { return hanging.contains(path); });
        }
        template <typename Condition>
        void await(std::unique_lock<std::mutex>& lock, Condition condition) {
            EXPECT_TRUE(changed.wait_for(lock, std::chrono::seconds(60), condition)) << "never came about";
        }
    };

    class Waiter final : public LaneWaiter {
     public:
        Waiter(std::shared_ptr<State> state, FakeSystemCalls& system)
            : state_(std::move(state)), system_(system) {}
        void arrived() override {
            const std::lock_guard lock(state_->mutex);
            ++state_->arrived;
            state_->changed.notify_all();
        }
        void wait(const std::function<bool()>& allIn, std::chrono::nanoseconds budget) override {
            std::unique_lock lock(state_->mutex);
            state_->granted.push_back(budget);
            state_->await(lock,
                          [&] { return state_->served == state_->expected && state_->allAccountedFor(); });
            lock.unlock();
            if (!allIn()) system_.advance(budget);
        }

     private:
        std::shared_ptr<State> state_;
        FakeSystemCalls& system_;
    };

    std::shared_ptr<State> state_ = std::make_shared<State>();
    std::shared_ptr<Waiter> waiter_;
};

}  // namespace norvane
