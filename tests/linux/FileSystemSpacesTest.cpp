#include "platform/linux/FileSystemSpaces.h"

#include <gtest/gtest.h>

#include "FakeServers.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr FileSystemSpace kLarge{900, 500};

class FileSystemSpacesTest : public testing::Test {
 protected:
    FakeSystemCalls system;
    FakeServers servers{system};
    FileSystemSpaces spaces{system.calls, servers.waiter()};
    std::vector<Mount> table;

    void add(std::uint64_t id, const std::string& path, FileSystemSpace space = {100, 40}) {
        Mount mount;
        mount.id = id;
        mount.device = {0, static_cast<std::uint32_t>(id)};
        mount.point = path;
        mount.type = "nfs4";
        table.push_back(mount);
        servers.set(path, space);
    }

    // The total sizes by mount; "failed" where the call did, and "?" without an answer.
    std::string ask(std::size_t expectedCalls) {
        servers.expectCalls(expectedCalls);
        std::vector<const Mount*> asked;
        for (const Mount& mount : table)
            asked.push_back(&mount);
        std::string totals;
        for (const auto& answer : spaces.ask(asked, table)) {
            if (!totals.empty()) totals += ' ';
            totals += !answer ? "?" : !answer->space ? "failed" : std::to_string(answer->space->totalBytes);
        }
        return totals;
    }
};

using Waits = std::vector<std::chrono::nanoseconds>;

TEST_F(FileSystemSpacesTest, ServersThatAnswerAreAskedEachTime) {
    EXPECT_EQ(ask(0), "");
    for (std::uint64_t id = 1; id <= 9; ++id)
        add(id, "/" + std::to_string(id), {id, 0});
    servers.set("/4", {});
    EXPECT_EQ(ask(9), "1 2 3 failed 5 6 7 8 9");
    servers.set("/3", kLarge);
    EXPECT_EQ(ask(9), "1 2 900 failed 5 6 7 8 9");
}

TEST_F(FileSystemSpacesTest, AHungServerCostsOneWaitAndIsLeftAloneForAMinuteWhenItIsBack) {
    add(1, "/nas");
    EXPECT_EQ(ask(1), "100");
    servers.hang("/nas");
    system.advance(10min - 250ms - 1ns);
    servers.takeGranted();
    EXPECT_EQ(ask(1), "100") << "an answer serves for ten minutes";
    EXPECT_EQ(servers.takeGranted(), Waits{250ms});
    system.advance(1ns);
    EXPECT_EQ(ask(0), "?");
    add(2, "/alive", kLarge);
    system.advance(1h);
    EXPECT_EQ(ask(1), "? 900");
    EXPECT_EQ(servers.callsOut(), 1u);
    table.pop_back();
    servers.takeGranted();
    EXPECT_EQ(ask(0), "?");
    EXPECT_TRUE(servers.takeGranted().empty()) << "what was late before is not waited for";
    servers.release("/nas");
    EXPECT_EQ(ask(0), "100") << "the late answer is an answer";
    servers.set("/nas", kLarge);
    system.advance(60s - 1ns);
    EXPECT_EQ(ask(0), "100");
    system.advance(1ns);
    EXPECT_EQ(ask(1), "900");
    EXPECT_EQ(ask(1), "900") << "in time, so no pause";
}

TEST_F(FileSystemSpacesTest, FourHungServersAreTheMost) {
    for (std::uint64_t id = 1; id <= 4; ++id) {
        add(id, "/dead" + std::to_string(id));
        servers.hang(table.back().point);
    }
    add(5, "/alive");
    EXPECT_EQ(ask(4), "? ? ? ? ?");
    servers.takeGranted();
    EXPECT_EQ(ask(0), "? ? ? ? ?");
    EXPECT_TRUE(servers.takeGranted().empty()) << "no thread will come free";
    servers.release("/dead2");
    EXPECT_EQ(ask(1), "? 100 ? ? 100");
    EXPECT_EQ(servers.callsOut(), 3u);
}

TEST_F(FileSystemSpacesTest, AMountThatWentIsForgotten) {
    add(1, "/nas");
    servers.hang("/nas");
    EXPECT_EQ(ask(1), "?");
    const std::vector<Mount> before = std::exchange(table, {});
    ask(0);
    table = before;
    servers.release("/nas");
    servers.set("/nas", kLarge);
    EXPECT_EQ(ask(1), "900") << "no pause, no answer from before";
    table[0].point = "/other";
    servers.set("/other", FileSystemSpace{100, 40});
    EXPECT_EQ(ask(1), "100") << "another mount under the same id";
}

TEST_F(FileSystemSpacesTest, ThreadsOutliveWhoeverAskedAndAnExceptionIsAFailedCall) {
    add(1, "/dead");
    servers.hang("/dead");
    servers.expectCalls(1);
    FileSystemSpaces(system.calls, servers.waiter()).ask({&table[0]}, table);
    EXPECT_EQ(servers.callsOut(), 1u);
    servers.release("/dead");

    SystemCalls calls = system.calls;
    calls.fileSystemSpace =
        [answer = calls.fileSystemSpace](const std::string& path) -> std::optional<FileSystemSpace> {
        answer(path);
        throw std::bad_alloc();
    };
    servers.expectCalls(1);
    const auto answers = FileSystemSpaces(calls, servers.waiter()).ask({&table[0]}, table);
    ASSERT_TRUE(answers.at(0));
    EXPECT_FALSE(answers[0]->space);
}

}  // namespace
}  // namespace norvane
