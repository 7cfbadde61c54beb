#pragma once

#include <string>
#include <vector>

#include "BusPeer.h"
#include "ChildProcess.h"
#include "PrivateBus.h"

namespace norvane {

// A service that python-dbusmock plays, in a process of its own. It is on the bus when constructed and gone
// from it when destroyed.
class MockService {
 public:
    struct Place {
        const char* name;
        const char* path;
        const char* interface;
    };

    // Without any method or property.
    MockService(const PrivateBus& bus, const Place& place);
    // One of dbusmock's own, with parameters in JSON.
    MockService(const PrivateBus& bus, const Place& place, const std::string& mockTemplate,
                const std::string& parameters = "{}");
    ~MockService();

    // What the test says to the service behind its back, in the text form of GVariant.
    void addMethod(const std::string& method, const std::string& in, const std::string& out,
                   const std::string& python) const;
    // Tells nobody.
    void addProperty(const char* property, const std::string& value) const;
    // Of a property that is there. Tells whoever follows it.
    void updateProperty(const char* property, const std::string& value) const;
    void emit(const std::string& interface, const std::string& signal, const std::string& signature,
              const std::string& arguments) const;
    // The arguments of each call of this method so far.
    std::vector<std::string> calls(const char* method) const;

    static std::vector<std::string> command(const std::vector<std::string>& arguments);

 private:
    void waitUntilThere() const;
    GVariantPointer tell(const char* method, GVariant* parameters) const;

    const Place place_;
    BusPeer peer_;
    ChildProcess process_;
};

}  // namespace norvane
