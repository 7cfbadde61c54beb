#include "Bystander.h"

#include <algorithm>
#include <array>

#include "platform/linux/X11Event.h"

namespace norvane {

Bystander::Bystander(const std::string& display) : connection_(xcb_connect(display.c_str(), nullptr)) {
    if (xcb_connection_has_error(connection_) != 0) return;
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
}

xcb_atom_t Bystander::atom(const std::string& name) const {
    const auto length = static_cast<std::uint16_t>(name.size());
    const auto reply = answer(xcb_intern_atom_reply, xcb_intern_atom(connection_, 0, length, name.data()));
    return reply ? reply->atom : xcb_atom_t{XCB_NONE};
}

Bystander::Numbers Bystander::pixels(xcb_window_t window, const PixelRect& part, std::uint32_t mask) const {
    const auto reply = answer(
        xcb_get_image_reply,
        xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, window, static_cast<std::int16_t>(part.x),
                      static_cast<std::int16_t>(part.y), static_cast<std::uint16_t>(part.width),
                      static_cast<std::uint16_t>(part.height), 0xFFFFFFFF));
    if (!reply) return {};
    const auto* const data = reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(reply.get()));
    std::vector<std::uint32_t> found(data, data + xcb_get_image_data_length(reply.get()) / 4);
    for (std::uint32_t& pixel : found)
        pixel &= mask;
    return found;
}

std::vector<xcb_window_t> Bystander::windows() const {
    auto all = childrenOf(root_);
    std::erase_if(all, [&](xcb_window_t window) { return !isShown(window); });
    return all;
}

std::vector<xcb_window_t> Bystander::childrenOf(xcb_window_t window) const {
    const auto tree = answer(xcb_query_tree_reply, xcb_query_tree(connection_, window));
    if (!tree) return {};
    const xcb_window_t* const children = xcb_query_tree_children(tree.get());
    return {children, children + xcb_query_tree_children_length(tree.get())};
}

std::optional<xcb_window_t> Bystander::windowAt(const PixelRect& frame) const {
    const auto all = windows();
    const auto found =
        std::find_if(all.rbegin(), all.rend(), [&](auto each) { return frameOf(each) == frame; });
    return found == all.rend() ? std::nullopt : std::optional(*found);
}

X11Reply<xcb_get_property_reply_t> Bystander::property(xcb_window_t window, const std::string& name,
                                                       int format) const {
    auto reply = answer(xcb_get_property_reply,
                        xcb_get_property(connection_, 0, window, atom(name), XCB_ATOM_ANY, 0, 64));
    if (reply && reply->format != format) reply.reset();
    return reply;
}

Bystander::Numbers Bystander::numbers(xcb_window_t window, const std::string& property) const {
    const auto reply = this->property(window, property, 32);
    if (!reply) return {};
    const auto* const values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {values, values + xcb_get_property_value_length(reply.get()) / 4};
}

std::string Bystander::text(xcb_window_t window, const std::string& property) const {
    const auto reply = this->property(window, property, 8);
    if (!reply) return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

void Bystander::set(xcb_window_t window, const std::string& property, xcb_atom_t type, std::uint8_t bits,
                    const void* data, std::size_t units) const {
    await(xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, atom(property), type, bits,
                              static_cast<std::uint32_t>(units), data));
}

xcb_window_t Bystander::open(const PixelRect& frame) {
    const xcb_window_t window = xcb_generate_id(connection_);
    const std::array<std::uint32_t, 3> values{0xFF0000, 1, XCB_EVENT_MASK_BUTTON_PRESS};
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, root_, static_cast<std::int16_t>(frame.x),
                      static_cast<std::int16_t>(frame.y), static_cast<std::uint16_t>(frame.width),
                      static_cast<std::uint16_t>(frame.height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK,
                      values.data());
    map(window);
    return window;
}

int Bystander::presses() {
    while (const X11Reply<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) {
        if (typeOf(*event) == XCB_BUTTON_PRESS) ++presses_;
    }
    return presses_;
}

void Bystander::send(xcb_window_t to, const std::string& type, const Numbers& words) const {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = to;
    message.type = atom(type);
    std::copy(words.begin(), words.end(), message.data.data32);
    const std::uint32_t mask = to == root_ ? XCB_EVENT_MASK_STRUCTURE_NOTIFY : XCB_EVENT_MASK_NO_EVENT;
    await(xcb_send_event(connection_, 0, to, mask, reinterpret_cast<const char*>(&message)));
}

}  // namespace norvane
