// What a caller has handed in and cannot be used.
#ifndef VELMO_API_BAD_ARGUMENT_H
#define VELMO_API_BAD_ARGUMENT_H

namespace velmo::api {

// Thrown before the remote call: the call frame gives the operation's failure code, and
// has no reason to doubt the reference.
struct BadArgument {};

inline void require(bool usable)
{
    if (!usable)
        throw BadArgument();
}

} // namespace velmo::api

#endif
