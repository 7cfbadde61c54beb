#pragma once

#include <glib.h>

#include <chrono>
#include <functional>

namespace norvane {

// Runs the main context until the condition holds, and says whether it came to hold. The condition may depend
// on other threads: it is looked at after each turn and every few milliseconds. The limit is for tests that
// fail.
inline bool runUntil(const std::function<bool()>& holds,
                     std::chrono::milliseconds limit = std::chrono::seconds(20)) {
    const auto look = [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; };
    const guint looking = g_timeout_add(2, look, nullptr);
    const auto end = std::chrono::steady_clock::now() + limit;
    bool held = holds();
    while (!held && std::chrono::steady_clock::now() < end) {
        g_main_context_iteration(nullptr, TRUE);
        held = holds();
    }
    g_source_remove(looking);
    return held;
}

}  // namespace norvane
