#include <unistd.h>

#include "BusTest.h"
#include "HandDrivenQueue.h"
#include "platform/linux/BusName.h"
#include "platform/linux/CairoHandles.h"
#include "platform/linux/NotifierItem.h"
#include "platform/linux/NotifierMenu.h"
#include "platform/linux/NotifierWatch.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using WatcherState = NotifierWatch::State;

constexpr const char* kItem = "org.kde.StatusNotifierItem";
constexpr const char* kItemPath = "/StatusNotifierItem";
constexpr const char* kMenu = "com.canonical.dbusmenu";

const PlayedService::Answer kLater{.isLater = true};

class NotifierTest : public BusTest {
 protected:
    // What hosts and items register at, with a host.
    std::unique_ptr<PlayedService> makeWatcher(const PlayedService::Answer& registering = {}) {
        return std::make_unique<PlayedService>(bus, NotifierWatch::kWatcher, [registering](const auto& call) {
            const bool isAsked = call.method == "Get" && !registering.isLater;
            return isAsked ? PlayedService::Answer{"(<true>,)"} : registering;
        });
    }
    // Two pixels in a row, premultiplied as 0xAARRGGBB.
    static std::vector<NotifierImage> pixels(std::uint32_t first, std::uint32_t second = 0) {
        const CairoSurface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 2, 1));
        auto* const data = reinterpret_cast<std::uint32_t*>(cairo_image_surface_get_data(surface.get()));
        data[0] = first;
        data[1] = second;
        cairo_surface_mark_dirty(surface.get());
        return {NotifierImage::of(surface.get())};
    }
    void makeItem() {
        item.reset();
        NotifierItem::Handlers handlers;
        handlers.paint = [this] { return picture; };
        handlers.activated = [this](int x, int y) {
            clicks.emplace_back(x, y);
            if (x == 0) item.reset();
        };
        handlers.registered = [this] { ++registered; };
        handlers.refused = [this] { ++refused; };
        item = std::make_unique<NotifierItem>(connection, time, time, 7, handlers, 200ms);
    }
    bool comesToBeRegistered(bool isRegistered = true) {
        return runUntil([&] { return item->isRegistered() == isRegistered; });
    }
    bool comesToBeRefused(int times) {
        return runUntil([&] { return refused == times; });
    }
    // Somebody's panel, which does not wait for answers.
    std::string answer(const char* path, const char* interface, const char* method,
                       const std::string& arguments) {
        return asked(panel, {.name = kName.c_str(),
                             .path = path,
                             .interface = interface,
                             .method = method,
                             .parameters = PlayedService::parsed(arguments)});
    }
    std::string property(const std::string& name) {
        return answer(kItemPath, kPropertiesInterface, "Get",
                      std::string("('") + kItem + "', '" + name + "')");
    }
    Cancellation writing(const char* path, const char* interface, const char* signal, std::string& told) {
        return panel.onSignal({.sender = nullptr, .path = path, .interface = interface, .member = signal},
                              [&told](GVariant* values) { told += PlayedService::printed(values); });
    }

    const std::string kName = "org.kde.StatusNotifierItem-" + std::to_string(getpid()) + "-7";
    HandDrivenQueue time;
    BusConnection connection{queue, bus.address(), kAtOnce};
    BusConnection panel{queue, bus.address(), kAtOnce};
    std::vector<NotifierImage> picture = pixels(0xFF000000);
    std::unique_ptr<NotifierItem> item;
    std::vector<std::pair<int, int>> clicks;
    int registered = 0;
    int refused = 0;
};

TEST_F(NotifierTest, TheWatchKnowsSoonWhetherThereIsAHostAndHearsOfAnotherWatcherAtOnce) {
    NotifierWatch hasty(connection, 100ms);
    NotifierWatch watch(connection);
    EXPECT_EQ(hasty.state(), WatcherState::unknown);
    const auto comesTo = [](NotifierWatch& which, WatcherState state) {
        return runUntil([&] { return which.state() == state; });
    };
    EXPECT_TRUE(comesTo(hasty, WatcherState::absent)) << "no watcher";
    auto first = makeWatcher(kLater);
    EXPECT_TRUE(comesTo(hasty, WatcherState::unknown));
    EXPECT_TRUE(comesTo(hasty, WatcherState::absent)) << "it does not answer";
    first.reset();
    first = makeWatcher();
    EXPECT_TRUE(comesTo(watch, WatcherState::present));
    // The next one is in the queue for the name.
    const auto next = makeWatcher();
    const auto observing = watch.onDidChange([&] { EXPECT_EQ(watch.state(), WatcherState::present); });
    first.reset();
    EXPECT_TRUE(runUntil([&, before = watch.generation()] { return watch.generation() != before; }));
}

