#pragma once

#include <string>

#include "views/Element.h"
#include "views/Paint.h"

namespace norvane {

// How full a volume of the machine is. Decimal gigabytes.
struct StorageVolumeRow {
    // Any bytes.
    std::string name;
    double used = 0;
    double total = 0;
    Paint color = Ink::green;

    Element body() const;
};

// "245.10 / 494.40 GB"; both in terabytes where the total is 1000 or more.
std::string formatUsedOverTotal(double usedGB, double totalGB);

}  // namespace norvane
