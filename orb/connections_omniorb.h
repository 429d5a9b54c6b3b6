// The connections that clients have made to a server on omniORB.
#ifndef VELMO_ORB_CONNECTIONS_OMNIORB_H
#define VELMO_ORB_CONNECTIONS_OMNIORB_H

namespace velmo::orb {

// Makes ServedConnection work, and has connections refused while the process is short of
// descriptors: otherwise omniORB would leave them unaccepted, their clients without an
// answer, and try again without a pause. To follow ORB_init(). refused: called for each,
// may be null.
void look_after_connections(void (*refused)());

} // namespace velmo::orb

#endif
