// The sockets on which this process waits for clients.
#ifndef VELMO_ORB_LISTENING_H
#define VELMO_ORB_LISTENING_H

namespace velmo::orb {

// Lets as many clients be about to connect to them as the system allows. Brokers ask for
// five, omniORB on unix sockets and TAO on all; further clients are kept waiting, or take
// it for the server's absence. To follow the listening.
void lengthen_queues();

} // namespace velmo::orb

#endif
