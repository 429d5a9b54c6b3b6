// velmod's command line.
#ifndef VELMO_SERVER_OPTIONS_H
#define VELMO_SERVER_OPTIONS_H

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "orb/server.h"
#include "server/model/port_service.h"

namespace velmo::server {

struct Options {
    std::string server = "0000";
    std::vector<std::string> realms; // beside the unnamed one
    std::vector<orb::Endpoint> endpoints;
    bool use_unix_socket = true;
    std::string unix_socket; // an absolute path; empty: velmod chooses one
    std::string naming;      // empty: velmod's own naming service
    int ready_fd = -1;       // -1: none
    std::chrono::milliseconds max_wait = model::PortLimits().max_wait;
};

constexpr int misuse_status = 2;

// Reads the command line. None when the program is to end with that exit status: the
// help text, the version or what is wrong has been written.
std::optional<Options> parse_options(int argc, char** argv, int& exit_status);

// "HOST:PORT" as URLs have it.
std::string host_and_port(const orb::Endpoint& endpoint);

} // namespace velmo::server

#endif
