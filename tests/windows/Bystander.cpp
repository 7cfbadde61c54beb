#include "Bystander.h"

#include <algorithm>
#include <array>

#include "platform/linux/X11Event.h"
#include "platform/linux/X11Reply.h"

namespace norvane {

Bystander::Bystander(const std::string& display) : connection_(xcb_connect(display.c_str(), nullptr)) {
    if (xcb_connection_has_error(connection_) == 0) {
        root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    }
}

Bystander::~Bystander() {
    xcb_disconnect(connection_);
}

xcb_atom_t Bystander::atom(const std::string& name) const {
    const X11Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        connection_, xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data()),
        nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_NONE};
}

std::uint32_t Bystander::pixelAt(int x, int y) const {
    const auto all = pixels({x, y, 1, 1});
    return all.empty() ? 0xFFFFFFFF : all.front();
}

std::vector<std::uint32_t> Bystander::pixels(const PixelRect& part) const {
    const X11Reply<xcb_get_image_reply_t> reply(xcb_get_image_reply(
        connection_,
        xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, root_, static_cast<std::int16_t>(part.x),
                      static_cast<std::int16_t>(part.y), static_cast<std::uint16_t>(part.width),
                      static_cast<std::uint16_t>(part.height), 0xFFFFFFFF),
        nullptr));
    if (!reply) return {};
    const auto* const data = reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(reply.get()));
    std::vector<std::uint32_t> found(data, data + xcb_get_image_data_length(reply.get()) / 4);
    for (std::uint32_t& pixel : found)
        pixel &= 0xFFFFFF;
    return found;
}

std::vector<xcb_window_t> Bystander::windows() const {
    const X11Reply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection_, xcb_query_tree(connection_, root_), nullptr));
    std::vector<xcb_window_t> shown;
    if (!tree) return shown;
    const xcb_window_t* const children = xcb_query_tree_children(tree.get());
    for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
        const X11Reply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
            connection_, xcb_get_window_attributes(connection_, children[i]), nullptr));
        if (attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE) shown.push_back(children[i]);
    }
    return shown;
}

std::optional<xcb_window_t> Bystander::windowAt(const PixelRect& frame) const {
    const auto all = windows();
    const auto found =
        std::find_if(all.rbegin(), all.rend(), [&](xcb_window_t window) { return frameOf(window) == frame; });
    if (found == all.rend()) return std::nullopt;
    return *found;
}

PixelRect Bystander::frameOf(xcb_window_t window) const {
    const X11Reply<xcb_get_geometry_reply_t> reply(
        xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, window), nullptr));
    if (!reply) return {};
    return {reply->x, reply->y, reply->width, reply->height};
}

std::vector<std::uint32_t> Bystander::numbers(xcb_window_t window, const std::string& property) const {
    const X11Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection_, xcb_get_property(connection_, 0, window, atom(property), XCB_ATOM_ANY, 0, 64), nullptr));
    if (!reply || reply->format != 32) return {};
    const auto* const values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {values, values + xcb_get_property_value_length(reply.get()) / 4};
}

std::string Bystander::text(xcb_window_t window, const std::string& property) const {
    const X11Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection_, xcb_get_property(connection_, 0, window, atom(property), XCB_ATOM_ANY, 0, 64), nullptr));
    if (!reply || reply->format != 8) return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

bool Bystander::hasAtom(xcb_window_t window, const std::string& property, const std::string& name) const {
    const auto all = numbers(window, property);
    return std::find(all.begin(), all.end(), atom(name)) != all.end();
}

bool Bystander::isUnmanaged(xcb_window_t window) const {
    const X11Reply<xcb_get_window_attributes_reply_t> reply(xcb_get_window_attributes_reply(
        connection_, xcb_get_window_attributes(connection_, window), nullptr));
    return reply && reply->override_redirect != 0;
}

void Bystander::setNumbers(xcb_window_t window, const std::string& property,
                           const std::vector<std::uint32_t>& values) const {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, atom(property), XCB_ATOM_CARDINAL, 32,
                        static_cast<std::uint32_t>(values.size()), values.data());
    sync();
}

void Bystander::setResources(const std::string& resources) const {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, root_, XCB_ATOM_RESOURCE_MANAGER, XCB_ATOM_STRING,
                        8, static_cast<std::uint32_t>(resources.size()), resources.data());
    sync();
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

void Bystander::raise(xcb_window_t window) const {
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(connection_, window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    sync();
}

void Bystander::map(xcb_window_t window) const {
    xcb_map_window(connection_, window);
    sync();
}

void Bystander::unmap(xcb_window_t window) const {
    xcb_unmap_window(connection_, window);
    sync();
}

void Bystander::close(xcb_window_t window) const {
    xcb_destroy_window(connection_, window);
    sync();
}

int Bystander::presses() {
    while (const X11Reply<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) {
        if (typeOf(*event) == XCB_BUTTON_PRESS) ++presses_;
    }
    return presses_;
}

void Bystander::focus(xcb_window_t window) const {
    xcb_set_input_focus(connection_, XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME);
    sync();
}

xcb_window_t Bystander::focused() const {
    const X11Reply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    return reply ? reply->focus : xcb_window_t{XCB_NONE};
}

void Bystander::smear(xcb_window_t window, const PixelRect& part, std::uint32_t color) const {
    const xcb_gcontext_t context = xcb_generate_id(connection_);
    xcb_create_gc(connection_, context, window, XCB_GC_FOREGROUND, &color);
    const xcb_rectangle_t rectangle{static_cast<std::int16_t>(part.x), static_cast<std::int16_t>(part.y),
                                    static_cast<std::uint16_t>(part.width),
                                    static_cast<std::uint16_t>(part.height)};
    xcb_poly_fill_rectangle(connection_, window, context, 1, &rectangle);
    xcb_free_gc(connection_, context);
    sync();
}

void Bystander::own(const std::string& selection, xcb_window_t window) const {
    xcb_set_selection_owner(connection_, window, atom(selection), XCB_CURRENT_TIME);
    sync();
}

void Bystander::announce(const std::string& selection, xcb_window_t window) const {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = root_;
    message.type = atom("MANAGER");
    message.data.data32[1] = atom(selection);
    message.data.data32[2] = window;
    xcb_send_event(connection_, 0, root_, XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
    sync();
}

void Bystander::sync() const {
    focused();
}

}  // namespace norvane
