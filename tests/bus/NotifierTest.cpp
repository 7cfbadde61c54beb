#include <unistd.h>
#include <memory>
#include <string>
#include <vector>

#include "BusTest.h"
#include "HandDrivenQueue.h"
#include "platform/linux/BusName.h"
#include "platform/linux/CairoHandles.h"
#include "platform/linux/NotifierItem.h"
#include "platform/linux/NotifierMenu.h"
#include "platform/linux/NotifierWatch.h"
#include "PlayedService.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using Texts = std::vector<std::string>;
using WatcherState = NotifierWatch::State;

constexpr const char* kWatcher = "org.kde.StatusNotifierWatcher";
constexpr const char* kWatcherPath = "/StatusNotifierWatcher";
constexpr const char* kItem = "org.kde.StatusNotifierItem";
constexpr const char* kItemPath = "/StatusNotifierItem";

// What hosts and items register at. Its answer is in the text form of GVariant.
class Watcher {
 public:
    explicit Watcher(const PrivateBus& bus, const std::string& host = "true", bool isSilent = false)
        : hasHost(host), service(bus, kWatcher, [this, isSilent](const auto& call) -> PlayedService::Answer {
              if (isSilent) return {.isLater = true};
              if (call.method == "Get") return {"(<" + hasHost + ">,)"};
              return {.error = refuses ? "org.norvane.No" : ""};
          }) {}

    void emit(const char* signal) const { service.emit(kWatcherPath, kWatcher, signal, "()"); }

    std::string hasHost;
    bool refuses = false;
    PlayedService service;
};

class NotifierWatchTest : public BusTest {
 protected:
    bool comesToBe(WatcherState state) {
        return runUntil([&] { return watch.state() == state; });
    }

    BusConnection connection{queue, bus.address(), kAtOnce};
    NotifierWatch watch{connection, 200ms};
};

TEST_F(NotifierWatchTest, KnowsSoonWhetherThereIsAHost) {
    struct Case {
        const char* hasHost;  // "" for no watcher
        bool isSilent;
        WatcherState end;
    };
    for (const Case& each :
         {Case{"", false, WatcherState::absent}, Case{"true", false, WatcherState::present},
          Case{"false", false, WatcherState::absent}, Case{"'yes'", false, WatcherState::absent},
          Case{"<true>", false, WatcherState::absent}, Case{"true", true, WatcherState::absent}}) {
        std::unique_ptr<Watcher> watcher;
        if (*each.hasHost != '\0') watcher = std::make_unique<Watcher>(bus, each.hasHost, each.isSilent);
        BusConnection fresh(queue, bus.address(), kAtOnce);
        const NotifierWatch other(fresh, 100ms);
        EXPECT_EQ(other.state(), WatcherState::unknown);
        EXPECT_TRUE(runUntil([&] { return other.state() != WatcherState::unknown; }));
        EXPECT_EQ(other.state(), each.end) << each.hasHost << each.isSilent;
    }
}

TEST_F(NotifierWatchTest, FollowsHostsWatchersAndTheBus) {
    auto watcher = std::make_unique<Watcher>(bus, "false");
    ASSERT_TRUE(comesToBe(WatcherState::absent));
    watcher->emit("StatusNotifierHostRegistered");
    EXPECT_TRUE(comesToBe(WatcherState::present));
    watcher->emit("StatusNotifierHostUnregistered");
    EXPECT_TRUE(comesToBe(WatcherState::absent));
    const auto& service = watcher->service;
    service.emitChange(kWatcherPath, kWatcher, "{'IsStatusNotifierHostRegistered': <true>}");
    EXPECT_TRUE(comesToBe(WatcherState::present));
    service.emitChange(kWatcherPath, kWatcher, "@a{sv} {}", "['IsStatusNotifierHostRegistered']");
    EXPECT_TRUE(comesToBe(WatcherState::absent));
    watcher->hasHost = "true";
    service.emitChange(kWatcherPath, kWatcher, "1", "2");
    watcher->emit("StatusNotifierHostUnregistered");
    EXPECT_TRUE(comesToBe(WatcherState::present)) << "there was another host";

    // The next one is in the queue for the name: it takes over at once.
    auto next = std::make_unique<Watcher>(bus);
    bool wasAway = false;
    const unsigned before = watch.generation();
    auto observing = watch.onDidChange([&] { wasAway = wasAway || watch.state() != WatcherState::present; });
    watcher.reset();
    EXPECT_TRUE(runUntil([&] { return watch.generation() != before; }));
    EXPECT_FALSE(wasAway);
    observing.cancel();
    next.reset();
    EXPECT_TRUE(comesToBe(WatcherState::absent));
    next = std::make_unique<Watcher>(bus);
    EXPECT_TRUE(comesToBe(WatcherState::present));
    bus.kill();
    EXPECT_TRUE(comesToBe(WatcherState::absent));
    bus.start();
    next = std::make_unique<Watcher>(bus);
    EXPECT_TRUE(comesToBe(WatcherState::present));
}

