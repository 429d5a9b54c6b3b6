#ifndef VELMO_IDL_NIL_REFERENCES_H
#define VELMO_IDL_NIL_REFERENCES_H

namespace velmo::idl {

// Some brokers make a nil reference, and the lock for making it, at its first use,
// and look whether it is there without a lock. To be called before several threads
// use references; safe from any thread, and cheap when called again.
void make_nil_references();

} // namespace velmo::idl

#endif
