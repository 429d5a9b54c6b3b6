// The operations on a port service, each with how it is to fail.
#ifndef VELMO_TESTS_API_PORT_OPERATIONS_H
#define VELMO_TESTS_API_PORT_OPERATIONS_H

#include <ostream>
#include <string>

namespace velmo::tests {

struct PortOperation {
    const char* name;   // of the export
    const char* remote; // of the remote operation
    int (*call)(const char* server, const char* realm);
    int broker_failure;
    int other_failure;
    const char* log_text; // in front of the exception's description; null for no line
};

// What GoogleTest shows of one.
inline void PrintTo(const PortOperation& operation, std::ostream* out)
{
    *out << operation.name;
}

extern const PortOperation port_operations[8];

} // namespace velmo::tests

#endif
