#pragma once

#include <xcb/xcb.h>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/PixelRect.h"
#include "platform/linux/X11Reply.h"

namespace norvane {

// Another program on the same screen: it sees what everybody can see, and has windows of its own. What it
// does to the screen has been done when a call returns.
class Bystander {
 public:
    using Numbers = std::vector<std::uint32_t>;

    explicit Bystander(const std::string& display);
    ~Bystander() { xcb_disconnect(connection_); }
    Bystander(const Bystander&) = delete;
    Bystander& operator=(const Bystander&) = delete;

    xcb_connection_t* get() const { return connection_; }
    xcb_window_t root() const { return root_; }
    xcb_atom_t atom(const std::string& name) const;
    // Null where the request failed.
    template <typename Reply, typename Cookie>
    X11Reply<Reply> answer(Reply* (*take)(xcb_connection_t*, Cookie, xcb_generic_error_t**),
                           Cookie cookie) const {
        return X11Reply<Reply>(take(connection_, cookie, nullptr));
    }
    void await(xcb_void_cookie_t) const { focused(); }

    // What the screen, or one window, shows: 0xAARRGGBB, the screen without an opacity.
    std::uint32_t pixelAt(int x, int y) const { return pixels({x, y, 1, 1}).at(0); }
    Numbers pixels(const PixelRect& part) const { return pixels(root_, part, 0xFFFFFF); }
    Numbers pixels(xcb_window_t window, const PixelRect& part, std::uint32_t mask = 0xFFFFFFFF) const;

    // The windows on the screen, the front one last.
    std::vector<xcb_window_t> windows() const;
    std::vector<xcb_window_t> childrenOf(xcb_window_t window) const;
    // The front one with that place, if any.
    std::optional<xcb_window_t> windowAt(const PixelRect& frame) const;
    // Empty where it is gone.
    PixelRect frameOf(xcb_window_t window) const {
        const auto reply = answer(xcb_get_geometry_reply, xcb_get_geometry(connection_, window));
        return reply ? PixelRect{reply->x, reply->y, reply->width, reply->height} : PixelRect{};
    }
    bool isShown(xcb_window_t window) const {
        const auto cookie = xcb_get_window_attributes(connection_, window);
        const auto reply = answer(xcb_get_window_attributes_reply, cookie);
        return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
    }
    Numbers numbers(xcb_window_t window, const std::string& property) const;
    std::string text(xcb_window_t window, const std::string& property) const;
    xcb_window_t focused() const {
        const auto reply = answer(xcb_get_input_focus_reply, xcb_get_input_focus(connection_));
        return reply ? reply->focus : xcb_window_t{XCB_NONE};
    }

    // In units of 8 or 32 bits.
    void set(xcb_window_t window, const std::string& property, xcb_atom_t type, std::uint8_t bits,
             const void* data, std::size_t units) const;
    void setNumbers(xcb_window_t window, const std::string& property, const Numbers& values) const {
        set(window, property, XCB_ATOM_CARDINAL, 32, values.data(), values.size());
    }
    // What xrdb does.
    void setResources(const std::string& text) const {
        set(root_, "RESOURCE_MANAGER", XCB_ATOM_STRING, 8, text.data(), text.size());
    }
    // A window past any window manager, red, that counts the presses on it.
    xcb_window_t open(const PixelRect& frame);
    int presses();
    // Anybody's window.
    void map(xcb_window_t window) const { await(xcb_map_window(connection_, window)); }
    void unmap(xcb_window_t window) const { await(xcb_unmap_window(connection_, window)); }
    void close(xcb_window_t window) const { await(xcb_destroy_window(connection_, window)); }
    void raise(xcb_window_t window) const {
        await(xcb_configure_window(connection_, window, XCB_CONFIG_WINDOW_STACK_MODE, kAbove));
    }
    void move(xcb_window_t window, const PixelRect& to) const {
        const int values[] = {to.x, to.y, to.width, to.height};
        await(xcb_configure_window(connection_, window, kAllOfTheFrame, values));
    }
    void focus(xcb_window_t window) const {
        await(xcb_set_input_focus(connection_, XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME));
    }
    // XCB_NONE gives it up.
    void own(const std::string& selection, xcb_window_t window) const {
        await(xcb_set_selection_owner(connection_, window, atom(selection), XCB_CURRENT_TIME));
    }
    // Says that it does, as a manager that begins: also where it is not true.
    void announce(const std::string& selection, xcb_window_t window) const {
        send(root_, "MANAGER", {XCB_CURRENT_TIME, atom(selection), window});
    }
    // A message, of up to five words.
    void send(xcb_window_t to, const std::string& type, const Numbers& words) const;

 private:
    static constexpr std::uint32_t kAbove[] = {XCB_STACK_MODE_ABOVE};
    static constexpr std::uint16_t kAllOfTheFrame =
        XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT;

    X11Reply<xcb_get_property_reply_t> property(xcb_window_t window, const std::string& name,
                                                int format) const;

    xcb_connection_t* connection_;
    xcb_window_t root_ = XCB_NONE;
    int presses_ = 0;
};

}  // namespace norvane
