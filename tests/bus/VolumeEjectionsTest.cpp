#include "platform/linux/VolumeEjections.h"

#include <set>

#include "BusTest.h"
#include "linux/HeldQueue.h"
#include "linux/TemporaryFolder.h"

namespace norvane {
namespace {

using Texts = std::vector<std::string>;

constexpr const char* kObjects = "UDisks2? GetManagedObjects";

// A storage service, which knows a stick with two partitions, sda1 at /media/ONE and sda2 at /media/TWO. Its
// calls are as "sda1 Unmount", with a "?" where the user must not be asked for anything.
class VolumeEjectionsTest : public BusTest {
 protected:
    void startService() {
        mounted = {"ONE", "TWO"};
        mount();
        service.reset();
        service = std::make_unique<PlayedService>(
            bus, "org.freedesktop.UDisks2", [this](const PlayedService::Call& call) -> PlayedService::Answer {
                const std::string name =
                    call.path.substr(call.path.rfind('/') + 1) + (call.mayAskUser ? " " : "? ") + call.method;
                if (held.contains(name)) return {.isLater = true};
                if (failing.contains(name)) return {.error = "org.freedesktop.UDisks2.Error.DeviceBusy"};
                if (name == kObjects) return {"(@a{oa{sa{sv}}} " + objects + ",)"};
                if (call.method == "Unmount") mounted.erase(name.starts_with("sda1") ? "ONE" : "TWO");
                mount();
                return {};
            });
    }
    void mount() {
        std::string table = "20 1 0:60 / /mnt/nas rw - nfs4 nas:/export rw\n";
        for (const std::string& name : mounted)
            table +=
                (name == "ONE" ? "21 1 8:1" : "22 1 8:2") + (" / /media/" + name) + " rw - vfat /dev/x rw\n";
        machine.write("/proc/self/mountinfo", table);
    }
    void letGo(const std::string& call) {
        held.erase(call);
        service->goOn();
    }
    void eject(const std::string& path) {
        ejections.begin(path, [this](const auto& error) { ended.push_back(error.value_or("done")); });
    }
    bool comeTo(const std::function<bool()>& holds) {
        return runUntil([&] {
            background.runAll();
            return holds();
        });
    }
    bool isAsked(std::size_t times) {
        return comeTo([&] { return service->calls().size() == times; });
    }
    bool end(const Texts& ends) {
        return comeTo([&] { return ended == ends; });
    }
    std::string ejected(const std::string& path) {
        ended.clear();
        eject(path);
        EXPECT_EQ(ended, Texts()) << "not from within the call";
        EXPECT_TRUE(comeTo([&] { return ended.size() == 1; }));
        return ended.empty() ? "" : ended.front();
    }
    // Whether the main context has to wake by itself.
    static bool hasLimit() {
        gint priority = 0, timeout = 0;
        g_main_context_prepare(g_main_context_default(), &priority);
        g_main_context_query(g_main_context_default(), priority, &timeout, nullptr, 0);
        return timeout >= 0;
    }

    HeldQueue background;
    TemporaryFolder machine;
    BusConnection connection{queue, bus.address(), kAtOnce};
    VolumeEjections ejections{connection, queue, background, machine.root()};
    std::string objects =
        "{'/stick': {'org.freedesktop.UDisks2.Drive': {'Ejectable': <true>, 'Removable': <true>, "
        "'CanPowerOff': <true>}}, "
        "'/sda1': {'org.freedesktop.UDisks2.Filesystem': {}, 'org.freedesktop.UDisks2.Block': "
        "{'DeviceNumber': <uint64 0x801>, 'Drive': <objectpath '/stick'>}}, "
        "'/sda2': {'org.freedesktop.UDisks2.Filesystem': {}, 'org.freedesktop.UDisks2.Block': "
        "{'DeviceNumber': <uint64 0x802>, 'Drive': <objectpath '/stick'>}}}";
    std::set<std::string> mounted, failing, held;
    std::unique_ptr<PlayedService> service;
    // What each ejection came to.
    Texts ended;
};

TEST_F(VolumeEjectionsTest, OfTwoVolumesOfOneDeviceTheLaterOneEjectsItHoweverLongThatTakesAndWhateverFails) {
    held = {kObjects, "sda1 Unmount", "sda2 Unmount"};
    failing = {"sda1 Unmount", "stick Eject", "stick PowerOff"};
    startService();
    eject("/media/ONE");
    eject("/media/TWO");
    EXPECT_TRUE(isAsked(2));
    EXPECT_TRUE(hasLimit()) << "to tell what there is";
    letGo(kObjects);
    EXPECT_TRUE(isAsked(4)) << "side by side";
    EXPECT_FALSE(hasLimit()) << "a user is asked for a password";
    eject("/media/ONE");  // joins the one under way
    letGo("sda1 Unmount");
    EXPECT_TRUE(end({"No", "No"}));
    failing.erase("sda1 Unmount");
    EXPECT_EQ(ejected("/media/ONE"), "done") << "another try";
    EXPECT_TRUE(isAsked(6)) << "the other one is mounted";
    letGo("sda2 Unmount");
    EXPECT_TRUE(end({"done", "done"}));
    ASSERT_TRUE(isAsked(8));
    EXPECT_EQ(service->calls()[6].path + service->calls()[6].method, "/stickEject");
    EXPECT_EQ(service->calls()[7].path + service->calls()[7].method, "/stickPowerOff");
}

TEST_F(VolumeEjectionsTest, FailsWhereNobodyCanDoIt) {
    mounted = {"ONE"};
    mount();
    EXPECT_NE(ejected("/media/ONE"), "done") << "no service";
    startService();
    for (const char* const elsewhere : {"/mnt/nas", "/media/THREE", "/media", ""})
        EXPECT_EQ(ejected(elsewhere), "No device of this machine is mounted there") << elsewhere;
    EXPECT_TRUE(isAsked(0));
    failing = {kObjects};
    EXPECT_EQ(ejected("/media/ONE"), "No");
    failing.clear();
    objects.replace(objects.find("0x801"), 5, "0x803");
    EXPECT_EQ(ejected("/media/ONE"), "The storage service does not know the volume");
    held = {"sda2 Unmount"};
    eject("/media/TWO");
    EXPECT_TRUE(isAsked(4));
    ended.clear();
    service.reset();
    EXPECT_TRUE(comeTo([&] { return ended.size() == 1 && ended != Texts{"done"}; })) << "it goes away";
    bus.kill();
    EXPECT_NE(ejected("/media/ONE"), "done") << "no bus";
}

}  // namespace
}  // namespace norvane
