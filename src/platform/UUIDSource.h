#pragma once

#include "platform/UUID.h"

namespace norvane {

// Where identities come from. Any thread; never blocks, never fails, never gives one twice.
class UUIDSource {
 public:
    virtual ~UUIDSource() = default;

    virtual UUID next() = 0;
};

}  // namespace norvane