// Two pixels in a row, premultiplied as 0xAARRGGBB.
std::vector<NotifierImage> pixels(std::uint32_t first, std::uint32_t second = 0) {
    const CairoSurface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 2, 1));
    auto* const data = reinterpret_cast<std::uint32_t*>(cairo_image_surface_get_data(surface.get()));
    data[0] = first;
    data[1] = second;
    cairo_surface_mark_dirty(surface.get());
    return {NotifierImage::of(surface.get())};
}

class NotifierItemTest : public BusTest {
 protected:
    // Somebody's panel, which does not wait for answers. What it is answered, or "error".
    std::string asked(const std::string& name, const char* path, const char* interface, const char* method,
                      const std::string& arguments) {
        std::string answered;
        const auto call = panel.call({.name = name.c_str(),
                                      .path = path,
                                      .interface = interface,
                                      .method = method,
                                      .parameters = PlayedService::parsed(arguments)},
                                     [&](GVariant* answer, const GError*) {
                                         answered = answer ? PlayedService::printed(answer) : "error";
                                     });
        EXPECT_TRUE(runUntil([&] {
            time.advance(0ns);
            return !answered.empty();
        }));
        return answered;
    }
    std::string property(const std::string& name) {
        return asked(kName, kItemPath, "org.freedesktop.DBus.Properties", "Get",
                     std::string("('") + kItem + "', '" + name + "')");
    }
    std::unique_ptr<NotifierItem> makeItem() {
        NotifierItem::Handlers handlers;
        handlers.paint = [this] {
            ++paintings;
            return picture;
        };
        handlers.activated = [this](int x, int y) {
            clicks.emplace_back(x, y);
            clicked();
        };
        handlers.registered = [this] { ++registered; };
        handlers.refused = [this] { ++refused; };
        return std::make_unique<NotifierItem>(connection, time, time, 7, handlers, 200ms);
    }
    static bool comesToBeRegistered(const NotifierItem& item, bool isRegistered = true) {
        return runUntil([&] { return item.isRegistered() == isRegistered; });
    }
    bool comesToBeRefused(int times) {
        return runUntil([&] { return refused == times; });
    }
    Cancellation counting(const char* signal, int& count) {
        return panel.onSignal({.sender = nullptr, .path = kItemPath, .interface = kItem, .member = signal},
                              [&count](GVariant*) { ++count; });
    }

    const std::string kName = "org.kde.StatusNotifierItem-" + std::to_string(getpid()) + "-7";
    HandDrivenQueue time;
    BusConnection connection{queue, bus.address(), kAtOnce};
    BusConnection panel{queue, bus.address(), kAtOnce};
    std::vector<NotifierImage> picture = pixels(0xFF000000);
    int paintings = 0;
    std::vector<std::pair<int, int>> clicks;
    std::function<void()> clicked = [] {};
    int registered = 0;
    int refused = 0;
};

TEST_F(NotifierItemTest, RegistersAtEachWatcherThatComes) {
    auto item = makeItem();
    ASSERT_TRUE(comesToBeRefused(1)) << "there is no watcher";
    for (const int round : {1, 2}) {
        {
            const Watcher watcher(bus);
            EXPECT_TRUE(comesToBeRegistered(*item));
            EXPECT_EQ(watcher.service.argumentsOf("RegisterStatusNotifierItem"), Texts{"('" + kName + "',)"});
            EXPECT_EQ(registered, round);
        }
        EXPECT_TRUE(comesToBeRegistered(*item, false));
    }
    {
        const Watcher watcher(bus);
        ASSERT_TRUE(comesToBeRegistered(*item));
        const Watcher next(bus);
        bus.kill();
        EXPECT_TRUE(comesToBeRegistered(*item, false));
    }
    bus.start();
    const Watcher watcher(bus);
    EXPECT_TRUE(comesToBeRegistered(*item));
    EXPECT_EQ(refused, 1) << "watchers that go away refuse nothing";
    item.reset();
    EXPECT_TRUE(BusPeer(bus.address()).comesToHaveOwner(kName.c_str(), false));
}

TEST_F(NotifierItemTest, TellsWhenItIsRefused) {
    {
        Watcher watcher(bus);
        watcher.refuses = true;
        const auto item = makeItem();
        EXPECT_TRUE(comesToBeRefused(1));
        EXPECT_FALSE(item->isRegistered());
    }
    {
        const Watcher silent(bus, "true", true);
        const auto item = makeItem();
        EXPECT_TRUE(comesToBeRefused(2));
    }
    const auto item = makeItem();
    const Watcher watcher(bus);
    ASSERT_TRUE(comesToBeRegistered(*item));
    BusConnection other(queue, bus.address(), kAtOnce);
    bool isTold = false;
    const BusName taken(other, kName, [&](bool isOwned) {
        EXPECT_FALSE(isOwned);
        isTold = true;
    });
    EXPECT_TRUE(runUntil([&] { return isTold; }));
    EXPECT_TRUE(BusPeer(bus.address()).hasOwner(kName.c_str()));
}

