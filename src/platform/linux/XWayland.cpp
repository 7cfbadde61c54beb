#include "platform/linux/XWayland.h"

#include <xcb/randr.h>
#include <string_view>

#include "platform/linux/X11Reply.h"

namespace norvane {
namespace {

constexpr std::string_view kExtension = "XWAYLAND";

}  // namespace

bool runsOnWayland(xcb_connection_t* connection, xcb_window_t root, bool hasOutputs) {
    const auto extensionCookie =
        xcb_query_extension(connection, static_cast<std::uint16_t>(kExtension.size()), kExtension.data());
    xcb_randr_get_screen_resources_current_cookie_t outputsCookie{};
    if (hasOutputs) outputsCookie = xcb_randr_get_screen_resources_current(connection, root);
    const X11Reply<xcb_query_extension_reply_t> extension(
        xcb_query_extension_reply(connection, extensionCookie, nullptr));
    X11Reply<xcb_randr_get_screen_resources_current_reply_t> outputs;
    if (hasOutputs) {
        outputs.reset(xcb_randr_get_screen_resources_current_reply(connection, outputsCookie, nullptr));
    }
    if (extension && extension->present != 0) return true;
    // Its outputs are all of one kind: the first one says it.
    if (!outputs || xcb_randr_get_screen_resources_current_outputs_length(outputs.get()) == 0) return false;
    const xcb_randr_output_t first = *xcb_randr_get_screen_resources_current_outputs(outputs.get());
    const X11Reply<xcb_randr_get_output_info_reply_t> info(xcb_randr_get_output_info_reply(
        connection, xcb_randr_get_output_info(connection, first, outputs->config_timestamp), nullptr));
    if (!info || info->status != XCB_RANDR_SET_CONFIG_SUCCESS) return false;
    const std::string_view name(reinterpret_cast<const char*>(xcb_randr_get_output_info_name(info.get())),
                                static_cast<std::size_t>(xcb_randr_get_output_info_name_length(info.get())));
    return name.starts_with(kExtension);
}

}  // namespace norvane
