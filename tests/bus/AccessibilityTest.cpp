#include "platform/linux/LinuxAccessibility.h"

#include "BusTest.h"
#include "platform/linux/LinuxMonotonicClock.h"

namespace norvane {
namespace {

// A desktop whose accessibility bus is the session bus itself. A client of another kind than ours may ask
// anything: nothing of it may bring anything down.
using AccessibilityTest = BusTest;

TEST_F(AccessibilityTest, JoinsEachRegistryAndAnswersOddQuestions) {
    const PlayedService status(bus, "org.a11y.Bus", [&](const auto& call) -> PlayedService::Answer {
        return {call.method == "GetAddress" ? "('" + bus.address() + "',)" : "(<true>,)"};
    });
    std::string name;
    const auto embed = [&](const PlayedService::Call& call) -> PlayedService::Answer {
        name = call.arguments.substr(3, call.arguments.find('\'', 3) - 3);
        return {"(('org.a11y.atspi.Registry', objectpath '/org/a11y/atspi/accessible/root'),)"};
    };
    LinuxMonotonicClock clock;
    AccessibleSurfaces surfaces;
    BusConnection session(queue, bus.address(), kAtOnce);
    auto accessibility =
        std::make_unique<LinuxAccessibility>(session, queue, clock, surfaces, [] { return 1.0; });
    for (const char* const registry : {"one", "another"}) {
        name.clear();
        const PlayedService service(bus, "org.a11y.atspi.Registry", embed);
        ASSERT_TRUE(runUntil([&] { return !name.empty(); })) << registry;
    }
    constexpr const char* kAccessible = "org.a11y.atspi.Accessible";
    const struct {
        const char* object;
        const char* interface;
        const char* method;
        const char* arguments;
        const char* answer;
    } questions[] = {
        {"root", kAccessible, "GetRoleName", "()", "('application',)"},
        {"root", kAccessible, "GetChildAtIndex", "(2147483647,)", "(('', '/org/a11y/atspi/null'),)"},
        {"root", kPropertiesInterface, "Get", "('org.a11y.atspi.Value', 'CurrentValue')", "error"},
        {"root", "org.a11y.atspi.Action", "DoAction", "(0,)", "error"},
        {"99", kAccessible, "GetRole", "()", "error"},
        {"99999999999999999999999", kAccessible, "GetRole", "()", "error"},
        {"1/2", kAccessible, "GetRole", "()", "error"},
    };
    for (const auto& each : questions) {
        const std::string path = std::string("/org/a11y/atspi/accessible/") + each.object;
        EXPECT_EQ(asked(session, {.name = name.c_str(),
                                  .path = path.c_str(),
                                  .interface = each.interface,
                                  .method = each.method,
                                  .parameters = PlayedService::parsed(each.arguments)}),
                  each.answer)
            << path << ' ' << each.method << each.arguments;
    }
    accessibility.reset();
    EXPECT_TRUE(BusPeer(bus.address()).comesToHaveOwner(name.c_str(), false)) << "its connection is closed";
}

}  // namespace
}  // namespace norvane
