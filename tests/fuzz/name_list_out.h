// A caller's NameList, and what has become of it.
#ifndef VELMO_TESTS_FUZZ_NAME_LIST_OUT_H
#define VELMO_TESTS_FUZZ_NAME_LIST_OUT_H

#include "tests/fuzz/input.h"
#include "tests/support/script.h"
#include "vl_api.h"

namespace velmo::tests {

class NameListOut {
public:
    explicit NameListOut(Input& input);

    NameList* pointer() { return given ? &list : nullptr; } // sometimes null

    void require_untouched() const;
    void require_cleared() const;
    void require_names(const Script::Names& names); // and frees them

private:
    char* earlier = nullptr;
    NameList list{77, &earlier};
    bool given;
};

} // namespace velmo::tests

#endif
