#include "platform/linux/UDisksObjects.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <sstream>

#include "platform/linux/GVariantPointer.h"

namespace norvane {
namespace {

// Objects in a short form, one a word: "a:1" is a file system on the device 8:1 and "d:" without a number a
// drive. Letters say more, some with the name of another object: Dd on the drive d, Cb opened from the
// encrypted b, Tb a partition of b, L a loop device; of a drive E for ejectable, R for removable, P for one
// that can be powered off, Sx for the siblings' name.
std::string objects(const std::string& words) {
    // Each "@" is another object's name; what begins with a dot is an interface, and all else a property.
    const std::map<char, std::string> meanings = {{'D', "'Drive': <objectpath '/@'>, "},
                                                  {'C', "'CryptoBackingDevice': <objectpath '/@'>, "},
                                                  {'S', "'SiblingId': <'@'>, "},
                                                  {'E', "'Ejectable': <true>, "},
                                                  {'R', "'Removable': <true>, "},
                                                  {'P', "'CanPowerOff': <true>, "},
                                                  {'T', ".Partition': {'Table': <objectpath '/@'>}, "},
                                                  {'L', ".Loop': {}, "}};
    const std::string udisks = "'org.freedesktop.UDisks2";
    std::string text;
    std::istringstream stream(words);
    for (std::string word; stream >> word;) {
        const bool isBlock = word.find_first_of("123") == 2;
        std::string own = isBlock ? "'DeviceNumber': <uint64 0x80" + word.substr(2, 1) + ">, " : "";
        std::string others = isBlock ? udisks + ".Filesystem': {}, " : "";
        for (std::size_t at = isBlock ? 3 : 2; at < word.size(); ++at) {
            std::string more = meanings.at(word[at]);
            if (const auto name = more.find('@'); name != std::string::npos) more[name] = word.at(++at);
            (more[0] == '.' ? others += udisks : own) += more;
        }
        text += std::string("'/") + word[0] + "': {" + others + udisks + (isBlock ? ".Block" : ".Drive") +
                "': {" + own + "}}, ";
    }
    return '{' + text + '}';
}

// A comma may be left at the end of a dictionary.
UDisksObjects parsed(std::string text) {
    for (std::size_t at = 0; (at = text.find(", }", at)) != std::string::npos;)
        text.erase(at, 2);
    const GVariantPointer variant(
        g_variant_parse(G_VARIANT_TYPE("a{oa{sa{sv}}}"), text.c_str(), nullptr, nullptr, nullptr));
    EXPECT_TRUE(variant) << text;
    return variant ? UDisksObjects(variant.get()) : UDisksObjects();
}

// Those after "/a" was unmounted, where the minors are still mounted.
std::string callsAfterUnmount(const std::string& text, const std::vector<std::uint32_t>& minors = {}) {
    std::vector<DeviceNumber> mounted;
    for (const std::uint32_t minor : minors)
        mounted.push_back({8, minor});
    std::string calls;
    for (const UDisksObjects::Call& call : parsed(text).callsAfterUnmount("/a", mounted))
        calls += call.path.substr(1) + ' ' + call.method + ' ';
    return calls;
}

TEST(UDisksObjects, KnowWhatIsLeftToDoOnceAFileSystemIsUnmounted) {
    const auto expect = [](const char* words, const std::vector<std::uint32_t>& minors, const char* calls) {
        EXPECT_EQ(callsAfterUnmount(objects(words), minors), calls) << words;
    };
    expect("a:1Dd d:ERP", {}, "d Eject d PowerOff ");
    expect("a:1Dd d:RP", {}, "d PowerOff ");
    expect("a:1Dd d:P", {}, "");
    expect("a:1Dd d:R", {}, "");
    expect("a:1Dd d:ERP", {1}, "");
    expect("a:1Dd b:2Dd d:ERP", {2}, "");
    expect("a:1Dd b:2De d:ERP e:ERP", {2}, "d Eject d PowerOff ");
    expect("a:1Dd d:ERPSx e:Sx", {}, "d Eject ");
    expect("a:1Cb b:2Dd c:3Dd d:ERP", {3}, "b Lock ");
    expect("a:1Dd b:2Cc c:3Dd d:ERP", {2}, "");
    expect("a:1L", {}, "a Delete ");
    expect("a:1Tb b:2L", {}, "b Delete ");
    expect("a:1Tb b:2L c:3Tb", {3}, "");
    expect("a:1Ca", {}, "");
    expect("a:1Cb b:2Cc c:3Cb", {}, "b Lock c Lock ");
    expect("a:1Cx", {}, "x Lock ");
    expect("b:1Dd d:ERP", {}, "");
}

TEST(UDisksObjects, BearWhateverTheyAreMadeOf) {
    const std::string block =
        "{'/a': {'org.freedesktop.UDisks2.Filesystem': {}, 'org.freedesktop.UDisks2.Block': ";
    const std::string odd =
        block +
        "{'DeviceNumber': <'8:1'>, 'Drive': <'/d'>, 'CryptoBackingDevice': <7>}},"
        " '/b': {'org.freedesktop.UDisks2.Block': {'DeviceNumber': <uint64 0x80001>, 'Drive': <objectpath "
        "'/d'>}},"
        " '/d': {'org.freedesktop.UDisks2.Drive': {'Ejectable': <1>, 'SiblingId': <true>}, 'x': {}}}";
    EXPECT_EQ(parsed(odd).fileSystemOn({8, 1}), std::nullopt);
    EXPECT_EQ(parsed(odd).fileSystemOn({0, 0x80001}), std::nullopt) << "no file system";
    EXPECT_EQ(callsAfterUnmount(odd), "");
    EXPECT_EQ(parsed(block + "{'DeviceNumber': <uint64 0x1231034f>}}}").fileSystemOn({259, 0x1234f}), "/a")
        << "more bits than the kernel's old numbers have";
    std::string endless;
    for (char each = 'a'; each < 'z'; ++each)
        endless += std::string(1, each) + ":1C" + static_cast<char>(each + 1) + ' ';
    EXPECT_EQ(parsed(objects(endless)).callsAfterUnmount("/a", {}).size(), 16u);
}

}  // namespace
}  // namespace norvane
