// Which servers are this process's own, and where the others stand to them.
#ifndef VELMO_UTIL_SETTINGS_POSITIONS_H
#define VELMO_UTIL_SETTINGS_POSITIONS_H

#include <string>
#include <vector>

#include "util/settings_values.h"

namespace velmo::settings {

// Files every server at one of "own", "parent" (encloses an own one), "child"
// (directly inside an own one), "sibling" (beside an own one) and "others", the
// first of these that is true of it, and in addition under its role.
//
// local is the name of the own server. With "" every server is an own one whose
// host is this machine: its name with or without the domain, "localhost", or an
// address of one of its interfaces (a server with a naming URL has no host). No name
// service is asked about hosts.
void assign_positions(std::vector<Server>& servers, const std::string& local);

} // namespace velmo::settings

#endif
