// What a command works with.
#ifndef VELMO_CLI_SESSION_H
#define VELMO_CLI_SESSION_H

#include <string>
#include <vector>

#include "cli/failure.h"
#include "cli/output.h"
#include "vl_api.h"

namespace velmo::cli {

struct Session {
    Output out;
    std::string server_name;     // "" for this host's own
    std::string realm_name;      // "" for the unnamed one
    unsigned int timeout_ms = 0; // 0: the settings'

    // The common options as they were given, to pass them on.
    std::vector<std::string> options;

    // What velmo ends with when nothing is thrown.
    int exit_status = succeeded;

    // As the functions of vl_api.h take them.
    const char* server() const { return server_name.c_str(); }
    const char* realm() const { return realm_name.c_str(); }

    // Throws Failure for any code but VL_OK. action: what was tried, such as
    // "read point \"level\"".
    void check(int code, const std::string& action) const
    {
        if (code != VL_OK)
            throw call_failure(code, action, server_name, realm_name);
    }
};

} // namespace velmo::cli

#endif
