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

inline void fill(Velmo::NAME_SEQ& sequence, const std::vector<std::string>& names)
{
    sequence.length(static_cast<CORBA::ULong>(names.size()));
    for (CORBA::ULong i = 0; i < sequence.length(); ++i)
        sequence[i] = CORBA::string_dup(names[i].c_str());
}

// For a text that has been set before.
inline void fill(CORBA::String_out& text, const std::string& with)
{
    char* const replacement = CORBA::string_dup(with.c_str());
    CORBA::string_free(text.ptr());
    text = replacement;
}

} // namespace velmo::services

#endif
