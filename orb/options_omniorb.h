// What clients and servers on omniORB share about starting an ORB.
#ifndef VELMO_ORB_OPTIONS_OMNIORB_H
#define VELMO_ORB_OPTIONS_OMNIORB_H

// The order matters: the second is written to be included after the first.
#include <omniORB4/CORBA.h>
#include <omniORB4/internal/giopStream.h>

namespace velmo::orb {

// Two sends fewer for messages of 8 to 64 KiB. Must precede ORB_init().
//
// A stream has two such buffers, and data of whole pages beside them. Their size is no
// multiple of a half or a quarter of a page, since copying between addresses that differ
// by a few bytes beyond whole pages takes sixteen times as long on some processors.
inline void tune_streams()
{
    omni::giopStream::bufferSize = 67072;
    omni::giopStream::directSendCutOff = 66560;
}

} // namespace velmo::orb

#endif
