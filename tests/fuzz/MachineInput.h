#pragma once

#include <string_view>

#include "linux/TemporaryFolder.h"

namespace norvane {

// A small machine that a target's bytes describe, in a folder of its own. The text has a heading before each
// file, then the file's text; a link has a heading alone:
//
//     === /sys/class/power_supply/BAT0/uevent
//     POWER_SUPPLY_TYPE=Battery
//     === /sys/block/sda -> ../devices/pci0000:00/block/sda
//
// After a line "=== then" comes what is different a moment later: the texts of files that are there or new,
// and files that are gone:
//
//     === /sys/class/thermal/thermal_zone0/temp gone
//
// What cannot be made is left out. Whatever the links say, nothing is written outside of the folder.
class MachineInput {
 public:
    // The text outlives this.
    explicit MachineInput(std::string_view text) : rest_(text) { goOn(); }

    RootFolder root() const { return folder_.root(); }
    // Goes on to the next moment, if the text tells of another one.
    void goOn();

 private:
    bool canMake(std::string_view path) const;
    void make(std::string_view heading, std::string_view text) const;

    TemporaryFolder folder_;
    std::string_view rest_;
    // Enough for several devices; more would only be slow.
    int thingsLeft_ = 64;
};

}  // namespace norvane
