#include "platform/linux/X11Atoms.h"

#include <array>
#include <string>
#include <string_view>

#include "platform/linux/X11Reply.h"

namespace norvane {
namespace {

struct Named {
    xcb_atom_t X11Atoms::*atom;
    std::string_view name;
};

constexpr std::array kNames{
    Named{&X11Atoms::utf8String, "UTF8_STRING"},
    Named{&X11Atoms::wmProtocols, "WM_PROTOCOLS"},
    Named{&X11Atoms::wmDeleteWindow, "WM_DELETE_WINDOW"},
    Named{&X11Atoms::netWmName, "_NET_WM_NAME"},
    Named{&X11Atoms::netWmDesktop, "_NET_WM_DESKTOP"},
    Named{&X11Atoms::netWmWindowType, "_NET_WM_WINDOW_TYPE"},
    Named{&X11Atoms::netWmWindowTypeDock, "_NET_WM_WINDOW_TYPE_DOCK"},
    Named{&X11Atoms::netWmWindowTypeDialog, "_NET_WM_WINDOW_TYPE_DIALOG"},
    Named{&X11Atoms::netWmWindowTypeDropdownMenu, "_NET_WM_WINDOW_TYPE_DROPDOWN_MENU"},
    Named{&X11Atoms::netWmState, "_NET_WM_STATE"},
    Named{&X11Atoms::netWmStateAbove, "_NET_WM_STATE_ABOVE"},
    Named{&X11Atoms::netWmStateSticky, "_NET_WM_STATE_STICKY"},
    Named{&X11Atoms::netWmStateSkipTaskbar, "_NET_WM_STATE_SKIP_TASKBAR"},
    Named{&X11Atoms::netWmStateSkipPager, "_NET_WM_STATE_SKIP_PAGER"},
    Named{&X11Atoms::netWmStrut, "_NET_WM_STRUT"},
    Named{&X11Atoms::netWmStrutPartial, "_NET_WM_STRUT_PARTIAL"},
    Named{&X11Atoms::netWorkarea, "_NET_WORKAREA"},
    Named{&X11Atoms::gtkFrameExtents, "_GTK_FRAME_EXTENTS"},
    Named{&X11Atoms::comptonShadow, "_COMPTON_SHADOW"},
    Named{&X11Atoms::norvane, "_NORVANE"},
    Named{&X11Atoms::norvaneReopen, "_NORVANE_REOPEN"},
    Named{&X11Atoms::motifWmHints, "_MOTIF_WM_HINTS"},
    Named{&X11Atoms::manager, "MANAGER"},
    Named{&X11Atoms::netSystemTrayOpcode, "_NET_SYSTEM_TRAY_OPCODE"},
    Named{&X11Atoms::netSystemTrayVisual, "_NET_SYSTEM_TRAY_VISUAL"},
    Named{&X11Atoms::xembedInfo, "_XEMBED_INFO"},
    Named{&X11Atoms::xsettingsSettings, "_XSETTINGS_SETTINGS"},
};

xcb_intern_atom_cookie_t ask(xcb_connection_t* connection, std::string_view name) {
    return xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
}

}  // namespace

bool X11Atoms::intern(xcb_connection_t* connection, int screenNumber) {
    std::array<xcb_intern_atom_cookie_t, kNames.size()> cookies;
    for (std::size_t i = 0; i < kNames.size(); ++i)
        cookies[i] = ask(connection, kNames[i].name);
    const std::string number = std::to_string(screenNumber);
    const auto compositor = ask(connection, "_NET_WM_CM_S" + number);
    const auto tray = ask(connection, "_NET_SYSTEM_TRAY_S" + number);
    const auto settings = ask(connection, "_XSETTINGS_S" + number);

    bool areAllThere = true;
    const auto take = [&](xcb_intern_atom_cookie_t cookie, xcb_atom_t& atom) {
        const X11Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr));
        if (reply) atom = reply->atom;
        if (atom == XCB_NONE) areAllThere = false;
    };
    for (std::size_t i = 0; i < kNames.size(); ++i)
        take(cookies[i], this->*kNames[i].atom);
    take(compositor, netWmCm);
    take(tray, netSystemTray);
    take(settings, xsettings);
    return areAllThere;
}

}  // namespace norvane
