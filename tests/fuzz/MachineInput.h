#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "platform/linux/RootFolder.h"

namespace norvane {

// A small machine that a target's bytes describe, written to a folder of its own, for the life of this. The
// text has a heading before each file, then the file's text; a link has a heading alone:
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
    explicit MachineInput(std::string_view text);
    ~MachineInput();
    MachineInput(const MachineInput&) = delete;
    MachineInput& operator=(const MachineInput&) = delete;

    RootFolder root() const { return RootFolder(folder_.string()); }

    // Goes on to the next moment, if the text tells of another one.
    void goOn();

 private:
    void make(std::string_view heading, std::string_view text) const;

    std::filesystem::path folder_;
    std::string_view rest_;
    int thingsLeft_;
};

}  // namespace norvane
