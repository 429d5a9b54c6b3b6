// The connections that clients have made to a server on omniORB.
#ifndef VELMO_ORB_CONNECTIONS_OMNIORB_H
#define VELMO_ORB_CONNECTIONS_OMNIORB_H

#include <string>

namespace velmo::orb {

// Makes ServedConnection work, and has connections refused while the process is short of
// descriptors: otherwise omniORB would leave them unaccepted, their clients without an
// answer, and try again without a pause. To follow ORB_init(). refused: called for each,
// may be null.
void look_after_connections(void (*refused)());

// Lets as many clients be about to connect to a unix socket of this process as the system
// allows. omniORB asks for five, and its clients take the next one to be refused for the
// server's absence. To follow the listening.
void lengthen_queue(const std::string& unix_socket);

} // namespace velmo::orb

#endif
