#include "platform/linux/BusAddress.h"

#include <gtest/gtest.h>

namespace norvane {
namespace {

TEST(BusAddress, IsOneOfThisMachine) {
    struct Case {
        const char* address;
        const char* local;
    };
    for (const Case& c : {
             Case{"", ""},
             Case{"unix:path=/run/user/1000/bus", "unix:path=/run/user/1000/bus"},
             Case{"unix:abstract=/tmp/dbus-x,guid=12", "unix:abstract=/tmp/dbus-x,guid=12"},
             Case{"tcp:host=127.0.0.1,port=9", ""},
             Case{"nonce-tcp:host=h;unixexec:path=/bin/sh;autolaunch:;launchd:env=X", ""},
             Case{"unix:path=/nowhere;autolaunch:", "unix:path=/nowhere"},
             Case{"tcp:port=1;unix:path=/a;tcp:port=2;unix:path=/b", "unix:path=/a;unix:path=/b"},
             Case{"UNIX:path=/a; unix:path=/b;;", ""},
             Case{";;;", ""},
         })
        EXPECT_EQ(localBusAddress(c.address), c.local) << c.address;
}

}  // namespace
}  // namespace norvane
