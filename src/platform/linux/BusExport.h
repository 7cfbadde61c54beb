#pragma once

#include <gio/gio.h>
#include <memory>

#include "platform/linux/BusConnection.h"

namespace norvane {

// Something of ours that others on a bus can call, on whichever connection there is. GLib's calls may come
// late: one that finds it ended, or gone, is answered by an error. Main thread only.
class BusExport : public std::enable_shared_from_this<BusExport> {
 public:
    static std::shared_ptr<BusExport> of(BusConnection::Object object);
    static std::shared_ptr<BusExport> of(BusConnection::Family family);
    virtual ~BusExport() = default;

    // It is there from now on; it is no longer.
    virtual void enter(GDBusConnection* connection) = 0;
    virtual void leave(GDBusConnection* connection) = 0;
    // None of its functions is called any more.
    virtual void end() = 0;
};

}  // namespace norvane
