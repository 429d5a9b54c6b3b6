// A caller's NameList.
#ifndef VELMO_TESTS_SUPPORT_CALLERS_LIST_H
#define VELMO_TESTS_SUPPORT_CALLERS_LIST_H

#include <string>
#include <vector>

#include "orb/corba.h"
#include "vl_api.h"

namespace velmo::tests {

// Holds something of the caller's before each call, and gives back what a call has
// put there.
class CallersList {
public:
    CallersList() { forget(); }
    ~CallersList() { give_back(); }
    CallersList(const CallersList&) = delete;
    CallersList& operator=(const CallersList&) = delete;

    NameList* record() { return &list; }

    bool is_untouched() const { return list.count == 77 && list.names == callers; }
    bool is_cleared() const { return list.count == 0 && list.names == nullptr; }

    std::vector<std::string> names() const
    {
        return std::vector<std::string>(list.names, list.names + list.count);
    }

    // Frees the names and the array by the documented means.
    void give_back()
    {
        if (list.names && list.names != callers) {
            for (unsigned int i = 0; i < list.count; ++i)
                CORBA::string_free(list.names[i]);
            vl_free_memory(reinterpret_cast<void**>(&list.names));
        }
        forget();
    }

    // Back to what the caller had there.
    void forget()
    {
        list.count = 77;
        list.names = callers;
    }

private:
    char* callers[1] = {nullptr};
    NameList list{};
};

// The result of a call that may fill a list; the list is freed.
template <class Call>
int with_name_list(Call call)
{
    CallersList list;
    return call(list.record());
}

} // namespace velmo::tests

#endif
