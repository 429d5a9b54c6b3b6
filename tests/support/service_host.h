// A port service and a service manager in another process.
#ifndef VELMO_TESTS_SUPPORT_SERVICE_HOST_H
#define VELMO_TESTS_SUPPORT_SERVICE_HOST_H

#include <stdexcept>
#include <string>

#include "tests/support/process.h"

namespace velmo::tests {

// Every operation on packets and connections succeeds; a receive brings "hello". The
// service manager knows the realm "alpha".
class ServiceHost {
public:
    // path: of the program velmo_test_service_host. Throws std::runtime_error when it
    // does not come up.
    explicit ServiceHost(const std::string& path) : process({path})
    {
        const auto line = process.wait_ready();
        if (!line)
            throw std::runtime_error(path + " did not come up: " + process.err());
        const std::size_t end = line->find(' ');
        ports_reference = line->substr(0, end);
        manager_reference = line->substr(end + 1);
    }

    // The services, as CORBA::ORB::string_to_object() takes them.
    const std::string& ports() const { return ports_reference; }
    const std::string& manager() const { return manager_reference; }

private:
    Process process;
    std::string ports_reference;
    std::string manager_reference;
};

} // namespace velmo::tests

#endif
