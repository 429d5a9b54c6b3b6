// Every operation that the exported functions carry out on a server, with how it is to
// behave. Where they differ at all, they differ here.
#ifndef VELMO_TESTS_API_OPERATIONS_H
#define VELMO_TESTS_API_OPERATIONS_H

#include <ostream>
#include <set>
#include <vector>

#include "tests/support/script.h"

namespace velmo::tests {

// What an operation gives when it fails, and what it logs.
struct Failures {
    int broker;                     // a CORBA exception
    int other;                      // any other exception
    const char* log_text = nullptr; // in front of the exception's description
    int no_server = 3000;
    int no_reference = 99;
};

struct Operation {
    // What becomes of the cached reference when the remote call raises something.
    enum class Cache { dropped, kept, none };

    const char* name;    // of the exported function
    const char* remote;  // the remote operation, null where no server is asked
    const char* service; // the key of its service (idl/service_keys.h)

    // Calls it, every argument another one, and frees what it brings. Functions that
    // give a string give 0 for the text of full_reply(), or no_text.
    int (*call)(const char* server, const char* realm);
    const char* sent; // the remote call, as Script::calls() shows it

    Failures failures;
    Cache cache = Cache::dropped;
    bool needs_server = true; // else no name and no default server are no failure
    bool hands_on = true;     // the server's result is the function's

    // What it may give where the server answers with full_reply() or fails.
    std::set<int> codes() const;
};

// Stands for a function's null pointer.
constexpr int no_text = -98;

// What GoogleTest shows of one.
void PrintTo(const Operation& operation, std::ostream* out);

// The name of one for its instance of a test.
constexpr auto operation_name = [](const auto& test) {
    return std::string(test.param.name);
};

// A reply that has everything any operation brings, in the sizes that call() asks for.
Script::Reply full_reply(int result = 0);

std::vector<Operation> port_operations();  // with packets and events
std::vector<Operation> point_operations(); // with queries and all snapshots
std::vector<Operation> contention_operations();
std::vector<Operation> realm_operations();

// All of the above.
const std::vector<Operation>& operations();

// Those that a condition holds for.
template <class Condition>
std::vector<Operation> operations_where(Condition condition)
{
    std::vector<Operation> found;
    for (const Operation& operation : operations())
        if (condition(operation))
            found.push_back(operation);
    return found;
}

// Functions of the same kind that do nothing: no server, no look-up.
const std::vector<Operation>& idle_operations();

// A failed call of an operation whose reference is kept loses one duplicate of it, on
// purpose. Gives that back, lest a leak show, when the reference is indeed kept.
void give_back_lost_reference(const char* server, const char* realm);

} // namespace velmo::tests

#endif
