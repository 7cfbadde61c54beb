#include "platform/linux/BusExport.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace norvane {
namespace {

using Weak = std::weak_ptr<BusExport>;

struct NodeInfoDeleter {
    void operator()(GDBusNodeInfo* info) const { g_dbus_node_info_unref(info); }
};
using NodeInfo = std::unique_ptr<GDBusNodeInfo, NodeInfoDeleter>;

NodeInfo parsed(const char* description) {
    return NodeInfo(g_dbus_node_info_new_for_xml(description, nullptr));
}

void dropWeak(gpointer weak) {
    delete static_cast<Weak*>(weak);
}

void answer(GDBusMethodInvocation* invocation, bool isThere, GVariant* result) {
    if (!isThere) {
        g_dbus_method_invocation_return_error_literal(invocation, G_DBUS_ERROR, G_DBUS_ERROR_UNKNOWN_OBJECT,
                                                      "The object is gone");
    } else if (result != nullptr) {
        g_dbus_method_invocation_return_value(invocation, result);
    } else {
        g_dbus_method_invocation_return_error_literal(invocation, G_DBUS_ERROR, G_DBUS_ERROR_INVALID_ARGS,
                                                      "There is nothing of that kind");
    }
}

GVariant* valueOrError(GVariant* value, GError** error) {
    if (value == nullptr) {
        g_set_error_literal(error, G_DBUS_ERROR, G_DBUS_ERROR_UNKNOWN_PROPERTY, "The property has no value");
    }
    return value;
}

class ExportedObject final : public BusExport {
 public:
    explicit ExportedObject(BusConnection::Object object)
        : object_(std::move(object)), description_(parsed(object_.description)) {}

    void enter(GDBusConnection* connection) override {
        if (!description_ || description_->interfaces[0] == nullptr) return;
        static constexpr GDBusInterfaceVTable kFunctions{called, read, nullptr, {}};
        number_ =
            g_dbus_connection_register_object(connection, object_.path, description_->interfaces[0],
                                              &kFunctions, new Weak(weak_from_this()), dropWeak, nullptr);
    }
    void leave(GDBusConnection* connection) override {
        if (number_ != 0) g_dbus_connection_unregister_object(connection, std::exchange(number_, 0));
    }
    void end() override {
        object_.called = nullptr;
        object_.read = nullptr;
    }

 private:
    static std::shared_ptr<ExportedObject> locked(gpointer weak) {
        return std::static_pointer_cast<ExportedObject>(static_cast<Weak*>(weak)->lock());
    }
    static void called(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* method,
                       GVariant* arguments, GDBusMethodInvocation* invocation, gpointer weak) {
        const auto exported = locked(weak);
        const auto function = exported ? exported->object_.called : nullptr;  // the call may end the object
        answer(invocation, function != nullptr, function ? function(method, arguments) : nullptr);
    }
    static GVariant* read(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* property,
                          GError** error, gpointer weak) {
        const auto exported = locked(weak);
        const auto function = exported ? exported->object_.read : nullptr;
        return valueOrError(function ? function(property) : nullptr, error);
    }

    BusConnection::Object object_;
    NodeInfo description_;
    guint number_ = 0;  // 0 where it is not
};

// What follows the last slash.
std::string_view nameIn(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

class ExportedFamily final : public BusExport {
 public:
    explicit ExportedFamily(BusConnection::Family family)
        : family_(std::move(family)), description_(parsed(family_.description)) {}

    void enter(GDBusConnection* connection) override {
        static constexpr GDBusSubtreeVTable kFunctions{names, interfaces, functions, {}};
        number_ = g_dbus_connection_register_subtree(connection, family_.path, &kFunctions,
                                                     G_DBUS_SUBTREE_FLAGS_DISPATCH_TO_UNENUMERATED_NODES,
                                                     new Weak(weak_from_this()), dropWeak, nullptr);
    }
    void leave(GDBusConnection* connection) override {
        if (number_ != 0) g_dbus_connection_unregister_subtree(connection, std::exchange(number_, 0));
    }
    void end() override {
        family_.interfaces = nullptr;
        family_.called = nullptr;
        family_.read = nullptr;
        family_.write = nullptr;
    }

 private:
    static std::shared_ptr<ExportedFamily> locked(gpointer weak) {
        return std::static_pointer_cast<ExportedFamily>(static_cast<Weak*>(weak)->lock());
    }
    static void called(GDBusConnection*, const gchar*, const gchar* path, const gchar* interface,
                       const gchar* method, GVariant* arguments, GDBusMethodInvocation* invocation,
                       gpointer weak) {
        const auto exported = locked(weak);
        const auto function = exported ? exported->family_.called : nullptr;  // the call may end the family
        answer(invocation, function != nullptr,
               function ? function(nameIn(path), interface, method, arguments) : nullptr);
    }
    static GVariant* read(GDBusConnection*, const gchar*, const gchar* path, const gchar* interface,
                          const gchar* property, GError** error, gpointer weak) {
        const auto exported = locked(weak);
        const auto function = exported ? exported->family_.read : nullptr;
        return valueOrError(function ? function(nameIn(path), interface, property) : nullptr, error);
    }
    static gboolean write(GDBusConnection*, const gchar*, const gchar* path, const gchar* interface,
                          const gchar* property, GVariant* value, GError** error, gpointer weak) {
        const auto exported = locked(weak);
        const auto function = exported ? exported->family_.write : nullptr;
        if (function && function(nameIn(path), interface, property, value)) return TRUE;
        g_set_error_literal(error, G_DBUS_ERROR, G_DBUS_ERROR_INVALID_ARGS, "The property does not take it");
        return FALSE;
    }
    // They come and go too often to be listed for those who look around on the bus.
    static gchar** names(GDBusConnection*, const gchar*, const gchar*, gpointer) { return g_new0(gchar*, 1); }
    // An array that GLib frees, of references that it takes.
    static GDBusInterfaceInfo** interfaces(GDBusConnection*, const gchar*, const gchar*, const gchar* name,
                                           gpointer weak) {
        const auto exported = locked(weak);
        const bool isOne = exported && exported->description_ && exported->family_.interfaces;
        if (!isOne || name == nullptr) return nullptr;
        const std::vector<std::string_view> names = exported->family_.interfaces(name);
        if (names.empty()) return nullptr;
        auto** const found = g_new0(GDBusInterfaceInfo*, names.size() + 1);
        std::size_t count = 0;
        for (const std::string_view each : names) {
            GDBusInterfaceInfo* const info =
                g_dbus_node_info_lookup_interface(exported->description_.get(), std::string(each).c_str());
            if (info != nullptr) found[count++] = g_dbus_interface_info_ref(info);
        }
        return found;
    }
    static const GDBusInterfaceVTable* functions(GDBusConnection*, const gchar*, const gchar*, const gchar*,
                                                 const gchar*, gpointer* passed, gpointer weak) {
        static constexpr GDBusInterfaceVTable kFunctions{called, read, write, {}};
        *passed = weak;
        return &kFunctions;
    }

    BusConnection::Family family_;
    NodeInfo description_;
    guint number_ = 0;
};

}  // namespace

std::shared_ptr<BusExport> BusExport::of(BusConnection::Object object) {
    return std::make_shared<ExportedObject>(std::move(object));
}

std::shared_ptr<BusExport> BusExport::of(BusConnection::Family family) {
    return std::make_shared<ExportedFamily>(std::move(family));
}

}  // namespace norvane
