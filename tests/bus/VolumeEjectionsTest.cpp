#include "platform/linux/VolumeEjections.h"

#include <algorithm>
#include <map>
#include <set>

#include "BusTest.h"
#include "linux/HeldQueue.h"
#include "linux/TemporaryFolder.h"
#include "PlayedService.h"

namespace norvane {
namespace {

using Texts = std::vector<std::string>;
using Mounts = std::map<std::string, std::string>;

// As "sda1 Unmount", with a "?" where the user must not be asked for anything.
std::string shortened(const PlayedService::Call& call) {
    return call.path.substr(call.path.rfind('/') + 1) + (call.mayAskUser ? " " : "? ") + call.method;
}

// A storage service, which answers at once or when the test says so.
class StorageService {
 public:
    explicit StorageService(const PrivateBus& bus)
        : service_(bus, "org.freedesktop.UDisks2",
                   [this](const auto& call) { return answer(shortened(call)); }) {}

    std::string objects = "{}";
    std::set<std::string> failing;
    std::set<std::string> held;
    // Called before a method is answered.
    std::function<void(const std::string& call)> doing = [](const std::string&) {};

    // All but the first ones.
    Texts calls(std::size_t first = 0) const {
        Texts names;
        for (const auto& call : service_.calls())
            names.push_back(shortened(call));
        names.erase(names.begin(),
                    names.begin() + static_cast<std::ptrdiff_t>(std::min(first, names.size())));
        return names;
    }
    void letGo(const std::string& call) {
        held.erase(call);
        service_.goOn();
    }

 private:
    PlayedService::Answer answer(const std::string& call) const {
        if (held.contains(call)) return {.isLater = true};
        doing(call);
        if (failing.contains(call)) return {.error = "org.freedesktop.UDisks2.Error.DeviceBusy"};
        return {call == "UDisks2? GetManagedObjects" ? "(@a{oa{sa{sv}}} " + objects + ",)" : "()"};
    }

    PlayedService service_;
};

// A stick with two partitions, sda1 and sda2, of which the first may be encrypted: then it is dm_2d0.
std::string stick(bool isEncrypted = false) {
    const std::string path = "/org/freedesktop/UDisks2/";
    const auto block = [&](const std::string& name, std::uint64_t device, const std::string& property) {
        return '\'' + path + name + "': {'org.freedesktop.UDisks2.Filesystem': {}, " +
               "'org.freedesktop.UDisks2.Block': {'DeviceNumber': <uint64 " + std::to_string(device) + ">, " +
               property + "}}";
    };
    const std::string onDrive = "'Drive': <objectpath '" + path + "stick'>";
    const std::string opened = "'CryptoBackingDevice': <objectpath '" + path + "sda1'>";
    return "{'" + path + "stick': {'org.freedesktop.UDisks2.Drive': {'Ejectable': <true>, 'Removable': " +
           "<true>, 'CanPowerOff': <true>}}, " + block("sda1", 0x801, onDrive) + ", " +
           block("sda2", 0x802, onDrive) + (isEncrypted ? ", " + block("dm_2d0", 0xfd00, opened) : "") + '}';
}

class VolumeEjectionsTest : public BusTest {
 protected:
    VolumeEjectionsTest() { mount({{"/media/ONE", "8:1"}, {"/media/TWO", "8:2"}}); }

    void mount(const Mounts& devices) {
        std::string table = "20 1 0:60 / /mnt/nas rw - nfs4 nas:/export rw\n";
        for (const auto& [point, device] : devices)
            table += "21 1 " + device + " / " + point + " rw - vfat /dev/x rw\n";
        machine.write("/proc/self/mountinfo", table);
    }
    void eject(const std::string& path) {
        ejections.begin(path, [this](const std::optional<std::string>& error) {
            ended.push_back(error.value_or("done"));
        });
    }
    bool comeTo(const std::function<bool()>& holds) {
        return runUntil([&] {
            background.runAll();
            return holds();
        });
    }
    std::string ejected(const std::string& path) {
        ended.clear();
        eject(path);
        EXPECT_EQ(ended, Texts()) << "not from within the call";
        EXPECT_TRUE(comeTo([&] { return ended.size() == 1; }));
        return ended.empty() ? "" : ended.front();
    }

