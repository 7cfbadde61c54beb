#include "platform/linux/LinuxMachine.h"

#include <utility>

namespace norvane {

std::variant<std::unique_ptr<LinuxMachine>, LinuxMachine::Failure> LinuxMachine::open() {
    auto connection = X11Connection::open();
    if (!connection) return Failure::noDisplay;
    auto instance = X11SingleInstance::claim(*connection);
    if (!instance) return Failure::runningAlready;
    return std::unique_ptr<LinuxMachine>(new LinuxMachine(std::move(connection), std::move(instance)));
}

LinuxMachine::LinuxMachine(std::unique_ptr<X11Connection> connection,
                           std::unique_ptr<X11SingleInstance> instance)
    : connection_(std::move(connection)),
      instance_(std::move(instance)),
      windowServer_(*connection_, sessionBus_, systemBus_, textLayouts_, appearance_, monotonicClock_,
                    dispatch_.mainQueue()) {
    instance_->setReopenHandler([this] { application_.reopen(); });
    dispatch_.keep(kernel_);
    // Without its display there is nobody to show anything to.
    connection_->setEndHandler([this] { application_.terminate(); });
}

int LinuxMachine::run() {
    const int status = application_.run();
    instance_.reset();  // whoever starts now is the first
    return status;
}

Platform LinuxMachine::platform() {
    return {.wallClock = wallClock_,
            .monotonicClock = monotonicClock_,
            .dispatch = dispatch_,
            .hostPort = kernel_->hostPort(),
            .sysctl = kernel_->sysctl(),
            .processInfo = kernel_->processInfo(),
            .registry = kernel_->registry(),
            .powerSources = kernel_->powerSources(),
            .fileManager = kernel_->fileManager(),
            .userNotificationCenter = userNotificationCenter_,
            .standardOutput = standardOutput_,
            .loginItem = loginItem_,
            .workspace = workspace_,
            .mainBundle = mainBundle_,
            .userDefaults = userDefaults_,
            .uuidSource = uuidSource_,
            .textRuler = textRuler_,
            .appearance = appearance_,
            .windowServer = windowServer_,
            .application = application_};
}

}  // namespace norvane
