// Filling the caller's NameList.
#ifndef VELMO_API_NAME_LIST_H
#define VELMO_API_NAME_LIST_H

#include "VelmoC.h"
#include "vl_api.h"

namespace velmo::api {

// Empties a list without freeing what it held.
void clear(NameList& list);

// Makes a list of copies of the names. Throws std::bad_alloc.
void fill(NameList& list, const Velmo::NAME_SEQ& names);

} // namespace velmo::api

#endif
