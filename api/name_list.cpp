#include "api/name_list.h"

#include <climits>
#include <initializer_list>
#include <new>

#include "api/data.h"

namespace velmo::api {

void clear(NameList& list)
{
    list.count = 0;
    list.names = nullptr;
}

namespace {

// The caller's own from now on. A sequence may not own its names, and empty ones may be
// a constant of the broker's.
char* take(Velmo::NAME_SEQ& names, CORBA::ULong i)
{
    const char* const name = names[i];
    const bool can_be_taken = names.release() && *name;
    char* const taken = can_be_taken ? names[i]._retn() : CORBA::string_dup(name);
    if (!taken) // how some brokers say that there is no memory
        throw std::bad_alloc();
    return taken;
}

} // namespace

void fill(NameList& list, Velmo::NAME_SEQ& names)
{
    Velmo::NAME_SEQ none;
    fill(list, names, none);
}

void fill(NameList& list, Velmo::NAME_SEQ& first, Velmo::NAME_SEQ& second)
{
    list.count = first.length() + second.length();
    if (list.count > INT_MAX) // more than a signed count holds
        throw std::bad_alloc();
    list.names = static_cast<char**>(allocate_block(sizeof(char*) * list.count));
    char** next = list.names;
    for (Velmo::NAME_SEQ* names : {&first, &second})
        for (CORBA::ULong i = 0; i < names->length(); ++i)
            *next++ = take(*names, i);
}

} // namespace velmo::api
