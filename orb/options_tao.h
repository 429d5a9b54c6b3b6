// What clients and servers on TAO share about starting an ORB.
#ifndef VELMO_ORB_OPTIONS_TAO_H
#define VELMO_ORB_OPTIONS_TAO_H

#include <string>
#include <vector>

namespace velmo::orb {

// The options of an ORB whose calls in progress have a connection each: behind a waiting
// receive no other call would get through. One whose call was given up is closed. Must
// precede ORB_init().
std::vector<std::string> connection_options();

} // namespace velmo::orb

#endif
