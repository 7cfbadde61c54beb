#pragma once

#include <glib.h>
#include <memory>

namespace norvane {

struct GVariantDeleter {
    void operator()(GVariant* variant) const { g_variant_unref(variant); }
};

// One reference to a GVariant, not a floating one.
using GVariantPointer = std::unique_ptr<GVariant, GVariantDeleter>;

}  // namespace norvane
