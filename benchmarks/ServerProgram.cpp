// The program itself, on this machine but for its processors: those of a large server. What it shows is
// measured from outside.

#include <cstdlib>
#include <memory>
#include <variant>

#include "MadeProcessors.h"
#include "platform/linux/LinuxMachine.h"
#include "shell/NorvaneApp.h"

int main() {
    const auto opened = norvane::LinuxMachine::open();
    const auto* const machine = std::get_if<std::unique_ptr<norvane::LinuxMachine>>(&opened);
    if (machine == nullptr) return EXIT_FAILURE;
    const norvane::Platform real = (*machine)->platform();
    norvane::MadeProcessors processors(real.hostPort, real.sysctl);
    const norvane::Platform made{real.wallClock,      real.monotonicClock,
                                 real.dispatch,       processors,
                                 processors,          real.processInfo,
                                 real.registry,       real.powerSources,
                                 real.fileManager,    real.userNotificationCenter,
                                 real.standardOutput, real.loginItem,
                                 real.workspace,      real.mainBundle,
                                 real.userDefaults,   real.uuidSource,
                                 real.textRuler,      real.appearance,
                                 real.windowServer,   real.application};
    norvane::NorvaneApp application(made);
    application.launch();
    return (*machine)->run();
}
