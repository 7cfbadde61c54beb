#pragma once

#include <glib-object.h>
#include <memory>

namespace norvane {

struct GObjectDeleter {
    void operator()(gpointer object) const { g_object_unref(object); }
};

// One reference to a GObject.
template <typename Object>
using GObjectPointer = std::unique_ptr<Object, GObjectDeleter>;

}  // namespace norvane
