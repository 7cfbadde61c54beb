#pragma once

#include <gio/gio.h>
#include <string>

#include "platform/linux/GVariantPointer.h"

namespace norvane {

// Somebody else on the bus, who may wait for answers.
class BusPeer {
 public:
    explicit BusPeer(const std::string& address);
    ~BusPeer();
    BusPeer(const BusPeer&) = delete;
    BusPeer& operator=(const BusPeer&) = delete;

    GDBusConnection* connection() const { return connection_; }

    // Null where the answer is an error.
    GVariantPointer call(const char* name, const char* path, const char* interface, const char* method,
                         GVariant* parameters = nullptr) const;
    GVariantPointer askBus(const char* method, GVariant* parameters) const;
    bool hasOwner(const char* name) const;
    // Whether it comes to have one, or to have none.
    bool comesToHaveOwner(const char* name, bool hasOwner = true) const;

 private:
    GDBusConnection* connection_;
};

}  // namespace norvane
