#include "MockService.h"

#include <gtest/gtest.h>

#include "platform/linux/GVariantPointer.h"

namespace norvane {

MockService::MockService(const PrivateBus& bus, const Place& place)
    : place_(place),
      peer_(bus.address()),
      process_(command({"--session", place.name, place.path, place.interface}),
               {{"DBUS_SESSION_BUS_ADDRESS", bus.address()}}) {
    waitUntilThere();
}

MockService::MockService(const PrivateBus& bus, const Place& place, const std::string& mockTemplate,
                         const std::string& parameters)
    : place_(place),
      peer_(bus.address()),
      process_(command({"--session", "--template", mockTemplate, "--parameters", parameters}),
               {{"DBUS_SESSION_BUS_ADDRESS", bus.address()}}) {
    waitUntilThere();
}

MockService::~MockService() {
    process_.kill();
    if (!g_dbus_connection_is_closed(peer_.connection())) {
        EXPECT_TRUE(peer_.comesToHaveOwner(place_.name, false));
    }
}

// Debian's interpreter: another one in the path does not have the module.
std::vector<std::string> MockService::command(const std::vector<std::string>& arguments) {
    std::vector<std::string> command{"/usr/bin/python3", "-m", "dbusmock"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
}

void MockService::waitUntilThere() const {
    EXPECT_TRUE(peer_.comesToHaveOwner(place_.name)) << "dbusmock does not start";
}

GVariantPointer MockService::tell(const char* method, GVariant* parameters) const {
    auto answer = peer_.call(place_.name, place_.path, "org.freedesktop.DBus.Mock", method, parameters);
    EXPECT_TRUE(answer) << method;
    return answer;
}

void MockService::addMethod(const std::string& method, const std::string& in, const std::string& out,
                            const std::string& python) const {
    tell("AddMethod",
         g_variant_new("(sssss)", place_.interface, method.c_str(), in.c_str(), out.c_str(), python.c_str()));
}

void MockService::addProperty(const char* property, const std::string& value) const {
    tell("AddProperty",
         g_variant_new("(ssv)", place_.interface, property, g_variant_new_parsed(value.c_str())));
}

void MockService::updateProperty(const char* property, const std::string& value) const {
    GVariantBuilder properties;
    g_variant_builder_init(&properties, G_VARIANT_TYPE_VARDICT);
    g_variant_builder_add(&properties, "{sv}", property, g_variant_new_parsed(value.c_str()));
    tell("UpdateProperties", g_variant_new("(sa{sv})", place_.interface, &properties));
}

void MockService::emit(const std::string& interface, const std::string& signal, const std::string& signature,
                       const std::string& arguments) const {
    tell("EmitSignal",
         g_variant_new("(sss@av)", interface.c_str(), signal.c_str(), signature.c_str(),
                       g_variant_parse(G_VARIANT_TYPE("av"), arguments.c_str(), nullptr, nullptr, nullptr)));
}

std::vector<std::string> MockService::calls(const char* method) const {
    std::vector<std::string> found;
    const auto answer = tell("GetMethodCalls", g_variant_new("(s)", method));
    if (!answer) return found;
    const GVariantPointer list(g_variant_get_child_value(answer.get(), 0));
    for (gsize each = 0; each < g_variant_n_children(list.get()); ++each) {
        const GVariantPointer call(g_variant_get_child_value(list.get(), each));
        const GVariantPointer arguments(g_variant_get_child_value(call.get(), 1));
        gchar* const text = g_variant_print(arguments.get(), FALSE);
        found.emplace_back(text);
        g_free(text);
    }
    return found;
}

}  // namespace norvane