TEST_F(NotifierItemTest, ShowsItsPictureAndItsTexts) {
    const Watcher watcher(bus);
    const auto item = makeItem();
    // Opaque, and half of an orange, in the order alpha, red, green, blue.
    picture = pixels(0xFF112233, 0x80804001);
    item->setToolTip("1 < 2 & \xFF");
    ASSERT_TRUE(comesToBeRegistered(*item));
    EXPECT_EQ(property("IconPixmap"), "(<[(2, 1, [byte 0xff, 0x11, 0x22, 0x33, 0x80, 0xff, 0x80, 0x02])]>,)");
    EXPECT_EQ(property("ToolTip"), "(<('', @a(iiay) [], 'Norvane', '1 &lt; 2 &amp; \uFFFD')>,)");
    for (const auto& [name, value] : {std::pair{"Id", "'norvane'"},
                                      {"Status", "'Active'"},
                                      {"ItemIsMenu", "false"},
                                      {"Menu", "objectpath '/MenuBar'"},
                                      {"OverlayIconPixmap", "@a(iiay) []"},
                                      {"WindowId", "0"}})
        EXPECT_EQ(property(name), std::string("(<") + value + ">,)") << name;
    EXPECT_EQ(property("Nonsense"), "error");
    EXPECT_EQ(paintings, 1);
}

TEST_F(NotifierItemTest, TakesClicksAndNoNonsense) {
    const Watcher watcher(bus);
    auto item = makeItem();
    ASSERT_TRUE(comesToBeRegistered(*item));
    const auto answer = [&](const char* method, const char* arguments) {
        return asked(kName, kItemPath, kItem, method, arguments);
    };
    for (const char* const nonsense : {"('a', 'b')", "(1,)", "(uint32 1, uint32 2)", "([1, 2],)"})
        EXPECT_EQ(answer("Activate", nonsense), "error");
    EXPECT_EQ(answer("ContextMenu", "(1, 2)"), "()");
    EXPECT_EQ(answer("Scroll", "(120, 'vertical')"), "()");
    EXPECT_EQ(answer("Explode", "(1, 2)"), "error");
    EXPECT_TRUE(clicks.empty());
    EXPECT_EQ(answer("Activate", "(1900, 12)"), "()");
    EXPECT_EQ(answer("SecondaryActivate", "(-2147483648, 2147483647)"), "()");
    EXPECT_EQ(clicks, (std::vector<std::pair<int, int>>{{1900, 12}, {-2147483647 - 1, 2147483647}}));
    clicked = [&] { item.reset(); };
    EXPECT_EQ(answer("Activate", "(1, 2)"), "()");
    EXPECT_EQ(answer("Activate", "(1, 2)"), "error") << "it is gone";
}

TEST_F(NotifierItemTest, TellsOfChangesInMeasure) {
    const Watcher watcher(bus);
    const auto item = makeItem();
    ASSERT_TRUE(comesToBeRegistered(*item));
    int icons = 0;
    int toolTips = 0;
    const auto countingIcons = counting("NewIcon", icons);
    const auto countingToolTips = counting("NewToolTip", toolTips);
    const auto pass = [&](std::chrono::nanoseconds duration) {
        time.advance(duration);
        property("IconPixmap");  // what was sent before has arrived with the answer
    };
    pass(0ns);
    EXPECT_EQ(time.untilTheNext(), std::nullopt) << "nothing changes, nothing wakes";
    const auto change = [&](std::uint32_t color) {
        picture = pixels(color);
        item->pictureChanged();
    };
    change(0xFF000001);
    change(0xFF000002);
    pass(0ns);
    EXPECT_EQ(icons, 1) << "at once, after a rest";
    change(0xFF000003);
    pass(999ms);
    EXPECT_EQ(icons, 1);
    change(0xFF000004);
    pass(1ms);
    EXPECT_EQ(icons, 2);
    EXPECT_NE(property("IconPixmap").find("0x04"), std::string::npos) << "the last one";
    change(0xFF000004);
    pass(1s);
    EXPECT_EQ(icons, 2) << "it looks the same";
    EXPECT_EQ(time.untilTheNext(), std::nullopt);

    item->setToolTip("a");
    pass(0ns);
    item->setToolTip("b");
    item->setToolTip("a");
    pass(5s);
    EXPECT_EQ(toolTips, 1);
    item->setToolTip("c");
    item->setToolTip("d");
    pass(0ns);
    item->setToolTip("e");
    pass(4999ms);
    EXPECT_EQ(toolTips, 2);
    pass(1ms);
    EXPECT_EQ(toolTips, 3);
    EXPECT_EQ(time.untilTheNext(), std::nullopt);
}

