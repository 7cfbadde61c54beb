#include "platform/linux/LinuxApplication.h"

#include <glib-unix.h>
#include <sys/signalfd.h>
#include <unistd.h>
#include <cstdlib>

namespace norvane {
namespace {

// Takes one signal that is waiting, if there is one.
bool takeSignal(int descriptor) {
    signalfd_siginfo signal;
    return read(descriptor, &signal, sizeof signal) == static_cast<ssize_t>(sizeof signal);
}

}  // namespace

// The signals are read from a descriptor in the main loop itself: GLib's own signal sources would start a
// thread to watch for them.
LinuxApplication::LinuxApplication(LinuxMainQueue& mainQueue)
    : mainQueue_(mainQueue), loop_(g_main_loop_new(nullptr, FALSE)) {
    struct sigaction ignore {};
    ignore.sa_handler = SIG_IGN;
    sigaction(SIGPIPE, &ignore, &pipeActionBefore_);

    sigset_t ends;
    sigemptyset(&ends);
    sigaddset(&ends, SIGTERM);
    sigaddset(&ends, SIGINT);
    signals_ = FileDescriptor(signalfd(-1, &ends, SFD_CLOEXEC | SFD_NONBLOCK));
    // Without a descriptor the signals stay unblocked, and end the process the hard way.
    if (!signals_) sigemptyset(&ends);
    pthread_sigmask(SIG_BLOCK, &ends, &signalsBefore_);
    if (signals_) signalSource_ = g_unix_fd_add(signals_.get(), G_IO_IN, signalCame, this);
}

LinuxApplication::~LinuxApplication() {
    if (signals_) {
        g_source_remove(signalSource_);
        // A second one that came while the process was ending must not end it again.
        while (takeSignal(signals_.get())) {
        }
    }
    pthread_sigmask(SIG_SETMASK, &signalsBefore_, nullptr);
    sigaction(SIGPIPE, &pipeActionBefore_, nullptr);
    g_main_loop_unref(loop_);
}

void LinuxApplication::activateIgnoringOtherApps() {
    mainQueue_.async([this] { didBecomeActive_.tell(); });
}

int LinuxApplication::run() {
    if (!isTerminated_) g_main_loop_run(loop_);
    return EXIT_SUCCESS;
}

void LinuxApplication::terminate() {
    isTerminated_ = true;
    mainQueue_.close();  // what waits in this very turn must not run any more
    g_main_loop_quit(loop_);
}

gboolean LinuxApplication::signalCame(gint descriptor, GIOCondition, gpointer application) {
    if (takeSignal(descriptor)) static_cast<LinuxApplication*>(application)->terminate();
    return G_SOURCE_CONTINUE;
}

}  // namespace norvane
