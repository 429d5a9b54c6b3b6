// The operations that send the caller's data, each with how it refuses them.
#ifndef VELMO_TESTS_API_DATA_OPERATIONS_H
#define VELMO_TESTS_API_DATA_OPERATIONS_H

#include <ostream>
#include <string>

namespace velmo::tests {

struct DataOperation {
    const char* name;   // of the export
    const char* remote; // of the remote operation
    int (*call)(const void* data, int length);
    int failure;
    const char* key;           // of the service
    const char* before;        // the other arguments as the script shows them, in front of
    const char* after;         // the data and behind
    bool copied_first = false; // before the reference is asked for
};

// What GoogleTest shows of one.
inline void PrintTo(const DataOperation& operation, std::ostream* out)
{
    *out << operation.name;
}

// The call as the script records it.
inline std::string seen(const DataOperation& operation, const std::string& data)
{
    return std::string(operation.remote) + "(" + operation.before + '"' + data + '"' +
           operation.after + ")";
}

// The last one alone takes NULL for no data, whatever the length.
extern const DataOperation data_operations[8];

} // namespace velmo::tests

#endif
