// What velmod is told: by its command line, and by a configuration file.
#ifndef VELMO_SERVER_OPTIONS_H
#define VELMO_SERVER_OPTIONS_H

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "orb/server.h"
#include "server/model/contention_service.h"
#include "server/model/point_service.h"
#include "server/model/port_service.h"
#include "server/model/template.h"

namespace velmo::server {

// What clients may use up.
struct Limits {
    std::size_t max_points = model::PointLimits().max_points;       // in a realm
    std::size_t max_queue_bytes = model::PortLimits().queue_bytes;  // in a queue
    std::size_t max_message = model::PointLimits().max_value_bytes; // data of a call
    std::chrono::milliseconds max_wait = model::PortLimits().max_wait;
    std::chrono::milliseconds lease = model::ContentionLimits().lease;
};

struct Options {
    std::string server = "0000";
    std::vector<std::string> realms; // beside the unnamed one
    std::vector<orb::Endpoint> endpoints;
    bool use_unix_socket = true;
    std::string unix_socket;              // an absolute path; empty: velmod chooses one
    std::string naming;                   // empty: velmod's own naming service
    std::string data_dir;                 // an absolute path; empty: nothing is kept
    bool durable = false;                 // every change is kept
    bool load = false;                    // the last snapshots, at start
    std::optional<orb::Endpoint> metrics; // where to show them; none: nowhere
    int ready_fd = -1;                    // -1: none
    Limits limits;
    std::vector<model::TemplateDefinition> templates;

    std::string file; // the configuration file; empty for none
    // As the command line or the file has them: the values of each option, by its name
    // without dashes. Those that neither gives are not there.
    std::map<std::string, std::vector<std::string>> given;
};

constexpr int misuse_status = 2;

using Arguments = std::vector<std::string>; // without the program's name

// Reads the command line and then, as read_options(), the file. None when the program
// is to end with that exit status: the help text, the version or what is wrong with the
// command line has been written. The descriptor that the program is to write to must
// have been given to it. Throws std::runtime_error.
std::optional<Options> parse_options(const Arguments& arguments, int& exit_status);

// The options as the command line and the configuration file give them now; the
// command line wins. The file is the one that --config names, else the settings file,
// if there is one. Throws std::runtime_error: FILE:LINE: REASON where the file is at
// fault.
Options read_options(const Arguments& arguments);

// The names of the options, templates not among them, that differ from those that the
// server runs with and that cannot be changed while it does.
std::vector<std::string> needing_restart(const Options& running, const Options& wanted);

// "HOST:PORT" as URLs have it.
std::string host_and_port(const orb::Endpoint& endpoint);

} // namespace velmo::server

#endif
