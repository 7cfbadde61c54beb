#include <cstdio>
#include <cstdlib>
#include <memory>

#include "platform/linux/LinuxMachine.h"
#include "shell/NorvaneApp.h"

int main() {
    const std::unique_ptr<norvane::LinuxMachine> machine = norvane::LinuxMachine::open();
    if (!machine) {
        std::fputs("Norvane: there is no X display to show itself on.\n", stderr);
        return EXIT_FAILURE;
    }
    norvane::NorvaneApp application(machine->platform());
    application.launch();
    return machine->run();
}
