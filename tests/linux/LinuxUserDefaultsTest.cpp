#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <future>
#include <sstream>
#include <thread>

#include "linux/RunLoop.h"
#include "platform/linux/DefaultsStorage.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/LinuxMainQueue.h"
#include "platform/linux/LinuxUserDefaults.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
namespace fs = std::filesystem;

std::string contentsOf(const fs::path& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

void write(const fs::path& path, const std::string& text) {
    std::ofstream(path) << text;
}

std::size_t entriesIn(const fs::path& folder) {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

class UserDefaultsTest : public testing::Test {
 protected:
    UserDefaultsTest() {
        std::string name = (fs::temp_directory_path() / "norvane-defaults-XXXXXX").string();
        folder = mkdtemp(name.data());
        file = folder / "defaults.ini";
    }
    ~UserDefaultsTest() override { fs::remove_all(folder); }

    LinuxMainQueue queue;
    fs::path folder;
    fs::path file;
};

// A store that counts how often its observers were told.
class Store {
 public:
    Store(MainQueue& queue, const fs::path& path)
        : defaults(queue, path.string()), subscription(defaults.onDidChange([this] { ++told; })) {}

    std::optional<DefaultsValue> operator[](std::string_view key) const { return defaults.objectForKey(key); }

    LinuxUserDefaults defaults;
    int told = 0;

 private:
    Cancellation subscription;
};

using Value = std::optional<DefaultsValue>;

TEST_F(UserDefaultsTest, AreSeenAtOnceAndByTheNextProcess) {
    {
        Store store(queue, folder / "a" / "b" / "defaults.ini");
        EXPECT_EQ(store["key"], Value());
        EXPECT_FALSE(fs::exists(folder / "a")) << "nothing is made before there is something to keep";
        store.defaults.setObject("key", "on"s);
        store.defaults.setObject("gone", true);
        store.defaults.setObject("bytes", "a\xff"s);
        store.defaults.removeObjectForKey("gone");
        EXPECT_EQ(store["key"], Value("on"s));
        EXPECT_EQ(store["gone"], Value());
        EXPECT_EQ(store["bytes"], Value("a\ufffd"s));
    }
    const Store store(queue, folder / "a" / "b" / "defaults.ini");
    EXPECT_EQ(store["key"], Value("on"s));
    EXPECT_EQ(store["gone"], Value());
    EXPECT_EQ(store["bytes"], Value("a\ufffd"s));
}

TEST_F(UserDefaultsTest, KeepTheRestOfTheFileAndCloseItToOthers) {
    write(file, "# mine\n[defaults]\nunknown=oops\nkey=1\n");
    Store store(queue, file);
    store.defaults.setObject("key", 2.0);
    EXPECT_TRUE(store.defaults.synchronize());
    EXPECT_EQ(contentsOf(file), "# mine\n[defaults]\nunknown=oops\nkey=2\n");
    struct stat status {};
    ASSERT_EQ(stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
    EXPECT_EQ(entriesIn(folder), 1u);
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
    write(folder / "other", "");
    fs::rename(folder / "other", folder / "yet-another");
    store.defaults.removeObjectForKey("missing");
    write(folder / "new", "[defaults]\nkey=3\n");
    fs::rename(folder / "new", file);
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
    EXPECT_EQ(contentsOf(file), "[defaults]\nkey=500\n");
}

TEST_F(UserDefaultsTest, NoticeWhatOthersDoToTheFileHoweverTheyDoIt) {
    write(file, "[defaults]\nkey=1\n");
    Store store(queue, file);
    const auto becomes = [&](const Value& value) { return runUntil([&] { return store["key"] == value; }); };
    EXPECT_EQ(store["key"], Value(1.0));
    write(file, "[defaults]\nkey=2\n");
    EXPECT_TRUE(becomes(2.0)) << "written in place";
    for (const double number : {3.0, 4.0}) {
        write(folder / "new", "[defaults]\nkey=" + std::to_string(number));
        fs::rename(folder / "new", file);
        EXPECT_TRUE(becomes(number)) << "replaced, and replaced again";
    }
    fs::remove(file);
    EXPECT_TRUE(becomes(std::nullopt)) << "removed";
    write(file, "[defaults]\nkey=5\n");
    EXPECT_TRUE(becomes(5.0)) << "made anew";
    fs::rename(file, folder / "away");
    EXPECT_TRUE(becomes(std::nullopt)) << "moved away";
    fs::create_symlink("away", file);
    EXPECT_TRUE(becomes(5.0)) << "a link in its place";
    write(folder / "away", "[defaults]\nkey=6\n");
    EXPECT_TRUE(becomes(6.0)) << "written through the link";
    fs::remove_all(folder);
    EXPECT_TRUE(becomes(std::nullopt)) << "the folder removed";
    fs::create_directory(folder);
    write(file, "[defaults]\nkey=7\n");
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
    EXPECT_EQ(parseDefaults(contentsOf(file)).size(), 2u * kRounds);
    EXPECT_TRUE(runUntil([&] { return store["other" + std::to_string(kRounds - 1)].has_value(); }));
}

TEST_F(UserDefaultsTest, AreSharedByTwoStoresThatWriteDifferentKeys) {
    Store one(queue, file);
    Store other(queue, file);
    one.defaults.setObject("one", 1.0);
    other.defaults.setObject("other", 2.0);
    EXPECT_TRUE(one.defaults.synchronize() && other.defaults.synchronize());
    EXPECT_TRUE(runUntil([&] { return one["other"] == Value(2.0) && other["one"] == Value(1.0); }));
    one.defaults.removeObjectForKey("other");
    EXPECT_TRUE(runUntil([&] { return !other["other"]; }));
    EXPECT_EQ(contentsOf(file), "[defaults]\none=1\n");
}

TEST_F(UserDefaultsTest, SurviveAWriterThatWasKilledBeforeItMovedTheFileIntoPlace) {
    write(file, "[defaults]\nkey=1\n");
    write(folder / ".defaults.ini.aB3xYz.tmp", "[defaults]\nke");
    write(folder / ".defaults.ini.mine.tmp", "");
    Store store(queue, file);
    EXPECT_EQ(store["key"], Value(1.0));
    store.defaults.setObject("other", 2.0);
    EXPECT_TRUE(store.defaults.synchronize());
    EXPECT_EQ(contentsOf(file), "[defaults]\nkey=1\nother=2\n");
    EXPECT_FALSE(fs::exists(folder / ".defaults.ini.aB3xYz.tmp")) << "what the killed one left is removed";
    EXPECT_TRUE(fs::exists(folder / ".defaults.ini.mine.tmp")) << "what it did not leave is not";
}

TEST_F(UserDefaultsTest, ReplaceTheTargetOfALinkAndNeverTheLink) {
    const fs::path repository = folder / "repository";
    fs::create_directory(repository);
    write(repository / "norvane.ini", "[defaults]\nkey=1\n");
    fs::create_symlink("repository/norvane.ini", folder / "second");
    fs::create_symlink(folder / "second", file);
    Store store(queue, file);
    store.defaults.setObject("key", 2.0);
    EXPECT_TRUE(store.defaults.synchronize());
    EXPECT_TRUE(fs::is_symlink(file) && fs::is_symlink(folder / "second"));
    EXPECT_FALSE(fs::is_symlink(repository / "norvane.ini"));
    EXPECT_EQ(contentsOf(repository / "norvane.ini"), "[defaults]\nkey=2\n");
    write(repository / "new", "[defaults]\nkey=3\n");
    fs::rename(repository / "new", repository / "norvane.ini");
    EXPECT_TRUE(runUntil([&] { return store["key"] == Value(3.0); })) << "its folder is watched as well";

    fs::remove(repository / "norvane.ini");
    store.defaults.setObject("key", 4.0);
    EXPECT_TRUE(store.defaults.synchronize());
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(contentsOf(repository / "norvane.ini"), "[defaults]\nkey=4\n") << "a link that led nowhere";
}

TEST_F(UserDefaultsTest, MoveAsideWhatIsNoDefaultsFileAtTheFirstWriteAndNotBefore) {
    struct Case {
        const char* name;
        std::function<void()> make;
        std::function<bool()> isAside;
    };
    const fs::path aside = folder / "defaults.ini.bad";
    const std::string huge = "[defaults]\nkey=1\n" + std::string(DefaultsStorage::kLargestBytes, '#');
    for (const Case& c : {
             Case{"a folder", [&] { fs::create_directory(file); }, [&] { return fs::is_directory(aside); }},
             Case{"a huge file", [&] { write(file, huge); }, [&] { return contentsOf(aside) == huge; }},
             Case{"a pipe", [&] { ASSERT_EQ(mkfifo(file.c_str(), 0600), 0); },
                  [&] { return fs::is_fifo(aside); }},
             Case{"a link to itself", [&] { fs::create_symlink("defaults.ini", file); },
                  [&] { return fs::is_symlink(aside); }},
         }) {
        fs::remove_all(folder);
        fs::create_directory(folder);
        c.make();
        Store store(queue, file);
        EXPECT_EQ(store["key"], Value()) << c.name;
        EXPECT_TRUE(store.defaults.synchronize());
        EXPECT_FALSE(fs::exists(fs::symlink_status(aside))) << c.name;
        store.defaults.setObject("other", 2.0);
        EXPECT_TRUE(store.defaults.synchronize()) << c.name;
        EXPECT_TRUE(c.isAside()) << c.name;
        EXPECT_EQ(contentsOf(file), "[defaults]\nother=2\n") << c.name;
    }
}

TEST_F(UserDefaultsTest, KeepWhatCannotBeWrittenUntilItCan) {
    const fs::path obstacle = folder / "no-folder";
    write(obstacle, "");
    {
        Store store(queue, obstacle / "defaults.ini");
        store.defaults.setObject("first", 1.0);
        EXPECT_FALSE(store.defaults.synchronize());
        EXPECT_EQ(store["first"], Value(1.0));
        fs::remove(obstacle);
        store.defaults.setObject("second", 2.0);
        EXPECT_TRUE(store.defaults.synchronize()) << "the first is tried again with the second";
        write(obstacle / "defaults.ini", "[defaults]\nsecond=3\n");
        EXPECT_TRUE(runUntil([&] { return store["second"] == Value(3.0); }));
        EXPECT_EQ(store["first"], Value()) << "what is in the file is the file's";
    }
    Store homeless(queue, "");
    homeless.defaults.setObject("key", 1.0);
    EXPECT_FALSE(homeless.defaults.synchronize());
    EXPECT_EQ(homeless["key"], Value(1.0));
}

TEST_F(UserDefaultsTest, KeepAnUnwrittenValueThroughAnEditOfTheFile) {
    write(file, "[defaults]\nkey=1\nother=1\n");
    // No temporary file can be made beside the target: its name would be too long.
    const fs::path target = folder / std::string(250, 'x');
    fs::rename(file, target);
    fs::create_symlink(target, file);
    Store store(queue, file);
    store.defaults.setObject("key", 2.0);
    EXPECT_FALSE(store.defaults.synchronize());
    write(target, "[defaults]\nkey=1\nother=3\n");
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
    EXPECT_EQ(contentsOf(file), "[defaults]\nkey=1\n");
}

TEST(UserDefaultsPath, FollowsTheXdgBaseDirectories) {
    struct Case {
        const char* xdgConfigHome;
        const char* home;
        const char* path;
    };
    for (const Case& c : {Case{"/x", "/home/u", "/x/norvane/defaults.ini"},
                          Case{nullptr, "/home/u", "/home/u/.config/norvane/defaults.ini"},
                          Case{"", "/home/u", "/home/u/.config/norvane/defaults.ini"},
                          Case{"x", "/home/u", "/home/u/.config/norvane/defaults.ini"},
                          Case{nullptr, nullptr, ""}, Case{nullptr, "u", ""}}) {
        EXPECT_EQ(LinuxUserDefaults::pathIn(c.xdgConfigHome, c.home), c.path);
    }
    EXPECT_TRUE(LinuxUserDefaults::defaultPath().ends_with("/norvane/defaults.ini"));
}

}  // namespace
}  // namespace norvane
