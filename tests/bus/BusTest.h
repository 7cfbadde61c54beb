#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "linux/RunLoop.h"
#include "platform/linux/BusConnection.h"
#include "platform/linux/LinuxMainQueue.h"
#include "platform/linux/WellKnownNames.h"
#include "PlayedService.h"
#include "PrivateBus.h"

namespace norvane {

inline constexpr BusConnection::Pace kAtOnce{.firstAttempt = std::chrono::nanoseconds(0),
                                             .firstPause = std::chrono::milliseconds(5),
                                             .longestPause = std::chrono::milliseconds(20)};

// A bus, and what connections to it need.
class BusTest : public testing::Test {
 protected:
    // Whatever comes over the bus, nothing may be called with it that GLib complains of.
    BusTest() {
        g_log_set_always_fatal(static_cast<GLogLevelFlags>(G_LOG_LEVEL_CRITICAL | G_LOG_FATAL_MASK));
    }

    static BusConnection::Call getId() {
        return {.name = kBusDriver, .path = kBusDriverPath, .interface = kBusDriver, .method = "GetId"};
    }
    static bool comesToBe(const BusConnection& connection, BusConnection::State state) {
        return runUntil([&] { return connection.state() == state; });
    }
    // The answer in the text form of GVariant, or "error".
    static std::string asked(BusConnection& connection, const BusConnection::Call& question) {
        std::string told;
        const auto call = connection.call(question, [&](GVariant* answer, const GError*) {
            told = answer != nullptr ? PlayedService::printed(answer) : "error";
        });
        EXPECT_TRUE(runUntil([&] { return !told.empty(); })) << question.method;
        return told;
    }
    // The bus hands over in order: its answer comes after whatever was sent before.
    static bool hearsAll(BusConnection& connection) { return !asked(connection, getId()).empty(); }
    static void turn(int times) {
        while (times-- > 0)
            g_main_context_iteration(nullptr, FALSE);
    }
    static void turnToTheEnd() {
        while (g_main_context_iteration(nullptr, FALSE)) {
        }
    }

    PrivateBus bus;
    LinuxMainQueue queue;
};

}  // namespace norvane
