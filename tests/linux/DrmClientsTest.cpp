#include "platform/linux/DrmClients.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>

#include "CountingFileObserver.h"
#include "FakeSystemCalls.h"
#include "TemporaryFolder.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

class DrmClientsTest : public testing::Test {
 protected:
    TemporaryFolder machine;
    FakeSystemCalls system;
    std::shared_ptr<CountingFileObserver> observer = std::make_shared<CountingFileObserver>();
    DrmClients clients{machine.root(observer), ::getuid(), system.calls.now};
    const DrmClients::Nodes nodes{{"card0", "0000:00:02.0"}, {"renderD128", "0000:00:02.0"}};

    void open(const std::string& process, const std::string& number, const std::string& target,
              const std::string& fdinfo) {
        machine.link("/proc/" + process + "/fd/" + number, target);
        machine.write("/proc/" + process + "/fdinfo/" + number, "pos:\t0\n" + fdinfo);
    }
    static std::string client(const std::string& id, unsigned nanoseconds,
                              const std::string& pdev = "0000:00:02.0") {
        return "drm-client-id: " + id + "\n" + (pdev.empty() ? "" : "drm-pdev: " + pdev + "\n") +
               "drm-engine-render: " + std::to_string(nanoseconds) + " ns\n";
    }
    static DrmEngines render(std::uint64_t nanoseconds) { return {{"render", {nanoseconds, {}, {}, 1}}}; }
    bool hasOpened(const std::string& path) const {
        return std::find(observer->opened.begin(), observer->opened.end(), path) != observer->opened.end();
    }
};

TEST_F(DrmClientsTest, AreCountedOnceAndBelongToOneDeviceEach) {
    open("100", "4", "/dev/dri/renderD128", client("1", 10));
    open("100", "5", "/dev/dri/renderD128", client("1", 10));
    open("100", "6", "/dev/dri/card0", client("2", 20));
    open("200", "4", "/dev/dri/renderD128", client("1", 10));  // inherited
    open("200", "5", "/dev/dri/renderD129", client("1", 30, ""));
    const DrmClients::Answer answer = clients.read(
        {{"card0", "0000:00:02.0"}, {"renderD128", "0000:00:02.0"}, {"renderD129", "fd4a0000.gpu"}});
    EXPECT_EQ(answer.at, system.calls.now());
    const std::map<std::string, DrmClientEngines> want{
        {"0000:00:02.0", {{"1", render(10)}, {"2", render(20)}}}, {"fd4a0000.gpu", {{"1", render(30)}}}};
    EXPECT_EQ(answer.clients, want);
}

TEST_F(DrmClientsTest, OpenNothingButOurOwnDescriptorsOfTheGivenNodes) {
    open("100", "3", "/home/ada/dev/dri/card0", client("1", 10));
    open("100", "4", "socket:[4711]", client("2", 10));
    open("100", "5", "/dev/dri/renderD129", client("3", 10, "0000:01:00.0"));
    open("100", "6", "/dev/dri/card0 (deleted)", client("4", 10));
    open("self", "4", "/dev/dri/card0", client("5", 10));
    machine.write("/proc/stat", "cpu 1 2 3 4\n");
    EXPECT_TRUE(clients.read(nodes).clients.empty());
    EXPECT_EQ(observer->read, std::vector<std::string>{});
    EXPECT_FALSE(hasOpened("/proc/self/fd/"));

    open("100", "7", "/dev/dri/card0", client("1", 10));
    observer->forget();
    DrmClients ofSomebodyElse(machine.root(observer), ::getuid() + 1, system.calls.now);
    EXPECT_TRUE(ofSomebodyElse.read(nodes).clients.empty());
    EXPECT_EQ(observer->opened, std::vector<std::string>{"/proc"});
}

TEST_F(DrmClientsTest, OutliveBrokenNeighbours) {
    open("100", "3", "/dev/dri/card0", "");
    open("100", "4", "/dev/dri/card0", std::string("\0\xff\n:\n", 5));
    open("100", "5", "/dev/dri/card0", client("9", 10, "0000:01:00.0"));  // closed, and another one opened
    machine.link("/proc/100/fd/6", "/dev/dri/card0");                     // closed in between
    machine.link("/proc/100/fd/7", "/dev/dri/card0");
    machine.makeFolder("/proc/100/fdinfo/7");  // cannot be read
    machine.makeFolder("/proc/101");           // ended in between
    open("102", "3", "/dev/dri/card0", client("1", 10));
    EXPECT_EQ(clients.read(nodes).clients.at("0000:00:02.0"), (DrmClientEngines{{"1", render(10)}}));
}

TEST_F(DrmClientsTest, AreLookedForAmongAllProcessesEveryThirtySeconds) {
    open("100", "4", "/dev/dri/card0", client("1", 10));
    open("101", "4", "/dev/null", "");
    open("102", "4", "/dev/dri/renderD129", client("7", 10));  // of a device that sleeps
    clients.read(nodes);
    observer->forget();

    machine.remove("/proc/100/fd/4");  // the same process goes on with another descriptor
    open("100", "5", "/dev/dri/card0", client("2", 20));
    open("101", "5", "/dev/dri/card0", client("3", 30));
    system.advance(29s);
    EXPECT_EQ(clients.read(nodes).clients.at("0000:00:02.0"), (DrmClientEngines{{"2", render(20)}}));
    EXPECT_FALSE(hasOpened("/proc"));
    EXPECT_FALSE(hasOpened("/proc/101/fd/"));
    const DrmClients::Nodes nowAwake{{"renderD129", "0000:00:02.0"}};
    EXPECT_EQ(clients.read(nowAwake).clients.at("0000:00:02.0"), (DrmClientEngines{{"7", render(10)}}));

    system.advance(1s);
    EXPECT_EQ(clients.read(nodes).clients.at("0000:00:02.0"),
              (DrmClientEngines{{"2", render(20)}, {"3", render(30)}}));
}

}  // namespace
}  // namespace norvane
