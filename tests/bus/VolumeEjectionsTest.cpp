#include "platform/linux/VolumeEjections.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>

#include "BusPeer.h"
#include "linux/HeldQueue.h"
#include "linux/RunLoop.h"
#include "linux/TemporaryFolder.h"
#include "platform/linux/GObjectPointer.h"
#include "platform/linux/LinuxMainQueue.h"
#include "PrivateBus.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using Texts = std::vector<std::string>;

constexpr BusConnection::Pace kAtOnce{.firstAttempt = 0ns, .firstPause = 5ms, .longestPause = 20ms};
constexpr const char* kName = "org.freedesktop.UDisks2";
const std::string kErrors = "org.freedesktop.UDisks2.Error.";

// A storage service of the test's own, which answers on the main thread, at once or when the test says so.
// It notes each call as "sda1 Unmount", with a "?" where the user must not be asked for anything.
class StorageService {
 public:
    StorageService(const PrivateBus& bus, MainQueue& queue) : peer_(bus.address()), queue_(queue) {
        g_dbus_connection_add_filter(peer_.connection(), received, this, nullptr);
        peer_.requestName(kName);
    }

    // In the text form of GVariant.
    std::string objects = "{}";
    Texts calls;
    // By the call.
    std::map<std::string, std::string> errors;
    std::set<std::string> held;

    void letGo(const std::string& call) {
        held.erase(call);
        for (const auto& message : std::exchange(waiting_, {}))
            take(message);
    }

    // Called before a method is answered.
    std::function<void(const std::string& call)> doing = [](const std::string&) {};

 private:
    using Message = std::shared_ptr<GDBusMessage>;

    // On a thread of GLib's.
    static GDBusMessage* received(GDBusConnection*, GDBusMessage* message, gboolean isIncoming,
                                  gpointer self) {
        if (isIncoming == FALSE ||
            g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_METHOD_CALL)
            return message;
        auto* const service = static_cast<StorageService*>(self);
        service->queue_.async([service, call = Message(message, g_object_unref)] {
            service->calls.push_back(service->nameOf(*call));
            service->take(call);
        });
        return nullptr;
    }
    static std::string nameOf(GDBusMessage& call) {
        const std::string path = g_dbus_message_get_path(&call);
        const bool mayAsk =
            (g_dbus_message_get_flags(&call) & G_DBUS_MESSAGE_FLAGS_ALLOW_INTERACTIVE_AUTHORIZATION) != 0;
        return path.substr(path.rfind('/') + 1) + (mayAsk ? " " : "? ") + g_dbus_message_get_member(&call);
    }
    void take(const Message& call) {
        const std::string name = nameOf(*call);
        if (held.contains(name)) {
            waiting_.push_back(call);
            return;
        }
        doing(name);
        const auto error = errors.find(name);
        const GObjectPointer<GDBusMessage> answer(
            error != errors.end()
                ? g_dbus_message_new_method_error_literal(call.get(), error->second.c_str(), "No")
                : g_dbus_message_new_method_reply(call.get()));
        if (error == errors.end() && name == "UDisks2? GetManagedObjects") {
            GVariant* const tree =
                g_variant_parse(G_VARIANT_TYPE("a{oa{sa{sv}}}"), objects.c_str(), nullptr, nullptr, nullptr);
            ASSERT_NE(tree, nullptr);
            g_dbus_message_set_body(answer.get(), g_variant_new_tuple(&tree, 1));
        }
        EXPECT_TRUE(g_dbus_connection_send_message(peer_.connection(), answer.get(),
                                                   G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr));
    }

    BusPeer peer_;
    MainQueue& queue_;
    std::vector<Message> waiting_;
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

class VolumeEjectionsTest : public testing::Test {
 protected:
    VolumeEjectionsTest() { mount({{"/media/ONE", "8:1"}, {"/media/TWO", "8:2"}}); }

