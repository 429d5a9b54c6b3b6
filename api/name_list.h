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
    const Velmo::NAME_SEQ& names() const;

private:
    Velmo::NAME_SEQ_var sequence;
};

// Makes a list of copies of the names. Throws std::bad_alloc, and then leaves what it
// has copied.
void fill(NameList& list, const Velmo::NAME_SEQ& names);

// The names of the first sequence followed by those of the second.
void fill(NameList& list, const Velmo::NAME_SEQ& first, const Velmo::NAME_SEQ& second);

} // namespace velmo::api

#endif
