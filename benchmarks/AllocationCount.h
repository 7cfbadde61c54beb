#pragma once

#include <cstddef>

namespace norvane {

// How often this thread has called `operator new`, in whatever form. Linked into a program, it replaces the
// program's `new` and `delete`.
std::size_t allocationsOnThisThread();

}  // namespace norvane
