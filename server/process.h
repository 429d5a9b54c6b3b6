// velmod as a process among others: its standard streams, and the service manager that
// has started it.
#ifndef VELMO_SERVER_PROCESS_H
#define VELMO_SERVER_PROCESS_H

#include <string>

namespace velmo::server {

// Before anything else happens in the process, /dev/null is opened for those of the
// standard streams that are closed: else the next files and sockets would get their
// numbers, and what is written to the streams.

// Whether this descriptor was there when the process began, and can be written to.
// Those that libraries have opened before main() were not.
bool is_given_for_writing(int descriptor);

// Lets the process open as many descriptors as it may, for as many clients: the usual limit
// of 1024 is for programs that call select().
void raise_descriptor_limit();

// Has the allocator keep what is freed, within limits, for what is allocated next: packets
// and values come and go, and memory that is fetched from the system anew each time costs
// more than all else that a call does. Before the first thread begins.
void keep_freed_memory();

// Tell the service manager how the process is, where NOTIFY_SOCKET names its socket;
// otherwise they do nothing. The status is a line for people.
void notify_ready(const std::string& status);
void notify_reloading();
void notify_stopping();

} // namespace velmo::server

#endif
