#include "DisplayWatcher.h"

#include <poll.h>
#include <xcb/xinput.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>
#include <thread>
#include <unordered_set>
#include <utility>
#include <vector>

namespace norvane {
namespace {

using namespace std::chrono_literals;

// A window's own background and edges have fewer colours; antialiased text has many.
constexpr std::size_t kColorsOfAPicture = 8;

// Between two looks. Looking all the time would keep the server from painting.
constexpr auto kPause = 200us;

// Of a dashboard, in pixels at scale 1: where its title stands, without the panel's edge.
constexpr std::int16_t kTitleInset = 8;
constexpr std::uint16_t kTitleWidth = 100;
constexpr std::uint16_t kTitleHeight = 30;

}  // namespace

std::unique_ptr<DisplayWatcher> DisplayWatcher::open(const std::string& display) {
    Connection connection(xcb_connect(display.c_str(), nullptr));
    if (xcb_connection_has_error(connection.get()) != 0) return nullptr;
    xcb_connection_t* const server = connection.get();
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(server)).data->root;
    const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(server, root, XCB_CW_EVENT_MASK, &events);

    // Raw events come whoever has grabbed the pointer; since 2.2.
    const auto* const input = xcb_get_extension_data(server, &xcb_input_id);
    if (input == nullptr || input->present == 0) return nullptr;
    const X11Reply<xcb_input_xi_query_version_reply_t> version(
        xcb_input_xi_query_version_reply(server, xcb_input_xi_query_version(server, 2, 2), nullptr));
    if (!version) return nullptr;
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } presses{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS};
    xcb_input_xi_select_events(server, root, 1, &presses.head);
    xcb_flush(server);
    return std::unique_ptr<DisplayWatcher>(
        new DisplayWatcher(std::move(connection), root, input->major_opcode));
}

X11Reply<xcb_generic_event_t> DisplayWatcher::nextEvent(Clock::time_point deadline) {
    for (;;) {
        X11Reply<xcb_generic_event_t> event(xcb_poll_for_event(connection_.get()));
        if (!event) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
            if (left <= 0ms || xcb_connection_has_error(connection_.get()) != 0) return nullptr;
            pollfd waited{xcb_get_file_descriptor(connection_.get()), POLLIN, 0};
            ::poll(&waited, 1, static_cast<int>(left.count()));
            continue;
        }
        if ((event->response_type & 0x7f) != XCB_GE_GENERIC) return event;
        xcb_ge_generic_event_t general;
        std::memcpy(&general, event.get(), sizeof general);
        if (general.extension == inputOpcode_ && general.event_type == XCB_INPUT_RAW_BUTTON_PRESS)
            lastPress_ = Clock::now();
    }
}

std::optional<DisplayWatcher::Mapped> DisplayWatcher::nextMapped(const std::string& windowClass,
                                                                 std::chrono::milliseconds patience,
                                                                 const std::function<bool()>& isHopeless) {
    const auto deadline = Clock::now() + patience;
    while (Clock::now() < deadline && !isHopeless()) {
        const auto event = nextEvent(std::min(deadline, Clock::now() + 100ms));
        if (!event || (event->response_type & 0x7f) != XCB_MAP_NOTIFY) continue;
        const auto mappedAt = Clock::now();
        xcb_map_notify_event_t mapped;
        std::memcpy(&mapped, event.get(), sizeof mapped);
        if (hasClass(mapped.window, windowClass)) return Mapped{mapped.window, mappedAt};
    }
    return std::nullopt;
}

std::optional<DisplayWatcher::Shown> DisplayWatcher::nextShown(const std::string& windowClass,
                                                               std::chrono::milliseconds patience,
                                                               const std::function<bool()>& isHopeless) {
    const auto deadline = Clock::now() + patience;
    const auto mapped = nextMapped(windowClass, patience, isHopeless);
    while (mapped && Clock::now() < deadline && !isHopeless()) {
        if (isPainted(mapped->window)) {
            const auto paintedAt = Clock::now();
            const X11Reply<xcb_get_geometry_reply_t> place(xcb_get_geometry_reply(
                connection_.get(), xcb_get_geometry(connection_.get(), mapped->window), nullptr));
            if (!place) return std::nullopt;
            return Shown{mapped->window, mapped->at, paintedAt, place->x + place->width / 2,
                         place->y + place->height / 2};
        }
        std::this_thread::sleep_for(kPause);
    }
    return std::nullopt;
}

