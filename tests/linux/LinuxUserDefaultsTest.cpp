#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <filesystem>
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
};

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

TEST_F(UserDefaultsTest, AreSeenAtOnceAndByTheNextProcess) {
    const auto expect = [](const Store& store) {
        EXPECT_EQ(store["key"], Value("on"s));
        EXPECT_EQ(store["gone"], Value());
        EXPECT_EQ(store["bytes"], Value("a\ufffd"s));
    };
    {
        Store store(queue, folder / "a" / "b" / "defaults.ini");
        EXPECT_EQ(store["key"], Value());
        EXPECT_FALSE(fs::exists(folder / "a")) << "nothing is made before there is something to keep";
        store.defaults.setObject("key", "on"s);
        store.defaults.setObject("gone", true);
        store.defaults.setObject("bytes", "a\xff"s);
        store.defaults.removeObjectForKey("gone");
        expect(store);
    }
    expect(Store(queue, folder / "a" / "b" / "defaults.ini"));
}

TEST_F(UserDefaultsTest, KeepTheRestOfTheFileAndCloseItToOthers) {
    files.write(kFile, "# mine\n[defaults]\nunknown=oops\nkey=1\n");
    Store store(queue, file);
    store.defaults.setObject("key", 2.0);
    EXPECT_TRUE(store.defaults.synchronize());
    EXPECT_EQ(files.text(kFile), "# mine\n[defaults]\nunknown=oops\nkey=2\n");
    struct stat status {};
    ASSERT_EQ(stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
    EXPECT_EQ(files.root().names("/").size(), 1u);
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

TEST_F(UserDefaultsTest, AreReadFromAnyThreadWhileTheyChange) {
    Store store(queue, file);
    std::atomic<bool> isOver = false;
    std::thread reader([&] {
        double last = 0;
        while (!isOver) {
            const auto value = store["key"];
            const double now = value ? std::get<double>(*value) : 0;
            EXPECT_GE(now, last);
            last = now;
        }
    });
    for (int number = 1; number <= 500; ++number)
        store.defaults.setObject("key", static_cast<double>(number));
    isOver = true;
    reader.join();
    EXPECT_TRUE(store.defaults.synchronize());
    EXPECT_EQ(files.text(kFile), "[defaults]\nkey=500\n");
}

TEST_F(UserDefaultsTest, NoticeWhatOthersDoToTheFileHoweverTheyDoIt) {
    files.write(kFile, "[defaults]\nkey=1\n");
    Store store(queue, file);
    const auto becomes = [&](const Value& value) { return runUntil([&] { return store["key"] == value; }); };
    EXPECT_EQ(store["key"], Value(1.0));
    files.write(kFile, "[defaults]\nkey=2\n");
    EXPECT_TRUE(becomes(2.0)) << "written in place";
    for (const double number : {3.0, 4.0}) {
        replace(file, "[defaults]\nkey=" + std::to_string(number));
        EXPECT_TRUE(becomes(number)) << "replaced, and replaced again";
    }
    fs::remove(file);
    EXPECT_TRUE(becomes(std::nullopt)) << "removed";
    files.write(kFile, "[defaults]\nkey=5\n");
    EXPECT_TRUE(becomes(5.0)) << "made anew";
    fs::rename(file, folder / "away");
    EXPECT_TRUE(becomes(std::nullopt)) << "moved away";
    fs::create_symlink("away", file);
    EXPECT_TRUE(becomes(5.0)) << "a link in its place";
    files.write("/away", "[defaults]\nkey=6\n");
    EXPECT_TRUE(becomes(6.0)) << "written through the link";
    fs::remove_all(folder);
    EXPECT_TRUE(becomes(std::nullopt)) << "the folder removed";
    fs::create_directory(folder);
    files.write(kFile, "[defaults]\nkey=7\n");
    EXPECT_TRUE(becomes(7.0)) << "the folder made anew";
    EXPECT_TRUE(runUntil([&] { return store.told >= 9; })) << "once for each at least";
}

TEST_F(UserDefaultsTest, PutTheirChangeIntoWhatOthersWroteMeanwhile) {
    constexpr int kRounds = 50;
    const auto writer = [&](const char* prefix) {
        LinuxMainQueue unused;
        DefaultsStorage storage(file.string());
        for (int round = 0; round < kRounds; ++round) {
            EXPECT_TRUE(storage.apply({{prefix + std::to_string(round), true}}));
        }
    };
    std::thread other([&] { writer("other"); });
    Store store(queue, file);
    for (int round = 0; round < kRounds; ++round) {
        store.defaults.setObject("ours" + std::to_string(round), true);
        EXPECT_TRUE(store.defaults.synchronize());
    }
    other.join();
    EXPECT_EQ(parseDefaults(files.text(kFile)).size(), 2u * kRounds);
    EXPECT_TRUE(runUntil([&] { return store["other" + std::to_string(kRounds - 1)].has_value(); }));
}

TEST_F(UserDefaultsTest, SurviveAWriterThatWasKilledBeforeItMovedTheFileIntoPlace) {
    files.write(kFile, "[defaults]\nkey=1\n");
    files.write("/.defaults.ini.aB3xYz.tmp", "[defaults]\nke");
    files.write("/.defaults.ini.mine.tmp", "");
    Store store(queue, file);
    EXPECT_EQ(store["key"], Value(1.0));
    store.defaults.setObject("other", 2.0);
    EXPECT_TRUE(store.defaults.synchronize());
    EXPECT_EQ(files.text(kFile), "[defaults]\nkey=1\nother=2\n");
    EXPECT_FALSE(fs::exists(folder / ".defaults.ini.aB3xYz.tmp")) << "what the killed one left is removed";
    EXPECT_TRUE(fs::exists(folder / ".defaults.ini.mine.tmp")) << "what it did not leave is not";
}

TEST_F(UserDefaultsTest, ReplaceTheTargetOfALinkAndNeverTheLink) {
    const fs::path target = folder / "repository" / "norvane.ini";
    files.write("/repository/norvane.ini", "[defaults]\nkey=1\n");
    fs::create_symlink("repository/norvane.ini", folder / "second");
    fs::create_symlink(folder / "second", file);
    Store store(queue, file);
    store.defaults.setObject("key", 2.0);
    EXPECT_TRUE(store.defaults.synchronize());
    EXPECT_TRUE(fs::is_symlink(file) && fs::is_symlink(folder / "second"));
    EXPECT_FALSE(fs::is_symlink(target));
    EXPECT_EQ(files.text("/repository/norvane.ini"), "[defaults]\nkey=2\n");
    replace(target, "[defaults]\nkey=3\n");
    EXPECT_TRUE(runUntil([&] { return store["key"] == Value(3.0); })) << "its folder is watched as well";

    fs::remove(target);
    store.defaults.setObject("key", 4.0);
    EXPECT_TRUE(store.defaults.synchronize());
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(files.text("/repository/norvane.ini"), "[defaults]\nkey=4\n") << "a link that led nowhere";
}

TEST_F(UserDefaultsTest, MoveAsideWhatIsNoDefaultsFileAtTheFirstWriteAndNotBefore) {
    const fs::path aside = folder / "defaults.ini.bad";
    const std::string huge = "[defaults]\nkey=1\n" + std::string(DefaultsStorage::kLargestBytes, '#');
    const auto expectAside = [&](const char* name, const std::function<void()>& make, fs::file_type type) {
        fs::remove_all(folder);
        fs::create_directory(folder);
        make();
        Store store(queue, file);
        EXPECT_EQ(store["key"], Value()) << name;
        EXPECT_TRUE(store.defaults.synchronize());
        EXPECT_FALSE(fs::exists(fs::symlink_status(aside))) << name;
        store.defaults.setObject("other", 2.0);
        EXPECT_TRUE(store.defaults.synchronize()) << name;
        EXPECT_EQ(fs::symlink_status(aside).type(), type) << name;
        EXPECT_EQ(files.text(kFile), "[defaults]\nother=2\n") << name;
    };
    expectAside(
        "a folder", [&] { fs::create_directory(file); }, fs::file_type::directory);
    expectAside(
        "a pipe", [&] { ASSERT_EQ(mkfifo(file.c_str(), 0600), 0); }, fs::file_type::fifo);
    expectAside(
        "a link to itself", [&] { fs::create_symlink("defaults.ini", file); }, fs::file_type::symlink);
    expectAside(
        "a huge file", [&] { files.write(kFile, huge); }, fs::file_type::regular);
    EXPECT_EQ(files.text("/defaults.ini.bad"), huge);
}

TEST_F(UserDefaultsTest, KeepWhatCannotBeWrittenUntilItCan) {
    const fs::path obstacle = folder / "no-folder";
    files.write("/no-folder", "");
    {
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
    Store homeless(queue, "");
    homeless.defaults.setObject("key", 1.0);
    EXPECT_FALSE(homeless.defaults.synchronize());
    EXPECT_EQ(homeless["key"], Value(1.0));
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
    EXPECT_TRUE(LinuxUserDefaults::defaultPath().ends_with("/norvane/defaults.ini"));
}

}  // namespace
}  // namespace norvane