class NotifierMenuTest : public NotifierItemTest {
 protected:
    NotifierMenuTest() {
        menu.setItems({{"Op_en", [this] { done += "open "; }}, {"Quit", [this] { done += "quit "; }}});
        EXPECT_TRUE(runUntil([&] { return name.isOwned(); }));
    }
    std::string answer(const char* method, const char* arguments) {
        return asked("org.norvane.Menu", "/MenuBar", "com.canonical.dbusmenu", method, arguments);
    }

    NotifierMenu menu{connection, time};
    BusName name{connection, "org.norvane.Menu", [](bool) {}};
    std::string done;
};

TEST_F(NotifierMenuTest, IsReadInPartsAndWhole) {
    const std::string first = "{'label': <'Op__en'>, 'enabled': <true>, 'visible': <true>}";
    const std::string root = "{'children-display': <'submenu'>}";
    struct Case {
        const char* method;
        const char* arguments;
        std::string answer;
    };
    for (const Case& each :
         {Case{"GetLayout", "(0, 0, @as [])", "(2, (0, " + root + ", []))"},
          Case{"GetLayout", "(0, -1, ['label'])",
               "(2, (0, {}, [<(1, {'label': <'Op__en'>}, @av [])>, "
               "<(2, {'label': <'Quit'>}, @av [])>]))"},
          Case{"GetLayout", "(1, 5, @as [])", "(2, (1, " + first + ", []))"},
          Case{"GetLayout", "(3, -1, @as [])", "error"}, Case{"GetLayout", "(-1, -1, @as [])", "error"},
          Case{"GetGroupProperties", "([1, 9, 1], @as [])", "([(1, " + first + ")],)"},
          Case{"GetGroupProperties", "(@ai [], ['label', 'x'])",
               "([(0, {}), (1, {'label': <'Op__en'>}), (2, {'label': <'Quit'>})],)"},
          Case{"GetProperty", "(2, 'label')", "(<'Quit'>,)"}, Case{"GetProperty", "(2, 'x')", "error"},
          Case{"GetProperty", "(9, 'label')", "error"}, Case{"AboutToShow", "(0,)", "(false,)"},
          Case{"AboutToShow", "(9,)", "error"}, Case{"AboutToShowGroup", "([0, 9],)", "([], [9])"},
          Case{"AboutToShowGroup", "([9],)", "error"}}) {
        EXPECT_EQ(answer(each.method, each.arguments), each.answer) << each.method << each.arguments;
    }
}

TEST_F(NotifierMenuTest, RunsWhatIsClickedOn) {
    EXPECT_EQ(answer("Event", "(1, 'hovered', <0>, uint32 0)"), "()");
    EXPECT_EQ(answer("Event", "(0, 'clicked', <0>, uint32 0)"), "()");
    EXPECT_EQ(answer("Event", "(-7, 'clicked', <0>, uint32 0)"), "error");
    EXPECT_EQ(answer("Event", "('1', 'clicked')"), "error");
    EXPECT_EQ(answer("EventGroup", "([(8, 'clicked', <0>, uint32 0)],)"), "error");
    EXPECT_EQ(done, "");
    EXPECT_EQ(answer("Event", "(2, 'clicked', <'x'>, uint32 0)"), "()");
    time.advance(0ns);
    EXPECT_EQ(done, "quit ");
    EXPECT_EQ(answer("EventGroup",
                     "([(1, 'clicked', <0>, uint32 0), (8, 'clicked', <0>, uint32 0), "
                     "(1, 'clicked', <0>, uint32 0)],)"),
              "([8],)");
    time.advance(0ns);
    EXPECT_EQ(done, "quit open ");
}

TEST_F(NotifierMenuTest, TellsOfOtherItems) {
    std::string told;
    const auto following =
        panel.onSignal({.sender = nullptr,
                        .path = "/MenuBar",
                        .interface = "com.canonical.dbusmenu",
                        .member = "LayoutUpdated"},
                       [&](GVariant* parameters) { told += PlayedService::printed(parameters); });
    answer("AboutToShow", "(0,)");
    menu.setItems({{"Op_en", nullptr}, {"Quit", nullptr}});
    menu.setItems({{"\xFF", nullptr}});
    EXPECT_EQ(answer("GetProperty", "(1, 'label')"), "(<'\uFFFD'>,)");
    EXPECT_EQ(told, "(3, 0)") << "once: the same titles are the same menu";
    EXPECT_EQ(answer("Event", "(1, 'clicked', <0>, uint32 0)"), "()") << "without an action";
}

}  // namespace
}  // namespace norvane
