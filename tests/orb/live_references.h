// How many references a test has left behind.
#ifndef VELMO_TESTS_ORB_LIVE_REFERENCES_H
#define VELMO_TESTS_ORB_LIVE_REFERENCES_H

namespace velmo::tests {

// Whether the broker lets references be counted; skip the test otherwise.
bool references_can_be_counted();

// The references to a server's services that exist in this process, where all
// duplicates of one count as one. A reference is gone only when every duplicate is
// released, so that one left over shows.
int live_references();

// Those among them that refer to port services.
int live_port_references();

} // namespace velmo::tests

#endif
