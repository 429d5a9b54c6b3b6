// What has to hold, whatever the input.
#ifndef VELMO_TESTS_FUZZ_REQUIRE_H
#define VELMO_TESTS_FUZZ_REQUIRE_H

#include <cstdio>
#include <cstdlib>

namespace velmo::tests {

// The fuzzer keeps the input for which it does not.
inline void require(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

} // namespace velmo::tests

#endif
