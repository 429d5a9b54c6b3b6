// Memory that a test watches, and that runs out when it wants. A program that contains
// scarce_memory.cpp has operators new[] and delete[] of its own, and is linked with
// --wrap=malloc.
#ifndef VELMO_TESTS_API_SCARCE_MEMORY_H
#define VELMO_TESTS_API_SCARCE_MEMORY_H

#include <array>
#include <cstddef>

namespace velmo::tests {

// The arrays of one size that this thread makes with new[], as the broker makes strings
// and the bytes of sequences. A size that nothing else has tells them from all others.
// One object a thread at a time.
class WatchedArrays {
public:
    explicit WatchedArrays(std::size_t size);
    ~WatchedArrays();
    WatchedArrays(const WatchedArrays&) = delete;
    WatchedArrays& operator=(const WatchedArrays&) = delete;

    int made() const { return count; }
    int alive() const;

    // So many more are made; those after them get no memory.
    void refuse_after(int more) { limit = count + more; }
    void refuse_none() { limit = -1; }

    // For the operators.
    bool refuses(std::size_t bytes) const { return bytes == size && count == limit; }
    void note_made(void* array, std::size_t bytes);
    void note_deleted(void* array);

private:
    const std::size_t size;
    int limit = -1;
    int count = 0;
    std::array<void*, 64> arrays{};
};

// While one lives, this thread's malloc() gives the program's own code, the library's
// included but no other library's, so many blocks and then none.
class NoBlocks {
public:
    explicit NoBlocks(int after = 0);
    ~NoBlocks();
    NoBlocks(const NoBlocks&) = delete;
    NoBlocks& operator=(const NoBlocks&) = delete;
};

} // namespace velmo::tests

#endif
