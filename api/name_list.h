// Filling the caller's NameList.
#ifndef VELMO_API_NAME_LIST_H
#define VELMO_API_NAME_LIST_H

#include "VelmoC.h"
#include "vl_api.h"

namespace velmo::api {

// Empties a list without freeing what it held.
void clear(NameList& list);

// Names that a remote call brings back. A server in this process may deliver none.
class IncomingNames {
public:
    // Where the remote call puts them.
    Velmo::NAME_SEQ_out out() { return sequence.out(); }

    bool delivered() const { return sequence.operator->() != nullptr; }

    // Empty when none were delivered.
    Velmo::NAME_SEQ& names() { return delivered() ? sequence.inout() : none; }

private:
    Velmo::NAME_SEQ_var sequence;
    Velmo::NAME_SEQ none;
};

// Makes a list of the names, which it takes out of the sequence: a million of them need
// not be there twice. Throws std::bad_alloc, and then leaves what it has taken.
void fill(NameList& list, Velmo::NAME_SEQ& names);

// The names of the first sequence followed by those of the second.
void fill(NameList& list, Velmo::NAME_SEQ& first, Velmo::NAME_SEQ& second);

} // namespace velmo::api

#endif
