#pragma once

#include <chrono>
#include <string>

#include "dashboard/ExternalVolume.h"
#include "platform/Dispatch.h"
#include "platform/FileManager.h"
#include "platform/Published.h"
#include "platform/Workspace.h"
#include "views/Element.h"
#include "views/State.h"

namespace norvane {

// The details of the storage: the removable volumes, each with its way out. They are listed, away from the
// main thread, when this comes on the screen and whenever one comes or goes. Whatever is referred to outlives
// the element; files and main queue, the background queue's tasks as well.
struct StorageDetailListView {
    FileManager& fileManager;
    Workspace& workspace;
    Dispatch& dispatch;
    UUIDSource& uuidSource;
    // Nobody listens to comings and goings while nobody looks.
    const Published<bool>& isUIVisible;

    Element body() const;

 private:
    struct Listing;

    Element row(const State<Listing>& listing, const ExternalVolume& volume) const;
    void appear(const State<Listing>& listing) const;
    void refreshExternalVolumes(const State<Listing>& listing, std::chrono::nanoseconds delay = {}) const;
    void ejectVolume(const State<Listing>& listing, const std::string& url) const;
    void ejectAllVolumes(const State<Listing>& listing) const;
};

}  // namespace norvane
