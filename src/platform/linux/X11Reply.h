#pragma once

#include <cstdlib>
#include <memory>

namespace norvane {

struct XcbFree {
    void operator()(void* memory) const { std::free(memory); }
};

// What XCB hands out: a reply, an event, an error. Null where the request failed or the server is gone.
template <typename Reply>
using X11Reply = std::unique_ptr<Reply, XcbFree>;

}  // namespace norvane
