// Memory that is lost on purpose.
#ifndef VELMO_TESTS_SUPPORT_INTENDED_LEAK_H
#define VELMO_TESTS_SUPPORT_INTENDED_LEAK_H

#if defined(__has_feature) // how Clang tells what GCC tells by a macro
#if __has_feature(address_sanitizer)
#define VELMO_TESTS_LEAK_CHECKER
#endif
#elif defined(__SANITIZE_ADDRESS__)
#define VELMO_TESTS_LEAK_CHECKER
#endif
#if defined(VELMO_TESTS_LEAK_CHECKER)
#include <sanitizer/lsan_interface.h>
#endif

namespace velmo::tests {

// What this thread allocates while the object lives, the leak checker leaves alone.
class IntendedLeak {
public:
    IntendedLeak() {} // not trivial: the object is there for its life alone

#if defined(VELMO_TESTS_LEAK_CHECKER)
private:
    __lsan::ScopedDisabler disabler;
#endif
};

} // namespace velmo::tests

#endif