TEST_F(NotifierTest, TheItemRegistersAtEachWatcherThatComesAndTellsWhenItIsRefused) {
    makeItem();
    EXPECT_TRUE(comesToBeRefused(1)) << "there is no watcher";
    for (const int round : {1, 2, 3}) {
        {
            const auto watcher = makeWatcher();
            EXPECT_TRUE(comesToBeRegistered());
            EXPECT_EQ(watcher->argumentsOf("RegisterStatusNotifierItem"), std::vector{"('" + kName + "',)"});
            EXPECT_EQ(registered, round);
            if (round == 2) bus.kill();
        }
        EXPECT_TRUE(comesToBeRegistered(false));
        if (round == 2) bus.start();
    }
    EXPECT_EQ(refused, 1) << "watchers that go away refuse nothing";
    item.reset();
    EXPECT_TRUE(BusPeer(bus.address()).comesToHaveOwner(kName.c_str(), false));
    for (const auto& refusal : {kLater, PlayedService::Answer{.error = "org.norvane.No"}}) {
        refused = 0;
        const auto watcher = makeWatcher(refusal);
        makeItem();
        EXPECT_TRUE(comesToBeRefused(1));
        EXPECT_FALSE(item->isRegistered());
    }
    item.reset();
    const BusName taken(panel, kName, [](bool isOwned) { EXPECT_TRUE(isOwned); });
    EXPECT_TRUE(runUntil([&] { return taken.isOwned(); }));
    const auto watcher = makeWatcher();
    makeItem();
    EXPECT_TRUE(comesToBeRefused(2)) << "somebody has the name";
}

