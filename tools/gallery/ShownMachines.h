#pragma once

#include <cstddef>

#include "platform/scripted/ScriptedMachine.h"

// The machines that the gallery's screens are shown on.
namespace norvane::gallery {

// On battery, with four small cores beside four large ones.
void makeIdleLaptop(ScriptedMachine& machine);
// A tower of twelve like cores, with its memory full and the swap area in use.
void makeLoadedDesktop(ScriptedMachine& machine);
// 64 cores.
void makeServer(ScriptedMachine& machine);

// The idle laptop, each time with something about its storage or its battery.
// Two sticks, one of them of a terabyte and full, whose ejection does not end.
void makeLaptopWithSticks(ScriptedMachine& machine);
void makeLaptopWithFullDisk(ScriptedMachine& machine);
// At 7 percent.
void makeLaptopNearItsEnd(ScriptedMachine& machine);
// Held at 80 percent, on mains, in Low Power Mode.
void makeLaptopOnHold(ScriptedMachine& machine);
// With less than two thirds of its capacity left, and hot.
void makeLaptopWithWornBattery(ScriptedMachine& machine);

// What processors have to do, in percent: around a middle, each at a time of its own.
struct Load {
    std::size_t processors = 1;
    double middle = 0;
    double swing = 0;
};
inline constexpr Load kIdle{8, 6, 6};
inline constexpr Load kCompiling{12, 88, 22};
inline constexpr Load kServing{64, 45, 50};

// Lets a minute pass in which the load goes up and down.
void liveAMinute(ScriptedMachine& machine, const Load& load);

}  // namespace norvane::gallery
