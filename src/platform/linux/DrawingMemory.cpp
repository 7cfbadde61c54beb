#include "platform/linux/DrawingMemory.h"

#include <malloc.h>

namespace norvane {

Cancellation DrawingMemory::popoverShown() {
    ++*shown_;
    drop_.cancel();
    return Cancellation([this, alive = std::weak_ptr(shown_)] {
        const auto shown = alive.lock();
        if (!shown || --*shown > 0) return;
        drop_ = mainQueue_.after(kPatience, [this] { drop(); });
    });
}

void DrawingMemory::drop() {
    drop_.cancel();
    layouts_.close();
    dropped_.tell();
    malloc_trim(0);
}

}  // namespace norvane
