#pragma once

namespace norvane {

// What the label in the panel shows: percent from 0 to 100, and gigabytes of 2^30 bytes.
struct MenuBarStats {
    double cpu = 0;
    double ramUsed = 0;
    double ramTotal = 1.0;

    bool operator==(const MenuBarStats&) const = default;
};

}  // namespace norvane
