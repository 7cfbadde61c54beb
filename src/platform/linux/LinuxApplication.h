#pragma once

#include <glib.h>
#include <signal.h>

#include "platform/Application.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/LinuxMainQueue.h"
#include "platform/Observers.h"

namespace norvane {

// The process: its main loop and how it ends. SIGTERM and SIGINT end it as `terminate` does, and a reader
// that goes away is an error to whoever writes, not the end of the process (SIGPIPE is ignored). Main thread
// only. There is one at a time, made before the first thread of anybody else, so that no thread takes the
// signals. A program that this process starts inherits the blocked signals unless they are set free for it.
class LinuxApplication final : public Application {
 public:
    explicit LinuxApplication(LinuxMainQueue& mainQueue);
    // The signals are as they were.
    ~LinuxApplication() override;
    LinuxApplication(const LinuxApplication&) = delete;
    LinuxApplication& operator=(const LinuxApplication&) = delete;

    // Runs the main loop until `terminate`, and gives the process' exit status.
    int run();

    void terminate() override;
    // Nothing to do: none of our windows is one that a task bar or a switcher lists.
    void setActivationPolicy(ActivationPolicy) override {}
    // Each of our windows comes to the front, and asks for the keyboard, when it is shown; so all there is to
    // do is to tell.
    void activateIgnoringOtherApps() override;
    Cancellation onDidBecomeActive(std::function<void()> observer) override {
        return didBecomeActive_.add(std::move(observer));
    }
    Cancellation onReopen(std::function<void()> observer) override {
        return reopened_.add(std::move(observer));
    }
    // Another start of the application has come upon this one.
    void reopen() const { reopened_.tell(); }

 private:
    static gboolean signalCame(gint descriptor, GIOCondition condition, gpointer application);

    LinuxMainQueue& mainQueue_;
    Observers<> didBecomeActive_;
    Observers<> reopened_;
    GMainLoop* loop_;
    bool isTerminated_ = false;
    FileDescriptor signals_;  // a signalfd
    guint signalSource_ = 0;
    sigset_t signalsBefore_;
    struct sigaction pipeActionBefore_;
};

}  // namespace norvane
