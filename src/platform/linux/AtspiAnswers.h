#pragma once

#include <gio/gio.h>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/AtspiTree.h"

namespace norvane {

// What the objects of a tree answer on the accessibility bus. Arguments are of the types that the interfaces'
// description names; whatever else they say is taken as it comes.
class AtspiAnswers {
 public:
    // What is done when it is asked for, later than the answer. Whether it can be.
    struct Deeds {
        std::function<bool(AtspiId id, std::size_t action)> act;
        std::function<bool(AtspiId id)> focus;
        std::function<bool(AtspiId id, double value)> setValue;
    };

    // The tree outlives the answers.
    AtspiAnswers(const AtspiTree& tree, Deeds deeds) : tree_(tree), deeds_(std::move(deeds)) {}

    // Ours on the bus; the application's parent there, once there is one.
    void setBusName(std::string name) { busName_ = std::move(name); }
    void setParent(std::string name, std::string path);

    static constexpr const char* kFamilyPath = "/org/a11y/atspi/accessible";
    static std::string pathOf(AtspiId id);

    // Of the object whose path ends in that name; empty for none such.
    std::vector<std::string_view> interfaces(std::string_view name) const;
    // A floating value, or null where there is no answer.
    GVariant* called(std::string_view name, std::string_view interface, std::string_view method,
                     GVariant* arguments);
    GVariant* read(std::string_view name, std::string_view interface, std::string_view property) const;
    bool write(std::string_view name, std::string_view interface, std::string_view property, GVariant* value);

    // The name on the bus and the path of an object: "(so)".
    GVariant* reference(AtspiId id) const;
    // Its entry in the cache: "((so)(so)(so)iiassusau)"; null for none such.
    GVariant* cacheItem(AtspiId id) const;
    // All of them: "(a((so)(so)(so)iiassusau))".
    GVariant* cacheItems() const;

 private:
    GVariant* accessible(AtspiId id, const AtspiObject& object, std::string_view method,
                         GVariant* arguments) const;
    GVariant* component(AtspiId id, const AtspiObject& object, std::string_view method,
                        GVariant* arguments) const;
    GVariant* action(AtspiId id, const AtspiObject& object, std::string_view method,
                     GVariant* arguments) const;
    GVariant* text(const AtspiObject& object, std::string_view method, GVariant* arguments) const;
    GVariant* parentOf(AtspiId id, const AtspiObject& object) const;
    GVariant* states(const AtspiObject& object) const;
    PixelRect extents(const AtspiObject& object, std::uint32_t relativeTo) const;
    // The object of the path's last part; nullptr for none.
    const AtspiObject* named(std::string_view name, AtspiId& id) const;

    const AtspiTree& tree_;
    const Deeds deeds_;
    std::string busName_;
    std::string parentName_;
    std::string parentPath_;
    int applicationId_ = 0;
};

}  // namespace norvane
