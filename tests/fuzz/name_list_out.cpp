#include "tests/fuzz/name_list_out.h"

namespace velmo::tests {

NameListOut::NameListOut(Input& input) : given(!input.once_in(8)) {}

void NameListOut::require_untouched() const
{
    require(list.count == 77 && list.names == &earlier, "the list stays as it was");
}

void NameListOut::require_cleared() const
{
    require(!given || (list.count == 0 && !list.names), "the list is empty");
}

void NameListOut::require_names(const Script::Names& names)
{
    require(list.count == names.size() && list.names, "all names are there");
    for (unsigned int i = 0; i < list.count; ++i) {
        require(names[i] == list.names[i], "the name is the server's");
        CORBA::string_free(list.names[i]);
    }
    void* block = list.names;
    vl_free_memory(&block);
    require(!block, "a freed block is forgotten");
}

} // namespace velmo::tests
