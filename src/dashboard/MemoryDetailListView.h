#pragma once

#include "views/Element.h"

namespace norvane {

// The details of the memory: what is cached, and the traffic with the swap area.
struct MemoryDetailListView {
    double cachedFilesGB = 0;
    double swapReadMBps = 0;
    double swapWriteMBps = 0;

    Element body() const;
};

}  // namespace norvane
