// Between the model's values and what travels.
#ifndef VELMO_SERVER_SERVICES_SEQUENCES_H
#define VELMO_SERVER_SERVICES_SEQUENCES_H

#include <algorithm>
#include <string>
#include <vector>

#include "orb/skeletons.h"
#include "server/model/packet_queue.h"

namespace velmo::services {

inline model::Data received(const Velmo::DATA_BUFFER& sequence)
{
    const CORBA::Octet* first = sequence.get_buffer();
    return std::make_shared<const model::Bytes>(first, first + sequence.length());
}

inline void fill(Velmo::DATA_BUFFER& sequence, const model::Bytes& bytes)
{
    sequence.length(static_cast<CORBA::ULong>(bytes.size()));
    std::copy(bytes.begin(), bytes.end(), sequence.get_buffer());
}

// The caller owns the result.
inline Velmo::NAME_SEQ* name_sequence(const std::vector<std::string>& names)
{
    Velmo::NAME_SEQ_var sequence = new Velmo::NAME_SEQ;
    sequence->length(static_cast<CORBA::ULong>(names.size()));
    for (CORBA::ULong i = 0; i < sequence->length(); ++i)
        sequence[i] = CORBA::string_dup(names[i].c_str());
    return sequence._retn();
}

} // namespace velmo::services

#endif
