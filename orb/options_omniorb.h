// What clients and servers on omniORB share about starting an ORB.
#ifndef VELMO_ORB_OPTIONS_OMNIORB_H
#define VELMO_ORB_OPTIONS_OMNIORB_H

// The order matters: the second is written to be included after the first.
#include <omniORB4/CORBA.h>
#include <omniORB4/internal/giopStream.h>

namespace velmo::orb {

// Two sends fewer for messages between 8 and 32 KiB. Must precede ORB_init().
inline void tune_streams()
{
    omni::giopStream::bufferSize = 34816;
    omni::giopStream::directSendCutOff = 32769;
}

} // namespace velmo::orb

#endif
