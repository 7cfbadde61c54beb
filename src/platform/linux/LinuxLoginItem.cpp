#include "platform/linux/LinuxLoginItem.h"

#include <unistd.h>
#include <array>
#include <climits>
#include <exception>
#include <mutex>
#include <utility>

#include "platform/linux/AutostartFiles.h"

namespace norvane {

// What a background task shares with the main thread; it may outlive the login item.
struct LinuxLoginItem::BackgroundSide {
    BackgroundSide(AutostartSurroundings surroundings, std::string program)
        : files(std::move(surroundings), std::move(program)) {}

    const AutostartFiles files;

    std::mutex mutex;
    std::deque<Request> waiting;      // guarded by mutex
    bool isTaskUnderWay = false;      // guarded by mutex: it will see to all that is waiting
    LinuxLoginItem* owner = nullptr;  // guarded by mutex; written on the main thread

    void run(const std::shared_ptr<BackgroundSide>& self) {
        while (const auto request = next()) {
            auto result = std::make_shared<const Result>(resultOf(*request));
            const std::lock_guard lock(mutex);
            if (owner == nullptr) continue;  // what was asked for is done even if nobody hears of it
            owner->mainQueue_.async([self, result = std::move(result)] {
                if (self->owner != nullptr) self->owner->complete(*result);
            });
        }
    }

    std::optional<Request> next() {
        const std::lock_guard lock(mutex);
        isTaskUnderWay = !waiting.empty();
        if (waiting.empty()) return std::nullopt;
        const Request request = waiting.front();
        waiting.pop_front();
        return request;
    }

    Result resultOf(Request request) const {
        try {
            switch (request) {
                case Request::status:
                    return {files.isStarted(), std::nullopt};
                case Request::registerItem:
                    return {false, files.switchOn()};
                case Request::unregisterItem:
                    return {false, files.switchOff()};
            }
        } catch (const std::exception&) {
            // No memory.
        }
        return {false, "Out of memory"};
    }
};

LinuxLoginItem::LinuxLoginItem(MainQueue& mainQueue, BackgroundQueue& backgroundQueue,
                               AutostartSurroundings surroundings, std::string program)
    : mainQueue_(mainQueue),
      backgroundQueue_(backgroundQueue),
      backgroundSide_(std::make_shared<BackgroundSide>(std::move(surroundings), std::move(program))) {
    backgroundSide_->owner = this;
}

LinuxLoginItem::~LinuxLoginItem() {
    const std::lock_guard lock(backgroundSide_->mutex);
    backgroundSide_->owner = nullptr;
}

void LinuxLoginItem::status(std::function<void(int status)> completion) {
    ask(Request::status, [completion = std::move(completion)](const Result& result) {
        completion(result.isStarted ? kEnabled : kNotRegistered);
    });
}

void LinuxLoginItem::registerItem(std::function<void(std::optional<std::string> error)> completion) {
    ask(Request::registerItem,
        [completion = std::move(completion)](const Result& result) { completion(result.error); });
}

void LinuxLoginItem::unregisterItem(std::function<void(std::optional<std::string> error)> completion) {
    ask(Request::unregisterItem,
        [completion = std::move(completion)](const Result& result) { completion(result.error); });
}

void LinuxLoginItem::ask(Request request, std::function<void(const Result&)> completion) {
    completions_.push_back(std::move(completion));
    {
        const std::lock_guard lock(backgroundSide_->mutex);
        backgroundSide_->waiting.push_back(request);
        if (std::exchange(backgroundSide_->isTaskUnderWay, true)) return;
    }
    backgroundQueue_.async([side = backgroundSide_] { side->run(side); });
}

void LinuxLoginItem::complete(const Result& result) {
    const auto completion = std::move(completions_.front());
    completions_.pop_front();
    completion(result);  // which may be the end of this
}

std::string LinuxLoginItem::runningProgram() {
    std::array<char, PATH_MAX> path{};
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    if (length <= 0 || static_cast<std::size_t>(length) == path.size()) return {};
    return {path.data(), static_cast<std::size_t>(length)};
}

}  // namespace norvane
