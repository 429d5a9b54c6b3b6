// Memory that is lost on purpose.
#ifndef VELMO_TESTS_SUPPORT_INTENDED_LEAK_H
#define VELMO_TESTS_SUPPORT_INTENDED_LEAK_H

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace velmo::tests {

// What this thread allocates while the object lives, the leak checker leaves alone.
class IntendedLeak {
public:
    IntendedLeak() {} // not trivial: the object is there for its life alone

#if defined(__SANITIZE_ADDRESS__)
private:
    __lsan::ScopedDisabler disabler;
#endif
};

} // namespace velmo::tests

#endif