TEST_F(NotifierTest, TheItemShowsItsPictureAndTakesClicksAndNoNonsense) {
    const auto watcher = makeWatcher();
    // Opaque, and half of an orange, in the order alpha, red, green, blue.
    picture = pixels(0xFF112233, 0x80804001);
    makeItem();
    item->setToolTip("1 < 2 & \xFF");
    ASSERT_TRUE(comesToBeRegistered());
    for (const auto& [name, value] :
         {std::pair{"IconPixmap", "[(2, 1, [byte 0xff, 0x11, 0x22, 0x33, 0x80, 0xff, 0x80, 0x02])]"},
          {"ToolTip", "('', @a(iiay) [], 'Norvane', '1 &lt; 2 &amp; \uFFFD')"},
          {"ItemIsMenu", "false"},
          {"Menu", "objectpath '/MenuBar'"}})
        EXPECT_EQ(property(name), std::string("(<") + value + ">,)") << name;
    EXPECT_EQ(property("Nonsense"), "error");
    item->setToolTip(std::string(100'000, 'a'));
    EXPECT_LT(property("ToolTip").size(), 4100u);

    for (const auto& [method, arguments, end] :
         {std::tuple{"Activate", "('a', 'b')", "error"},
          {"Activate", "(1,)", "error"},
          {"Activate", "(uint32 1, uint32 2)", "error"},
          {"Explode", "(1, 2)", "error"},
          {"ContextMenu", "(1, 2)", "()"},
          {"Scroll", "(120, 'vertical')", "()"},
          {"Activate", "(1900, 12)", "()"},
          {"SecondaryActivate", "(-2147483648, 2147483647)", "()"},
          {"Activate", "(0, 0)", "()"},
          {"Activate", "(1, 2)", "error"}})  // it went away with the last click
        EXPECT_EQ(answer(kItemPath, kItem, method, arguments), end) << method << arguments;
    EXPECT_EQ(clicks, (std::vector<std::pair<int, int>>{{1900, 12}, {-2147483647 - 1, 2147483647}, {0, 0}}));
}

TEST_F(NotifierTest, TheItemTellsOfChangesInMeasure) {
    const auto watcher = makeWatcher();
    makeItem();
    ASSERT_TRUE(comesToBeRegistered());
    std::string told;
    const auto icons = writing(kItemPath, kItem, "NewIcon", told);
    const auto toolTips = writing(kItemPath, kItem, "NewToolTip", told);
    // What was told in that time, as one "()" each; it has arrived with the answer.
    const auto pass = [&](std::chrono::nanoseconds duration) {
        time.advance(duration);
        property("IconPixmap");
        return std::exchange(told, "");
    };
    const auto paint = [&](std::uint32_t blue) {
        picture = pixels(0xFF000000 | blue);
        item->pictureChanged();
    };
    pass(0ns);
    EXPECT_EQ(time.untilTheNext(), std::nullopt) << "nothing changes, nothing wakes";
    paint(1);
    paint(2);
    EXPECT_EQ(pass(0ns), "()") << "at once, after a rest";
    paint(3);
    EXPECT_EQ(pass(999ms), "");
    paint(4);
    EXPECT_EQ(pass(1ms), "()");
    EXPECT_NE(property("IconPixmap").find("0x04"), std::string::npos) << "the last one";
    paint(4);
    EXPECT_EQ(pass(1s), "") << "it looks the same";
    EXPECT_EQ(time.untilTheNext(), std::nullopt);

    for (const char* const text : {"a", "b", "a"})
        item->setToolTip(text);
    EXPECT_EQ(pass(0ns), "()");
    item->setToolTip("b");
    EXPECT_EQ(pass(4999ms), "");
    item->setToolTip("a");
    EXPECT_EQ(pass(1ms), "") << "it says the same";
}

TEST_F(NotifierTest, TheMenuIsReadInPartsAndWholeAndRunsWhatIsClickedOn) {
    std::string done;
    NotifierMenu menu(connection, time);
    menu.setItems({{"Op_en", [&] { done += "open "; }}, {"Quit", [&] { done += "quit "; }}});
    const BusName name(connection, kName, [](bool) {});
    ASSERT_TRUE(runUntil([&] { return name.isOwned(); }));
    const std::string first = "{'label': <'Op__en'>, 'enabled': <true>, 'visible': <true>}";
    const struct {
        const char* method;
        const char* arguments;
        std::string answer;
        const char* done = "";
    } cases[] = {
        {"GetLayout", "(0, 0, @as [])", "(2, (0, {'children-display': <'submenu'>}, []))"},
        {"GetLayout", "(0, -1, ['label'])",
         "(2, (0, {}, [<(1, {'label': <'Op__en'>}, @av [])>, <(2, {'label': <'Quit'>}, @av [])>]))"},
        {"GetLayout", "(1, 5, @as [])", "(2, (1, " + first + ", []))"},
        {"GetLayout", "(3, -1, @as [])", "error"},
        {"GetGroupProperties", "([1, 9, 1], @as [])", "([(1, " + first + ")],)"},
        {"GetGroupProperties", "(@ai [], ['label', 'x'])",
         "([(0, {}), (1, {'label': <'Op__en'>}), (2, {'label': <'Quit'>})],)"},
        {"GetProperty", "(2, 'x')", "error"},
        {"AboutToShow", "(0,)", "(false,)"},
        {"AboutToShow", "(9,)", "error"},
        {"AboutToShowGroup", "([0, 9],)", "([], [9])"},
        {"AboutToShowGroup", "([9],)", "error"},
        {"Event", "(1, 'hovered', <0>, uint32 0)", "()"},
        {"Event", "(0, 'clicked', <0>, uint32 0)", "()"},
        {"Event", "(-7, 'clicked', <0>, uint32 0)", "error"},
        {"Event", "('1', 'clicked')", "error"},
        {"EventGroup", "([(8, 'clicked', <0>, uint32 0)],)", "error"},
        {"Event", "(2, 'clicked', <'x'>, uint32 0)", "()", "quit "},
        {"EventGroup",
         "([(1, 'clicked', <0>, uint32 0), (8, 'clicked', <0>, uint32 0), (1, 'clicked', <0>, uint32 0)],)",
         "([8],)", "open "},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(answer("/MenuBar", kMenu, each.method, each.arguments), each.answer)
            << each.method << each.arguments;
        time.advance(0ns);
        EXPECT_EQ(std::exchange(done, ""), each.done) << each.method << each.arguments;
    }

    std::string told;
    const auto following = writing("/MenuBar", kMenu, "LayoutUpdated", told);
    ASSERT_TRUE(hearsAll(panel)) << "the bus knows that it listens";
    menu.setItems({{"Op_en", nullptr}, {"Quit", nullptr}});
    menu.setItems({{"\xFF", nullptr}});
    EXPECT_EQ(answer("/MenuBar", kMenu, "GetProperty", "(1, 'label')"), "(<'\uFFFD'>,)");
    EXPECT_EQ(told, "(3, 0)") << "once: the same titles are the same menu";
    EXPECT_EQ(answer("/MenuBar", kMenu, "Event", "(1, 'clicked', <0>, uint32 0)"), "()")
        << "without an action";
    time.advance(0ns);
}

}  // namespace
}  // namespace norvane