    void mount(const std::map<std::string, std::string>& devices) {
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
    Texts ejected(const std::string& path) {
        ended.clear();
        eject(path);
        EXPECT_EQ(ended, Texts()) << "not from within the call";
        EXPECT_TRUE(comeTo([&] { return !ended.empty(); }));
        return ended;
    }
    static Texts without(std::size_t first, Texts calls) {
        calls.erase(calls.begin(),
                    calls.begin() + static_cast<std::ptrdiff_t>(std::min(first, calls.size())));
        return calls;
    }

    PrivateBus bus;
    LinuxMainQueue queue;
    HeldQueue background;
    TemporaryFolder machine;
    BusConnection connection{queue, bus.address(), kAtOnce};
    VolumeEjections ejections{connection, queue, background, machine.root()};
    // What each call came to.
    Texts ended;
};

TEST_F(VolumeEjectionsTest, UnmountsAndThenTriesWhatItCan) {
    struct Case {
        bool isEncrypted;
        std::map<std::string, std::string> mountedAfter;
        Texts failing;
        Texts calls;
        std::string end;
    };
    const std::map<std::string, std::string> none;
    const std::vector<Case> cases = {
        {false, none, {}, {"sda1 Unmount", "stick Eject", "stick PowerOff"}, "done"},
        {false,
         none,
         {"stick Eject", "stick PowerOff"},
         {"sda1 Unmount", "stick Eject", "stick PowerOff"},
         "done"},
        {false, {{"/media/TWO", "8:2"}}, {}, {"sda1 Unmount"}, "done"},
        {true, none, {"sda1 Lock"}, {"dm_2d0 Unmount", "sda1 Lock", "stick Eject", "stick PowerOff"}, "done"},
        {false, none, {"sda1 Unmount"}, {"sda1 Unmount"}, "No"},
        {false, none, {"UDisks2? GetManagedObjects"}, {}, "No"},
    };
    for (const Case& each : cases) {
        StorageService service(bus, queue);
        service.objects = stick(each.isEncrypted);
        mount({{"/media/ONE", each.isEncrypted ? "253:0" : "8:1"}, {"/media/TWO", "8:2"}});
        for (const std::string& call : each.failing)
            service.errors[call] = kErrors + "DeviceBusy";
        service.doing = [&](const std::string& call) {
            if (call.ends_with("Unmount")) mount(each.mountedAfter);
        };
        EXPECT_EQ(ejected("/media/ONE"), Texts{each.end});
        EXPECT_EQ(without(1, service.calls), each.calls) << "after the question for the objects";
    }
}

TEST_F(VolumeEjectionsTest, OfTwoVolumesOfOneDeviceTheLaterOneEjects) {
    StorageService service(bus, queue);
    service.objects = stick();
    service.held = {"sda1 Unmount", "sda2 Unmount"};
    std::map<std::string, std::string> mounted{{"/media/ONE", "8:1"}, {"/media/TWO", "8:2"}};
    service.doing = [&](const std::string& call) {
        mounted.erase(call == "sda1 Unmount" ? "/media/ONE" : call == "sda2 Unmount" ? "/media/TWO" : "");
        mount(mounted);
    };
    eject("/media/ONE");
    eject("/media/TWO");
    EXPECT_TRUE(comeTo([&] { return service.calls.size() == 4; })) << "side by side";
    service.letGo("sda2 Unmount");
    EXPECT_TRUE(comeTo([&] { return ended == Texts{"done"}; }));
    EXPECT_EQ(service.calls.size(), 4u);
    service.letGo("sda1 Unmount");
    EXPECT_TRUE(comeTo([&] { return ended == Texts{"done", "done"}; }));
    EXPECT_EQ(without(4, service.calls), (Texts{"stick Eject", "stick PowerOff"}));
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
    StorageService service(bus, queue);
    service.objects = stick();
    service.held = {"UDisks2? GetManagedObjects", "sda1 Unmount"};
    service.errors["sda1 Unmount"] = kErrors + "NotAuthorizedDismissed";
    eject("/media/ONE");
    EXPECT_TRUE(comeTo([&] { return service.calls.size() == 1; }));
    EXPECT_GT(millisecondsToWake(), 0) << "the objects have a limit";
    service.letGo("UDisks2? GetManagedObjects");
    EXPECT_TRUE(comeTo([&] { return service.calls.size() == 2; }));
    EXPECT_LT(millisecondsToWake(), 0) << "a user who is asked for a password has none";
    eject("/media/ONE");
    EXPECT_EQ(ended, Texts());
    service.letGo("sda1 Unmount");
    EXPECT_TRUE(comeTo([&] { return ended.size() == 2; }));
    EXPECT_EQ(ended, (Texts{"No", "No"}));
    EXPECT_EQ(service.calls.size(), 2u);

    service.errors.clear();
    EXPECT_EQ(ejected("/media/ONE"), Texts{"done"}) << "the next one is another";
}

TEST_F(VolumeEjectionsTest, FailsWhereNobodyCanDoIt) {
    EXPECT_NE(ejected("/media/ONE"), Texts{"done"}) << "no service";
    {
        StorageService service(bus, queue);
        EXPECT_EQ(ejected("/mnt/nas"), Texts{"No device of this machine is mounted there"});
        EXPECT_EQ(ejected("/media/THREE"), Texts{"No device of this machine is mounted there"});
        EXPECT_EQ(service.calls, Texts());
        EXPECT_EQ(ejected("/media/ONE"), Texts{"The storage service does not know the volume"});

        service.objects = stick();
        service.held = {"sda1 Unmount"};
        eject("/media/ONE");
        EXPECT_TRUE(comeTo([&] { return service.calls.size() == 3; }));
        ended.clear();
    }
    EXPECT_TRUE(comeTo([&] { return ended.size() == 1 && ended != Texts{"done"}; })) << "it goes away";
    bus.kill();
    EXPECT_NE(ejected("/media/ONE"), Texts{"done"}) << "no bus";
}

}  // namespace
}  // namespace norvane
