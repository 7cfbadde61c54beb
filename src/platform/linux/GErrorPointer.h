#pragma once

#include <glib.h>
#include <memory>

namespace norvane {

struct GErrorDeleter {
    void operator()(GError* error) const { g_error_free(error); }
};

using GErrorPointer = std::unique_ptr<GError, GErrorDeleter>;

}  // namespace norvane
