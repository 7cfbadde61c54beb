#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <filesystem>
#include <functional>
#include <thread>

#include "linux/RunLoop.h"
#include "linux/TemporaryFolder.h"
#include "platform/linux/DefaultsStorage.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/LinuxMainQueue.h"
#include "platform/linux/LinuxUserDefaults.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
namespace fs = std::filesystem;

using Value = std::optional<DefaultsValue>;

constexpr const char* kFile = "/defaults.ini";

// A store that counts how often its observers were told.
class Store {
 public:
    Store(MainQueue& queue, const fs::path& path)
        : defaults(queue, path.string()), subscription(defaults.onDidChange([this] { ++told; })) {}

    Value operator[](std::string_view key) const { return defaults.objectForKey(key); }

    LinuxUserDefaults defaults;
    int told = 0;

 private:
    Cancellation subscription;
};

class UserDefaultsTest : public testing::Test {
 protected:
    TemporaryFolder files;
    LinuxMainQueue queue;
    const fs::path folder = files.path();
    const fs::path file = folder / "defaults.ini";

    // Puts the text in place as editors and we do it: in another file, which is then moved.
    void replace(const fs::path& target, const std::string& text) const {
        files.write("/new", text);
        fs::rename(folder / "new", target);
    }
    // By another store than the test's.
    bool written(std::string_view key, double value) {
        Store store(queue, file);
        store.defaults.setObject(key, value);
        return store.defaults.synchronize();
    }
};

TEST_F(UserDefaultsTest, AreSeenAtOnceAndByTheNextProcessAndLeaveTheRestOfTheFile) {
    const fs::path fresh = folder / "a" / "b" / "defaults.ini";
    {
        Store store(queue, fresh);
        EXPECT_FALSE(fs::exists(folder / "a")) << "nothing is made before there is something to keep";
        store.defaults.setObject("gone", true);
        store.defaults.setObject("bytes", "a\xff"s);
        store.defaults.removeObjectForKey("gone");
        EXPECT_EQ(store["gone"], Value());
        EXPECT_EQ(store["bytes"], Value("a\ufffd"s));
    }
    EXPECT_EQ(files.text("/a/b/defaults.ini"), "[defaults]\nbytes=\"a\ufffd\"\n");
    files.write(kFile, "# mine\n[defaults]\nunknown=oops\nkey=1\n");
    EXPECT_TRUE(written("key", 2.0));
    EXPECT_EQ(files.text(kFile), "# mine\n[defaults]\nunknown=oops\nkey=2\n");
    EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(files.root().names("/"), (std::vector<std::string>{"a", "defaults.ini"})) << "and nothing else";
}

TEST_F(UserDefaultsTest, TellTheirObserversInALaterTurnOfTheMainQueue) {
    Store store(queue, file);
    Value seen;
    const auto subscription = store.defaults.onDidChange([&] { seen = store["key"]; });
    store.defaults.setObject("other", 1.0);
    store.defaults.setObject("key", 1.0);
    EXPECT_EQ(store.told, 0);
    EXPECT_TRUE(runUntil([&] { return store.told > 0; }));
    EXPECT_EQ(seen, Value(1.0));
    // Our own write comes back as an event about the file, which is no news: the next is the second.
    EXPECT_TRUE(store.defaults.synchronize());
    replace(folder / "another", "");
    store.defaults.removeObjectForKey("missing");
    replace(file, "[defaults]\nkey=3\n");
    EXPECT_TRUE(runUntil([&] { return seen == Value(3.0); }));
    EXPECT_EQ(store.told, 2);
}

