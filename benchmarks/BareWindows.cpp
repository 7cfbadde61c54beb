// The least that a program in the panel could do: a small window that stays, and on each click a larger one
// that comes or goes, each with a picture that is ready before it is asked for.

#include <xcb/xcb.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <vector>

namespace {

struct Picture {
    std::uint16_t width;
    std::uint16_t height;
    std::vector<std::uint32_t> pixels;

    Picture(std::uint16_t w, std::uint16_t h) : width(w), height(h) {
        for (std::uint32_t y = 0; y < h; ++y) {
            for (std::uint32_t x = 0; x < w; ++x)
                pixels.push_back(((x * 8 ^ y * 8) & 255U) * 0x10101U);
        }
    }
};

class Windows {
 public:
    explicit Windows(xcb_connection_t* server)
        : server_(server), screen_(xcb_setup_roots_iterator(xcb_get_setup(server)).data) {
        graphics_ = xcb_generate_id(server_);
        xcb_create_gc(server_, graphics_, screen_->root, 0, nullptr);
    }

    xcb_window_t add(const Picture& picture, std::int16_t x, std::int16_t y) {
        const std::uint32_t values[] = {1, XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_BUTTON_PRESS};
        const xcb_window_t window = xcb_generate_id(server_);
        xcb_create_window(server_, screen_->root_depth, window, screen_->root, x, y, picture.width,
                          picture.height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, screen_->root_visual,
                          XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
        constexpr std::string_view kClass{"norvane\0norvane\0", 16};
        xcb_change_property(server_, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                            kClass.size(), kClass.data());
        return window;
    }
    void show(xcb_window_t window) {
        xcb_map_window(server_, window);
        xcb_flush(server_);
    }
    void hide(xcb_window_t window) {
        xcb_unmap_window(server_, window);
        xcb_flush(server_);
    }
    // As many rows at a time as a request may have.
    void paint(xcb_window_t window, const Picture& picture) {
        const std::uint32_t row = picture.width * 4U;
        const std::uint32_t most = (xcb_get_maximum_request_length(server_) * 4U - 64) / row;
        for (std::uint32_t y = 0; y < picture.height; y += most) {
            const std::uint32_t rows = std::min(most, picture.height - y);
            xcb_put_image(server_, XCB_IMAGE_FORMAT_Z_PIXMAP, window, graphics_, picture.width,
                          static_cast<std::uint16_t>(rows), 0, static_cast<std::int16_t>(y), 0,
                          screen_->root_depth, rows * row,
                          reinterpret_cast<const std::uint8_t*>(&picture.pixels[y * picture.width]));
        }
        xcb_flush(server_);
    }
    std::int16_t right() const { return static_cast<std::int16_t>(screen_->width_in_pixels); }

 private:
    xcb_connection_t* server_;
    xcb_screen_t* screen_;
    xcb_gcontext_t graphics_;
};

}  // namespace

int main() {
    xcb_connection_t* const server = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(server) != 0) return EXIT_FAILURE;
    Windows windows(server);
    const Picture small(54, 22);
    const Picture large(420, 600);
    const xcb_window_t strip = windows.add(small, static_cast<std::int16_t>(windows.right() - 54), 0);
    const xcb_window_t popover = windows.add(large, static_cast<std::int16_t>(windows.right() - 430), 26);
    windows.show(strip);
    bool isOpen = false;
    while (xcb_generic_event_t* const event = xcb_wait_for_event(server)) {
        const int type = event->response_type & 0x7f;
        if (type == XCB_EXPOSE) {
            xcb_expose_event_t exposed;
            std::memcpy(&exposed, event, sizeof exposed);
            windows.paint(exposed.window, exposed.window == strip ? small : large);
        } else if (type == XCB_BUTTON_PRESS) {
            isOpen = !isOpen;
            isOpen ? windows.show(popover) : windows.hide(popover);
        }
        std::free(event);
    }
    return EXIT_SUCCESS;
}
