// What clients and servers on TAO share about starting an ORB.
#ifndef VELMO_ORB_OPTIONS_TAO_H
#define VELMO_ORB_OPTIONS_TAO_H

#include <string>
#include <vector>

namespace velmo::orb {

// The options of an ORB whose calls in progress have a connection and a thread each, and
// so neither wait for each other nor wake each other up: behind a waiting receive no other
// call would get through. The connection of a call that was given up is closed. Must
// precede ORB_init().
std::vector<std::string> connection_options();

} // namespace velmo::orb

#endif
