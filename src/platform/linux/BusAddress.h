#pragma once

#include <string>
#include <string_view>

namespace norvane {

// Of the places that an address offers (D-Bus, "Server Addresses"), separated by semicolons, those that are
// sockets of this machine; empty where there is none. Others lead over a network, or run a program that is to
// start a bus or to connect to one, and none of that is ours to do.
std::string localBusAddress(std::string_view address);

}  // namespace norvane
