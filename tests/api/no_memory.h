// Allocations that fail when a test wants it.
#ifndef VELMO_TESTS_API_NO_MEMORY_H
#define VELMO_TESTS_API_NO_MEMORY_H

#include <cstddef>

namespace velmo::tests {

// While one lives, this thread gets nothing from new (std::nothrow), with which ACE
// makes its singletons; every other allocation succeeds. A program that contains
// no_memory.cpp has operators new and delete of its own.
class NoMemory {
public:
    // size: only objects of that size are refused, since some brokers make theirs like
    // this as well; 0 for any.
    explicit NoMemory(std::size_t size = 0);
    ~NoMemory();
    NoMemory(const NoMemory&) = delete;
    NoMemory& operator=(const NoMemory&) = delete;
};

} // namespace velmo::tests

#endif
