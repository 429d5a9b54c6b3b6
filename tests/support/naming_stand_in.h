// The naming client, for tests of what asks it. A program that contains
// naming_stand_in.cpp has that vlNaming_Client instead of the library's.
#ifndef VELMO_TESTS_SUPPORT_NAMING_STAND_IN_H
#define VELMO_TESTS_SUPPORT_NAMING_STAND_IN_H

#include <cstddef>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "orb/corba.h"

namespace velmo::tests {

// Answers with what a test has bound, and records what it was asked. Safe from any
// thread.
class NamingStandIn {
public:
    using Lookup = std::pair<std::string, std::string>; // server, name
    using Resolver = std::function<CORBA::Object_var(const std::string& server,
                                                     const std::string& name)>;

    static NamingStandIn& instance();

    // Back to the beginning: nothing bound, nothing recorded, nobody reachable.
    void reset();

    void bind(const std::string& server, const std::string& name, CORBA::Object_ptr object);
    void unbind(const std::string& server, const std::string& name);

    // Answers every look-up from now on; may throw, and may keep the caller waiting.
    void resolve_with(Resolver resolver);

    // Which servers' naming services answer.
    void set_reachable(std::vector<std::string> servers);

    // What was looked up, in order; a NULL shows as "(null)".
    std::vector<Lookup> lookups() const;
    std::size_t lookups_of(const std::string& name) const;

    // The servers that isConnect() was asked about, in order.
    std::vector<std::string> connection_checks() const;

    // For the client itself.
    CORBA::Object_var look_up(const char* server, const char* name);
    bool check_connection(const char* server);

private:
    NamingStandIn() = default;

    mutable std::mutex mutex;
    std::map<Lookup, CORBA::Object_var> bound;
    Resolver resolver;
    std::vector<std::string> reachable;
    std::vector<Lookup> asked;
    std::vector<std::string> checked;
};

// How often vlNaming_Client::ExitInstance() was called; never goes back.
int naming_exits();

// Runs at every such call from now on, the one at the end of the process included.
void on_naming_exit(void (*action)());

} // namespace velmo::tests

#endif
