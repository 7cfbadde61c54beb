#include "platform/linux/RootFolder.h"

#include <gtest/gtest.h>

#include "platform/linux/KeptFile.h"

#include "CountingFileObserver.h"
#include "TemporaryFolder.h"

namespace norvane {
namespace {

// Whoever follows the links, the answers are the same.
class RootFolderLinks : public testing::TestWithParam<RootFolder::Links> {
 protected:
    TemporaryFolder machine;
    RootFolder root() const { return RootFolder(machine.path() + "/root", nullptr, GetParam()); }
};

INSTANTIATE_TEST_SUITE_P(Each, RootFolderLinks,
                         testing::Values(RootFolder::Links::kernelFollows, RootFolder::Links::weFollow));

TEST_P(RootFolderLinks, AreFollowedInsideThePrefixAndNeverLeadOutOfIt) {
    machine.write("/root/sys/devices/pci/disk/stat", "inside");
    machine.link("/root/sys/class/block/disk", "../../devices/pci/disk");
    machine.link("/root/absolute", "/sys/class/block/disk/stat");
    machine.link("/root/sys/twice", "../absolute");
    machine.link("/root/sys/class/deep", "/sys/devices/pci/disk");
    machine.write("/secret", "outside");
    machine.write("/root/etc/x", "");
    machine.link("/root/up", "../secret");
    machine.link("/root/etc/up", "../../../../secret");
    machine.link("/root/out", machine.path() + "/secret");
    machine.link("/root/a", "b");
    machine.link("/root/b", "a");
    machine.link("/root/nowhere", "missing/too");
    for (const char* path : {"/sys/devices/pci/disk/stat", "/sys/class/block/disk/stat", "/absolute",
                             "/sys/twice", "/sys/class/deep/stat", "/sys/./class//block/disk/../disk/stat"}) {
        EXPECT_EQ(root().read(path), "inside") << path;
    }
    for (const char* path :
         {"/up", "/etc/up", "/out", "/../secret", "/etc/../../secret", "/a", "/a/x", "/nowhere"})
        EXPECT_EQ(root().read(path), std::nullopt) << path;
    EXPECT_EQ(root().names("/sys/class/block/disk/"), std::vector<std::string>{"stat"});
    EXPECT_TRUE(root().names("/a").empty());
    EXPECT_EQ(root().readLink("/sys/class/block/disk"), "../../devices/pci/disk");
    EXPECT_EQ(root().readLink("/sys/class/block/disk/stat"), std::nullopt) << "not a link";
    machine.write("/root/secret", "inside");
    for (const char* path : {"/up", "/etc/up", "/../secret"})
        EXPECT_EQ(root().read(path), "inside") << path;
}

TEST(RootFolder, AnswersNothingForWhatIsMissingOrTooLong) {
    TemporaryFolder machine;
    const std::string text(100'000, 'x');  // longer than any first buffer
    machine.write("/file", text);
    EXPECT_EQ(machine.root().read("/file", 100'000), text);
    EXPECT_EQ(machine.root().read("/file", 99'999), std::nullopt);
    EXPECT_EQ(machine.root().read("/"), std::nullopt) << "a folder has no text";
}

TEST(KeptFile, SeesEachNewTextThroughOneDescriptorAndLooksAgainForAFileThatWasMissingOrFailedForGood) {
    const TemporaryFolder machine;
    const auto observer = std::make_shared<CountingFileObserver>();
    KeptFile file(machine.root(observer), "/f", 6);
    EXPECT_EQ(file.read(), std::nullopt);
    EXPECT_FALSE(file.exists());
    machine.makeFolder("/f");  // opens, but cannot be read
    EXPECT_EQ(file.read(), std::nullopt);
    machine.remove("/f");
    machine.write("/f", "one");
    EXPECT_EQ(file.read(), "one");
    EXPECT_TRUE(file.exists());
    observer->forget();
    for (const auto& [text, want] :
         {std::pair("three!", std::optional("three!")), std::pair("1234567", std::optional<const char*>()),
          std::pair("", std::optional(""))}) {
        machine.write("/f", text);
        EXPECT_EQ(file.read(), want) << text;
    }
    EXPECT_TRUE(observer->opened.empty());

    KeptFile rare(machine.root(observer), "/g", 100, 3);
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(rare.read(), std::nullopt);
    EXPECT_EQ(observer->opened.size(), 2u) << "seldom, where hardly any machine has it";
    machine.write("/g", "x");
    EXPECT_EQ(rare.read(), "x");

    // The first page of memory is never there: an input/output error, which may pass.
    observer->forget();
    KeptFile failing(RootFolder("", observer), "/proc/self/mem");
    for (const int reading : {1, 2})
        EXPECT_EQ(failing.read(), std::nullopt) << reading;
    EXPECT_TRUE(failing.exists());
    EXPECT_EQ(observer->opened.size(), 1u);
}

}  // namespace
}  // namespace norvane
