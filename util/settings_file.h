// The settings file: XML, checked to the last attribute.
#ifndef VELMO_UTIL_SETTINGS_FILE_H
#define VELMO_UTIL_SETTINGS_FILE_H

#include <string>
#include <vector>

#include "util/settings_values.h"

namespace velmo::settings {

// The element below the root that holds the daemon's own configuration.
constexpr const char* daemon_section = "velmod";

struct File {
    std::vector<Server> servers; // in the order of the file, not at positions yet
    std::string local;           // the server that the file calls local, or ""
    int root_line = 1;
    Sourced<Milliseconds> connect_timeout;
};

// Throws Fault for the first thing that is wrong with the text: what is not
// known is refused as well, since a slip of the pen must not be passed over.
// A time-out of the environment goes before the server's, that before the root's.
File parse_file(const std::string& text, const Timeouts& environment);

// Whether the file lists a server of that name.
bool lists(const File& file, const std::string& name);

} // namespace velmo::settings

#endif
