#pragma once

#include <gtest/gtest.h>

#include <chrono>

#include "linux/RunLoop.h"
#include "platform/linux/BusConnection.h"
#include "platform/linux/LinuxMainQueue.h"
#include "PrivateBus.h"

namespace norvane {

// A bus, and what connections to it need.
class BusTest : public testing::Test {
 protected:
    static constexpr BusConnection::Pace kAtOnce{.firstAttempt = std::chrono::nanoseconds(0),
                                                 .firstPause = std::chrono::milliseconds(5),
                                                 .longestPause = std::chrono::milliseconds(20)};

    static BusConnection::Call getId() {
        return {.name = "org.freedesktop.DBus",
                .path = "/org/freedesktop/DBus",
                .interface = "org.freedesktop.DBus",
                .method = "GetId",
                .answerType = G_VARIANT_TYPE("(s)")};
    }
    static bool comesToBe(const BusConnection& connection, BusConnection::State state) {
        return runUntil([&] { return connection.state() == state; });
    }
    // The bus hands over in order: its answer comes after whatever was sent before.
    static bool hearsAll(BusConnection& connection) {
        bool isAnswered = false;
        const auto call = connection.call(getId(), [&](GVariant*, const GError*) { isAnswered = true; });
        return runUntil([&] { return isAnswered; });
    }
    static void turnToTheEnd() {
        while (g_main_context_iteration(nullptr, FALSE)) {
        }
    }

    PrivateBus bus;
    LinuxMainQueue queue;
};

}  // namespace norvane