TEST_F(UserDefaultsTest, NoticeWhatOthersDoToTheFileHoweverTheyDoIt) {
    Store store(queue, file);
    struct Step {
        const char* name;
        std::function<void()> act;
        Value want;
    };
    const std::vector<Step> steps{
        {"made", [&] { files.write(kFile, "[defaults]\nkey=1\n"); }, 1.0},
        {"written in place", [&] { files.write(kFile, "[defaults]\nkey=2\n"); }, 2.0},
        {"replaced", [&] { replace(file, "[defaults]\nkey=3"); }, 3.0},
        {"replaced again", [&] { replace(file, "[defaults]\nkey=4"); }, 4.0},
        {"moved away", [&] { fs::rename(file, folder / "away"); }, std::nullopt},
        {"a link in its place", [&] { fs::create_symlink("away", file); }, 4.0},
        {"written through the link", [&] { files.write("/away", "[defaults]\nkey=6\n"); }, 6.0},
        {"the folder removed", [&] { files.remove(""); }, std::nullopt},
        {"the folder made anew", [&] { files.write(kFile, "[defaults]\nkey=7\n"); }, 7.0}};
    for (const auto& [name, act, want] : steps) {
        act();
        EXPECT_TRUE(runUntil([&, &want = want] { return store["key"] == want; })) << name;
    }
    EXPECT_TRUE(runUntil([&] { return store.told >= static_cast<int>(steps.size()); }))
        << "once for each at least";
}

TEST_F(UserDefaultsTest, PutTheirChangeIntoWhatOthersWriteMeanwhileAndAreReadFromAnyThread) {
    constexpr int kRounds = 50;
    Store store(queue, file);
    std::thread other([&] {
        DefaultsStorage storage(file.string());
        double last = 0;
        for (int round = 0; round < kRounds; ++round) {
            EXPECT_TRUE(storage.apply({{"other" + std::to_string(round), true}}));
            const Value value = store["round"];
            EXPECT_GE(value ? std::get<double>(*value) : 0, last);
            last = value ? std::get<double>(*value) : 0;
        }
    });
    for (int round = 1; round < kRounds; ++round) {
        store.defaults.setObject("ours" + std::to_string(round), true);
        store.defaults.setObject("round", static_cast<double>(round));
        EXPECT_TRUE(store.defaults.synchronize());
    }
    other.join();
    EXPECT_EQ(parseDefaults(files.text(kFile)).size(), 2u * kRounds);
    EXPECT_TRUE(runUntil([&] { return store["other" + std::to_string(kRounds - 1)].has_value(); }));
}

TEST_F(UserDefaultsTest, RemoveWhatAKilledWriterLeftAndNothingElse) {
    files.write(kFile, "[defaults]\nkey=1\n");
    files.write("/.defaults.ini.aB3xYz.tmp", "[defaults]\nke");
    files.write("/.defaults.ini.mine.tmp", "");
    EXPECT_TRUE(written("other", 2.0));
    EXPECT_EQ(files.text(kFile), "[defaults]\nkey=1\nother=2\n");
    EXPECT_EQ(files.root().names("/").size(), 2u);
    EXPECT_TRUE(fs::exists(folder / ".defaults.ini.mine.tmp"));
}

TEST_F(UserDefaultsTest, ReplaceTheTargetOfALinkAndNeverTheLink) {
    const fs::path target = folder / "repository" / "norvane.ini";
    files.write("/repository/norvane.ini", "[defaults]\nkey=1\n");
    fs::create_symlink("repository/norvane.ini", folder / "second");
    fs::create_symlink(folder / "second", file);
    EXPECT_TRUE(written("key", 2.0));
    EXPECT_TRUE(fs::is_symlink(file) && fs::is_symlink(folder / "second") && !fs::is_symlink(target));
    EXPECT_EQ(files.text("/repository/norvane.ini"), "[defaults]\nkey=2\n");
    Store store(queue, file);
    replace(target, "[defaults]\nkey=3\n");
    EXPECT_TRUE(runUntil([&] { return store["key"] == Value(3.0); })) << "its folder is watched as well";

    fs::remove(target);
    EXPECT_TRUE(written("key", 4.0));
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(files.text("/repository/norvane.ini"), "[defaults]\nkey=4\n") << "a link that led nowhere";
}

