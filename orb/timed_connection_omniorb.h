// Connections on which giving up in time costs next to nothing.
#ifndef VELMO_ORB_TIMED_CONNECTION_OMNIORB_H
#define VELMO_ORB_TIMED_CONNECTION_OMNIORB_H

namespace velmo::orb {

// Has the process's ORB, which must exist, use such connections for calls to servers,
// from the next connection on. Cheap when called again.
void time_connections();

} // namespace velmo::orb

#endif
