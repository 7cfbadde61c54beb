#pragma once

#include <cstdint>
#include <string>

#include "platform/Sysctl.h"

namespace norvane {

// What the processor is, for display. Immutable; one for an application, made and read on the main thread.
class CPUHardwareInfo {
 public:
    explicit CPUHardwareInfo(Sysctl& sysctl);

    // Physical cores, at least 0; 0 where the machine does not tell kinds of cores apart.
    std::int64_t performanceCores() const { return performanceCores_; }
    std::int64_t efficiencyCores() const { return efficiencyCores_; }
    // The chip's marketing name, valid UTF-8; empty where it is not known.
    const std::string& chipName() const { return chipName_; }

 private:
    std::int64_t performanceCores_;
    std::int64_t efficiencyCores_;
    std::string chipName_;
};

}  // namespace norvane
