#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>

#include "platform/linux/LinuxMachine.h"
#include "shell/NorvaneApp.h"

int main() try {
    const std::unique_ptr<norvane::LinuxMachine> machine = norvane::LinuxMachine::open();
    if (!machine) {
        std::fputs("Norvane: there is no X display to show itself on.\n", stderr);
        return EXIT_FAILURE;
    }
    norvane::NorvaneApp application(machine->platform());
    application.launch();
    return machine->run();
} catch (const std::exception& error) {
    // The process may open no file or start no thread: before there is anything to show.
    std::fprintf(stderr, "Norvane: %s\n", error.what());
    return EXIT_FAILURE;
}