    HeldQueue background;
    TemporaryFolder machine;
    BusConnection connection{queue, bus.address(), kAtOnce};
    VolumeEjections ejections{connection, queue, background, machine.root()};
    // What each call came to.
    Texts ended;
};

TEST_F(VolumeEjectionsTest, UnmountsAndThenTriesWhatItCan) {
    const struct {
        bool isEncrypted;
        Mounts mountedAfter;
        std::set<std::string> failing;
        Texts calls;
        std::string end;
    } cases[] = {
        {false, {}, {}, {"sda1 Unmount", "stick Eject", "stick PowerOff"}, "done"},
        {false,
         {},
         {"stick Eject", "stick PowerOff"},
         {"sda1 Unmount", "stick Eject", "stick PowerOff"},
         "done"},
        {false, {{"/media/TWO", "8:2"}}, {}, {"sda1 Unmount"}, "done"},
        {true, {}, {"sda1 Lock"}, {"dm_2d0 Unmount", "sda1 Lock", "stick Eject", "stick PowerOff"}, "done"},
        {false, {}, {"sda1 Unmount"}, {"sda1 Unmount"}, "No"},
        {false, {}, {"UDisks2? GetManagedObjects"}, {}, "No"},
    };
    for (const auto& each : cases) {
        StorageService service(bus);
        service.objects = stick(each.isEncrypted);
        service.failing = each.failing;
        mount({{"/media/ONE", each.isEncrypted ? "253:0" : "8:1"}, {"/media/TWO", "8:2"}});
        service.doing = [&](const std::string& call) {
            if (call.ends_with("Unmount")) mount(each.mountedAfter);
        };
        EXPECT_EQ(ejected("/media/ONE"), each.end);
        EXPECT_EQ(service.calls(1), each.calls) << "after the question for the objects";
    }
}

TEST_F(VolumeEjectionsTest, OfTwoVolumesOfOneDeviceTheLaterOneEjects) {
    StorageService service(bus);
    service.objects = stick();
    service.held = {"sda1 Unmount", "sda2 Unmount"};
    Mounts mounted{{"/media/ONE", "8:1"}, {"/media/TWO", "8:2"}};
    service.doing = [&](const std::string& call) {
        mounted.erase(call == "sda1 Unmount" ? "/media/ONE" : call == "sda2 Unmount" ? "/media/TWO" : "");
        mount(mounted);
    };
    eject("/media/ONE");
    eject("/media/TWO");
    EXPECT_TRUE(comeTo([&] { return service.calls().size() == 4; })) << "side by side";
    service.letGo("sda2 Unmount");
    EXPECT_TRUE(comeTo([&] { return ended == Texts{"done"}; }));
    EXPECT_EQ(service.calls().size(), 4u);
    service.letGo("sda1 Unmount");
    EXPECT_TRUE(comeTo([&] { return ended == Texts{"done", "done"}; }));
    EXPECT_EQ(service.calls(4), (Texts{"stick Eject", "stick PowerOff"}));
}

// Until the main context has to wake by itself; below 0 where nothing makes it.
int millisecondsToWake() {
    gint priority = 0;
    gint timeout = 0;
    g_main_context_prepare(g_main_context_default(), &priority);
    g_main_context_query(g_main_context_default(), priority, &timeout, nullptr, 0);
    return timeout;
}

TEST_F(VolumeEjectionsTest, ASlowOneIsWaitedForAndASecondCallJoinsIt) {
    StorageService service(bus);
    service.objects = stick();
    service.held = {"UDisks2? GetManagedObjects", "sda1 Unmount"};
    service.failing = {"sda1 Unmount"};
    eject("/media/ONE");
    EXPECT_TRUE(comeTo([&] { return service.calls().size() == 1; }));
    EXPECT_GT(millisecondsToWake(), 0) << "the objects have a limit";
    service.letGo("UDisks2? GetManagedObjects");
    EXPECT_TRUE(comeTo([&] { return service.calls().size() == 2; }));
    EXPECT_LT(millisecondsToWake(), 0) << "a user who is asked for a password has none";
    eject("/media/ONE");
    EXPECT_EQ(ended, Texts());
    service.letGo("sda1 Unmount");
    EXPECT_TRUE(comeTo([&] { return ended.size() == 2; }));
    EXPECT_EQ(ended, (Texts{"No", "No"}));
    EXPECT_EQ(service.calls().size(), 2u);

    service.failing.clear();
    EXPECT_EQ(ejected("/media/ONE"), "done") << "the next one is another";
}

TEST_F(VolumeEjectionsTest, FailsWhereNobodyCanDoIt) {
    EXPECT_NE(ejected("/media/ONE"), "done") << "no service";
    {
        StorageService service(bus);
        EXPECT_EQ(ejected("/mnt/nas"), "No device of this machine is mounted there");
        EXPECT_EQ(ejected("/media/THREE"), "No device of this machine is mounted there");
        EXPECT_EQ(service.calls(), Texts());
        EXPECT_EQ(ejected("/media/ONE"), "The storage service does not know the volume");

        service.objects = stick();
        service.held = {"sda1 Unmount"};
        eject("/media/ONE");
        EXPECT_TRUE(comeTo([&] { return service.calls().size() == 3; }));
        ended.clear();
    }
    EXPECT_TRUE(comeTo([&] { return ended.size() == 1 && ended != Texts{"done"}; })) << "it goes away";
    bus.kill();
    EXPECT_NE(ejected("/media/ONE"), "done") << "no bus";
}

}  // namespace
}  // namespace norvane