TEST_F(UserDefaultsTest, MoveAsideWhatIsNoDefaultsFileAtTheFirstWriteAndNotBefore) {
    const auto aside = [this] { return fs::symlink_status(folder / "defaults.ini.bad"); };
    const std::string huge = "[defaults]\nkey=1\n" + std::string(DefaultsStorage::kLargestBytes, '#');
    const std::vector<std::pair<const char*, std::function<void()>>> cases{
        {"a folder", [&] { fs::create_directory(file); }},
        {"a pipe", [&] { mkfifo(file.c_str(), 0600); }},
        {"a link to itself", [&] { fs::create_symlink("defaults.ini", file); }},
        {"a huge file", [&] { files.write(kFile, huge); }}};
    for (const auto& [name, make] : cases) {
        files.remove("");
        fs::create_directory(folder);
        make();
        const fs::file_type type = fs::symlink_status(file).type();
        EXPECT_EQ(Store(queue, file)["key"], Value()) << name;
        EXPECT_FALSE(fs::exists(aside())) << name;
        EXPECT_TRUE(written("other", 2.0)) << name;
        EXPECT_EQ(aside().type(), type) << name;
        EXPECT_EQ(files.text(kFile), "[defaults]\nother=2\n") << name;
    }
    EXPECT_EQ(files.text("/defaults.ini.bad"), huge);
}

TEST_F(UserDefaultsTest, KeepWhatCannotBeWrittenUntilItCan) {
    const fs::path obstacle = folder / "no-folder";
    files.write("/no-folder", "");
    Store store(queue, obstacle / "defaults.ini");
    store.defaults.setObject("first", 1.0);
    EXPECT_FALSE(store.defaults.synchronize());
    EXPECT_EQ(store["first"], Value(1.0));
    fs::remove(obstacle);
    store.defaults.setObject("second", 2.0);
    EXPECT_TRUE(store.defaults.synchronize()) << "the first is tried again with the second";
    files.write("/no-folder/defaults.ini", "[defaults]\nsecond=3\n");
    EXPECT_TRUE(runUntil([&] { return store["second"] == Value(3.0); }));
    EXPECT_EQ(store["first"], Value()) << "what is in the file is the file's";
}

TEST_F(UserDefaultsTest, KeepAnUnwrittenValueThroughAnEditOfTheFile) {
    files.write(kFile, "[defaults]\nkey=1\nother=1\n");
    // No temporary file can be made beside the target: its name would be too long.
    const fs::path target = folder / std::string(250, 'x');
    fs::rename(file, target);
    fs::create_symlink(target, file);
    Store store(queue, file);
    store.defaults.setObject("key", 2.0);
    EXPECT_FALSE(store.defaults.synchronize());
    files.write("/" + target.filename().string(), "[defaults]\nkey=1\nother=3\n");
    EXPECT_TRUE(runUntil([&] { return store["other"] == Value(3.0); }));
    EXPECT_EQ(store["key"], Value(2.0));
}

TEST_F(UserDefaultsTest, WaitNoLongerThanTheyShouldForSomebodyWhoHoldsTheFile) {
    const FileDescriptor holder(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    ASSERT_EQ(flock(holder.get(), LOCK_EX), 0);
    Store store(queue, file);
    store.defaults.setObject("key", 1.0);
    EXPECT_EQ(store["key"], Value(1.0));
    EXPECT_FALSE(store.defaults.synchronize(1ms));
    EXPECT_TRUE(store.defaults.synchronize(20s)) << "in the end it goes without";
    EXPECT_EQ(files.text(kFile), "[defaults]\nkey=1\n");
}

TEST(UserDefaultsPath, FollowsTheXdgBaseDirectories) {
    EXPECT_EQ(LinuxUserDefaults::pathIn("/x", "/home/u"), "/x/norvane/defaults.ini");
    for (const char* none : {static_cast<const char*>(nullptr), "", "x"})
        EXPECT_EQ(LinuxUserDefaults::pathIn(none, "/home/u"), "/home/u/.config/norvane/defaults.ini");
    EXPECT_EQ(LinuxUserDefaults::pathIn(nullptr, nullptr), "");
    EXPECT_EQ(LinuxUserDefaults::pathIn(nullptr, "u"), "");
}

}  // namespace
}  // namespace norvane
