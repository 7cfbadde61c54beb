#include "platform/linux/BusAddress.h"

#include <gtest/gtest.h>

namespace norvane {
namespace {

TEST(BusAddress, IsOneOfThisMachine) {
    for (const auto& [address, local] : std::vector<std::pair<const char*, const char*>>{
             {"", ""},
             {"unix:abstract=/tmp/dbus-x,guid=12", "unix:abstract=/tmp/dbus-x,guid=12"},
             {"nonce-tcp:host=h;unixexec:path=/bin/sh;autolaunch:;launchd:env=X", ""},
             {"tcp:port=1;unix:path=/a;autolaunch:;unix:path=/b", "unix:path=/a;unix:path=/b"},
             {"UNIX:path=/a; unix:path=/b;;", ""},
         }) {
        EXPECT_EQ(localBusAddress(address), local) << address;
    }
}

}  // namespace
}  // namespace norvane
