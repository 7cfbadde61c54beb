#include "platform/linux/LinuxKernel.h"

#include <utility>

#include "platform/linux/BlockingLaneWaiter.h"
#include "platform/linux/InlineLane.h"
#include "platform/linux/ThreadLane.h"

namespace norvane {

LinuxKernel::Lanes LinuxKernel::Lanes::threads() {
    return {[](std::string name) { return std::make_unique<ThreadLane>(std::move(name)); },
            std::make_shared<BlockingLaneWaiter>()};
}

LinuxKernel::Lanes LinuxKernel::Lanes::sameThread() {
    return {[](const std::string&) { return std::make_unique<InlineLane>(); },
            std::make_shared<BlockingLaneWaiter>()};
}

LinuxKernel::LinuxKernel(const RootFolder& root, const SystemCalls& calls, const Lanes& lanes)
    : files_(root, calls.pageBytes),
      processors_(root),
      readBehind_(lanes.waiter, calls.now),
      host_(files_, processors_, calls.pageBytes, calls.ticksPerSecond),
      // By what the last reading found: asking a battery may take long.
      sysctl_(root, files_, processors_, calls.machine,
              [this] { return !batteries_.newest().services.empty(); }),
      processInfo_(root, files_, calls, readBehind_, lanes.make("thermal"), lowPowerMode_),
      batteries_(
          readBehind_, lanes.make("battery"), &TickReads::battery,
          [batteries = std::make_shared<Batteries>(root, calls.now)] { return batteries->read(); }, {},
          Batteries::isDue),
      registry_(root, calls, readBehind_, lanes.make("graphics"), batteries_),
      powerSources_(batteries_),
      fileManager_(root, calls, readBehind_, lanes.make("volumes")) {}

}  // namespace norvane
