// Ports as the commands on them know them.
#ifndef VELMO_CLI_PORTS_H
#define VELMO_CLI_PORTS_H

#include <functional>
#include <string>

#include <CLI/CLI.hpp>

#include "cli/interruption.h"
#include "cli/session.h"

namespace velmo::cli {

// The handle that a word stands for: a number, also as 0x1f, is one; anything else is the
// name of a port. Throws Failure.
unsigned int port_handle(const Session& session, const std::string& word);

// The handle that a port gets when nobody chooses one: always the same for a name.
unsigned int usual_handle(const std::string& name);

// The point that tells a property of a port.
std::string port_point(const std::string& port, const std::string& property);

// How long to wait for a packet, a reply, or room.
class Waiting {
public:
    // what: "a packet", for the help text. Throws nothing.
    void declare(CLI::App& app, const std::string& what, unsigned int default_ms = 0);

    // Calls call(option), as the functions on packets take it, until the result is not
    // time_out or the time is over; gives the last result. It waits in short pieces: so a
    // person can interrupt it, and neither the library's time-out nor the server's
    // longest wait matters. Throws Interrupted.
    int run(const Session& session, const Interruption& interruption, int time_out,
            const std::function<int(unsigned int option)>& call) const;

    // The same without an end.
    static int forever(const Session& session, const Interruption& interruption,
                       int time_out, const std::function<int(unsigned int option)>& call);

private:
    unsigned int milliseconds = 0;
};

} // namespace velmo::cli

#endif
