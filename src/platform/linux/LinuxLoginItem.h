#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/BackgroundQueue.h"
#include "platform/linux/AutostartSurroundings.h"
#include "platform/LoginItem.h"
#include "platform/MainQueue.h"

namespace norvane {

// A desktop entry among those that the user's session starts (freedesktop.org). Nothing is remembered: each
// question reads the files anew, since every desktop has a page of settings that changes them.
//
// The files are read and written on the background queue, what is asked first first. While a disk does not
// answer, later calls wait behind the one that is stuck, and complete when the disk is back; nothing else
// waits. What is under way when this goes away may still be done, and completes nowhere.
//
// A sandboxed package, whose folders are not the session's, would have to ask the desktop portal instead;
// that is not done here.
class LinuxLoginItem final : public LoginItem {
 public:
    // Main thread. The queues outlive this. `program` is what is to be started, a path from the root.
    LinuxLoginItem(MainQueue& mainQueue, BackgroundQueue& backgroundQueue, AutostartSurroundings surroundings,
                   std::string program);
    ~LinuxLoginItem() override;
    LinuxLoginItem(const LinuxLoginItem&) = delete;
    LinuxLoginItem& operator=(const LinuxLoginItem&) = delete;

    void status(std::function<void(int status)> completion) override;
    void registerItem(std::function<void(std::optional<std::string> error)> completion) override;
    void unregisterItem(std::function<void(std::optional<std::string> error)> completion) override;

    // The program that this process runs. To be asked early: once the file has been replaced by a newer one,
    // the kernel knows the old one's name only. Empty where it cannot be told.
    static std::string runningProgram();

 private:
    enum class Request { status, registerItem, unregisterItem };
    struct Result {
        bool isStarted = false;
        std::optional<std::string> error;
    };
    struct BackgroundSide;

    void ask(Request request, std::function<void(const Result&)> completion);
    void complete(const Result& result);

    MainQueue& mainQueue_;
    BackgroundQueue& backgroundQueue_;
    std::shared_ptr<BackgroundSide> backgroundSide_;
    // Of what was asked and is not answered, in this order, in which the answers come, too.
    std::deque<std::function<void(const Result&)>> completions_;
};

}  // namespace norvane
