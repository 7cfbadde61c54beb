#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <variant>

#include "platform/linux/LinuxMachine.h"
#include "shell/NorvaneApp.h"

int main() try {
    using norvane::LinuxMachine;
    const auto opened = LinuxMachine::open();
    if (const auto* const failure = std::get_if<LinuxMachine::Failure>(&opened)) {
        if (*failure == LinuxMachine::Failure::runningAlready) return EXIT_SUCCESS;
        std::fputs("Norvane: there is no X display to show itself on.\n", stderr);
        return EXIT_FAILURE;
    }
    LinuxMachine* const machine = std::get<std::unique_ptr<LinuxMachine>>(opened).get();
    norvane::NorvaneApp application(machine->platform());
    application.launch();
    return machine->run();
} catch (const std::exception& error) {
    // The process may open no file or start no thread: before there is anything to show.
    std::fprintf(stderr, "Norvane: %s\n", error.what());
    return EXIT_FAILURE;
}
