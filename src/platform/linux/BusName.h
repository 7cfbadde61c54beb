#pragma once

#include <functional>
#include <string>

#include "platform/linux/BusConnection.h"

namespace norvane {

// A well-known name of ours, asked for over every connection that is yet to come, and given back when this
// goes away. Nobody is waited for, and nobody's name is taken. Main thread only.
class BusName {
 public:
    // The connection outlives it. Told what each request came to, and when a name that was ours is lost; the
    // function may end this.
    BusName(BusConnection& bus, std::string name, std::function<void(bool isOwned)> told);
    ~BusName();
    BusName(const BusName&) = delete;
    BusName& operator=(const BusName&) = delete;

    const std::string& text() const { return name_; }
    bool isOwned() const { return isOwned_; }

 private:
    void request();
    void tell(bool isOwned);

    BusConnection& bus_;
    const std::string name_;
    const std::function<void(bool)> told_;
    bool isOwned_ = false;
    Cancellation request_;
    Cancellation connection_;
};

}  // namespace norvane
