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

const Velmo::NAME_SEQ& IncomingNames::names() const
{
    static const Velmo::NAME_SEQ none;
    return delivered() ? sequence.in() : none;
}

void fill(NameList& list, const Velmo::NAME_SEQ& names)
{
    fill(list, names, Velmo::NAME_SEQ());
}

void fill(NameList& list, const Velmo::NAME_SEQ& first, const Velmo::NAME_SEQ& second)
{
    list.count = first.length() + second.length();
    if (list.count > INT_MAX) // more than a signed count holds
        throw std::bad_alloc();
    list.names = static_cast<char**>(allocate_block(sizeof(char*) * list.count));
    char** next = list.names;
    for (const Velmo::NAME_SEQ* names : {&first, &second})
        for (CORBA::ULong i = 0; i < names->length(); ++i) {
            *next = CORBA::string_dup((*names)[i]);
            if (!*next++) // how some brokers say that there is no memory
                throw std::bad_alloc();
        }
}

} // namespace velmo::api
