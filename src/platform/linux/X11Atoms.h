#pragma once

#include <xcb/xcb.h>

namespace norvane {

// The names that we and other programs of the desktop talk to each other with.
struct X11Atoms {
    // Asks the server for all of them in one exchange. False where the server is gone. The
    // selections of the compositor, the tray and the settings manager carry the screen's number.
    bool intern(xcb_connection_t* connection, int screenNumber);

    xcb_atom_t utf8String = XCB_NONE;
    xcb_atom_t wmProtocols = XCB_NONE;
    xcb_atom_t wmDeleteWindow = XCB_NONE;
    xcb_atom_t netWmName = XCB_NONE;
    xcb_atom_t netWmDesktop = XCB_NONE;
    xcb_atom_t netWmWindowType = XCB_NONE;
    xcb_atom_t netWmWindowTypeDock = XCB_NONE;
    xcb_atom_t netWmWindowTypeDialog = XCB_NONE;
    xcb_atom_t netWmWindowTypeDropdownMenu = XCB_NONE;
    xcb_atom_t netWmState = XCB_NONE;
    xcb_atom_t netWmStateAbove = XCB_NONE;
    xcb_atom_t netWmStateSticky = XCB_NONE;
    xcb_atom_t netWmStateSkipTaskbar = XCB_NONE;
    xcb_atom_t netWmStateSkipPager = XCB_NONE;
    xcb_atom_t netWmStrut = XCB_NONE;
    xcb_atom_t netWmStrutPartial = XCB_NONE;
    xcb_atom_t netWorkarea = XCB_NONE;
    xcb_atom_t gtkFrameExtents = XCB_NONE;
    xcb_atom_t comptonShadow = XCB_NONE;
    xcb_atom_t motifWmHints = XCB_NONE;
    xcb_atom_t manager = XCB_NONE;
    xcb_atom_t netSystemTrayOpcode = XCB_NONE;
    xcb_atom_t netSystemTrayVisual = XCB_NONE;
    xcb_atom_t xembedInfo = XCB_NONE;
    xcb_atom_t xsettingsSettings = XCB_NONE;
    xcb_atom_t netWmCm = XCB_NONE;
    xcb_atom_t netSystemTray = XCB_NONE;
    xcb_atom_t xsettings = XCB_NONE;
    // Our own: who runs on this screen, and what a second start tells the first.
    xcb_atom_t norvane = XCB_NONE;
    xcb_atom_t norvaneReopen = XCB_NONE;
};

}  // namespace norvane
