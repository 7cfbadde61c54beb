#pragma once

#include <xcb/xcb.h>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/PixelRect.h"

namespace norvane {

// Another program on the same screen: it sees what everybody can see, and has
// windows of its own.
class Bystander {
 public:
    explicit Bystander(const std::string& display);
    ~Bystander();
    Bystander(const Bystander&) = delete;
    Bystander& operator=(const Bystander&) = delete;

    xcb_connection_t* get() const { return connection_; }
    xcb_window_t root() const { return root_; }
    xcb_atom_t atom(const std::string& name) const;

    // What the screen shows: 0xRRGGBB.
    std::uint32_t pixelAt(int x, int y) const;
    std::vector<std::uint32_t> pixels(const PixelRect& part) const;

    // The windows on the screen, the front one last.
    std::vector<xcb_window_t> windows() const;
    // The front one with that place, if any.
    std::optional<xcb_window_t> windowAt(const PixelRect& frame) const;
    PixelRect frameOf(xcb_window_t window) const;
    std::vector<std::uint32_t> numbers(xcb_window_t window, const std::string& property) const;
    std::string text(xcb_window_t window, const std::string& property) const;
    // Whether the property, a list of atoms, has this one in it.
    bool hasAtom(xcb_window_t window, const std::string& property, const std::string& name) const;
    // Whether window managers leave it alone.
    bool isUnmanaged(xcb_window_t window) const;

    void setNumbers(xcb_window_t window, const std::string& property,
                    const std::vector<std::uint32_t>& values) const;
    // What xrdb does.
    void setResources(const std::string& resources) const;

    // A window past any window manager, red, that counts the presses on it.
    xcb_window_t open(const PixelRect& frame);
    void raise(xcb_window_t window) const;
    // Anybody's window.
    void map(xcb_window_t window) const;
    void unmap(xcb_window_t window) const;
    void close(xcb_window_t window) const;
    int presses();
    void focus(xcb_window_t window) const;
    xcb_window_t focused() const;
    // Paints over a part of anybody's window.
    void smear(xcb_window_t window, const PixelRect& part, std::uint32_t color) const;
    // XCB_NONE gives it up.
    void own(const std::string& selection, xcb_window_t window) const;
    // Says that it does, as a manager that begins: also where it is not true.
    void announce(const std::string& selection, xcb_window_t window) const;
    // Waits until the server has done all that was asked here.
    void sync() const;

 private:
    xcb_connection_t* connection_;
    xcb_window_t root_ = XCB_NONE;
    int presses_ = 0;
};

}  // namespace norvane
