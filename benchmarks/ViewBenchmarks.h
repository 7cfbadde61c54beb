#pragma once

namespace norvane {

// Registers what the main thread does with a tick: from the dashboard's and the label's new values to pixels.
void registerViewBenchmarks();

}  // namespace norvane
