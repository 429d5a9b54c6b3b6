// Whether a registry's locks are free, for tests.
#ifndef VELMO_TESTS_SUPPORT_REGISTRY_LOCKS_H
#define VELMO_TESTS_SUPPORT_REGISTRY_LOCKS_H

#include <gtest/gtest.h>

#include "registry/vlServerReference.h"
#include "vlReferenceContainer.h"

namespace velmo::tests {

// Nobody holds the registry's lock or that of a server's entry, for reading or writing.
inline void expect_locks_free(vlReferenceContainer& registry)
{
    ASSERT_EQ(registry.lock.tryacquire_write(), 0);
    registry.lock.release();
    for (auto& entry : registry.serverMap) {
        ASSERT_EQ(entry.second->lock.tryacquire_write(), 0);
        entry.second->lock.release();
    }
}

} // namespace velmo::tests

#endif