std::optional<DisplayWatcher::Clock::time_point> DisplayWatcher::halfPainted(
    xcb_window_t window, std::chrono::milliseconds duration) {
    std::vector<std::pair<Clock::time_point, int>> seen;
    for (const auto end = Clock::now() + duration; Clock::now() < end;) {
        const int contrast = contrastOfTitle(window);
        seen.emplace_back(Clock::now(), contrast);
        std::this_thread::sleep_for(kPause);
    }
    if (seen.empty() || seen.back().second <= 0) return std::nullopt;
    const auto half = std::find_if(seen.begin(), seen.end(), [most = seen.back().second](const auto& look) {
        return 2 * look.second >= most;
    });
    return half->first;
}

bool DisplayWatcher::waitUntilHidden(xcb_window_t window, std::chrono::milliseconds patience) {
    const auto deadline = Clock::now() + patience;
    while (const auto event = nextEvent(deadline)) {
        const int type = event->response_type & 0x7f;
        // The window stands at the same place in both.
        xcb_unmap_notify_event_t hidden;
        std::memcpy(&hidden, event.get(), sizeof hidden);
        if ((type == XCB_UNMAP_NOTIFY || type == XCB_DESTROY_NOTIFY) && hidden.window == window) return true;
    }
    return false;
}

void DisplayWatcher::skipPast() {
    // What the server did before it answers has been told by then.
    const X11Reply<xcb_get_input_focus_reply_t> answer(
        xcb_get_input_focus_reply(connection_.get(), xcb_get_input_focus(connection_.get()), nullptr));
    while (nextEvent(Clock::now()))
        continue;
}

bool DisplayWatcher::hasClass(xcb_window_t window, const std::string& windowClass) {
    constexpr std::uint32_t kLongest = 64;
    const X11Reply<xcb_get_property_reply_t> property(xcb_get_property_reply(
        connection_.get(),
        xcb_get_property(connection_.get(), 0, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 0, kLongest),
        nullptr));
    if (!property) return false;
    // Two texts, each with a NUL behind it: the instance and the class.
    std::string_view text(static_cast<const char*>(xcb_get_property_value(property.get())),
                          static_cast<std::size_t>(xcb_get_property_value_length(property.get())));
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\0'), text.size());
        if (text.substr(0, end) == windowClass) return true;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return false;
}

// Between the brightest and the darkest pixel, 0 to 255.
int DisplayWatcher::contrastOfTitle(xcb_window_t window) {
    const X11Reply<xcb_get_image_reply_t> image(
        xcb_get_image_reply(connection_.get(),
                            xcb_get_image(connection_.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, window, kTitleInset,
                                          kTitleInset, kTitleWidth, kTitleHeight, ~0U),
                            nullptr));
    if (!image) return 0;
    const std::uint8_t* const bytes = xcb_get_image_data(image.get());
    const auto length = static_cast<std::size_t>(xcb_get_image_data_length(image.get()));
    int least = 255;
    int most = 0;
    for (std::size_t at = 1; at < length; at += 4) {  // green stands second, whatever the byte order
        least = std::min<int>(least, bytes[at]);
        most = std::max<int>(most, bytes[at]);
    }
    return std::max(0, most - least);
}

bool DisplayWatcher::isPainted(xcb_window_t window) {
    xcb_connection_t* const server = connection_.get();
    const X11Reply<xcb_get_geometry_reply_t> place(
        xcb_get_geometry_reply(server, xcb_get_geometry(server, window), nullptr));
    if (!place) return false;
    const X11Reply<xcb_get_image_reply_t> image(xcb_get_image_reply(
        server,
        xcb_get_image(server, XCB_IMAGE_FORMAT_Z_PIXMAP, window, 0, 0, place->width, place->height, ~0U),
        nullptr));
    if (!image) return false;
    const std::uint8_t* const bytes = xcb_get_image_data(image.get());
    const auto length = static_cast<std::size_t>(xcb_get_image_data_length(image.get()));
    std::unordered_set<std::uint32_t> colors;
    for (std::size_t at = 0; at + 4 <= length; at += 4) {
        std::uint32_t pixel = 0;
        std::memcpy(&pixel, bytes + at, sizeof pixel);
        colors.insert(pixel);
        if (colors.size() >= kColorsOfAPicture) return true;
    }
    return false;
}

}  // namespace norvane
