#include "LiveSampler.h"

#include <cstddef>

namespace norvane {

LiveSampler::LiveSampler(bool isDashboardVisible, const RootFolder& root, const SystemCalls& calls,
                         const LinuxKernel::Lanes& lanes)
    : kernel_(root, calls, lanes) {
    sampler_->start();
    publish();
    if (isDashboardVisible) sampler_->setUIVisible(true);
    publish();
    for (std::size_t i = 0; i < 2 * PerformanceSampler::kCPUHistoryLength; ++i) {
        tick();
        publish();
    }
}

Platform LiveSampler::platform() {
    return {.wallClock = wallClock_,
            .monotonicClock = rest_.time.monotonicClock(),
            .dispatch = dispatch_,
            .hostPort = kernel_.hostPort(),
            .sysctl = kernel_.sysctl(),
            .processInfo = kernel_.processInfo(),
            .registry = kernel_.registry(),
            .powerSources = kernel_.powerSources(),
            .fileManager = kernel_.fileManager(),
            .userNotificationCenter = rest_.userNotificationCenter,
            .standardOutput = rest_.standardOutput,
            .loginItem = rest_.loginItem,
            .workspace = rest_.workspace,
            .mainBundle = rest_.mainBundle,
            .userDefaults = rest_.userDefaults,
            .uuidSource = rest_.uuidSource,
            .textRuler = rest_.textRuler,
            .appearance = rest_.appearance,
            .windowServer = rest_.windowServer,
            .application = rest_.application};
}

}  // namespace norvane
