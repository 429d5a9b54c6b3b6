// Bytes on their way between the caller's memory and a remote call.
#ifndef VELMO_API_DATA_H
#define VELMO_API_DATA_H

#include <cstddef>

#include "VelmoC.h"

namespace velmo::api {

// The caller's data, copied for a remote call.
class OutgoingData {
public:
    // What is wrong shows in sequence().
    OutgoingData(const void* data, int length) noexcept;

    // Throws BadArgument for a negative length and for no data with a positive one, and
    // std::bad_alloc where there was no memory for the copy.
    const Velmo::DATA_BUFFER& sequence() const
    {
        if (problem != Problem::none)
            raise();
        return bytes;
    }

private:
    enum class Problem { none, bad_argument, no_memory };

    [[noreturn, gnu::cold]] void raise() const;

    Velmo::DATA_BUFFER bytes;
    Problem problem = Problem::none;
};

// The data that a remote call brings back. A server in this process may deliver
// none, which is taken as empty.
class IncomingData {
public:
    // Where the remote call puts them.
    Velmo::DATA_BUFFER_out out() { return sequence.out(); }

    unsigned int length() const;
    void copy_to(void* buffer) const { copy_to(buffer, length()); }
    void copy_to(void* buffer, unsigned int max) const;

    // A copy in a new block of the C heap, never null even when it is empty.
    // Throws std::bad_alloc.
    void* new_block() const;

    // Lets the data live on, owned by nobody.
    void abandon();

private:
    Velmo::DATA_BUFFER_var sequence;
};

// A block of the C heap, never null even when bytes is 0. Throws std::bad_alloc.
void* allocate_block(std::size_t bytes);

} // namespace velmo::api

#endif
