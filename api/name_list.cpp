#include "api/name_list.h"

#include "api/data.h"

namespace velmo::api {

void clear(NameList& list)
{
    list.count = 0;
    list.names = nullptr;
}

void fill(NameList& list, const Velmo::NAME_SEQ& names)
{
    const CORBA::ULong count = names.length();
    list.count = count;
    list.names = static_cast<char**>(allocate_block(sizeof(char*) * count));
    for (CORBA::ULong i = 0; i < count; ++i)
        list.names[i] = CORBA::string_dup(names[i]);
}

} // namespace velmo::api
