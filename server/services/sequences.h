// Between the model's values and what travels.
#ifndef VELMO_SERVER_SERVICES_SEQUENCES_H
#define VELMO_SERVER_SERVICES_SEQUENCES_H

#include <algorithm>
#include <string>
#include <vector>

#include "orb/served_call.h"
#include "orb/skeletons.h"
#include "server/model/data.h"
#include "server/model/name_table.h"

namespace velmo::services {

// What a call has brought, without a copy where it is the call's own.
inline model::Data received(const Velmo::DATA_BUFFER& sequence)
{
    const std::size_t length = sequence.length();
    if (orb::ServedCall::current() && length > 0) {
        // The broker has made it for this call; only the mapping calls it constant.
        auto& own = const_cast<Velmo::DATA_BUFFER&>(sequence);
        if (CORBA::Octet* const block = own.get_buffer(true))
            return std::make_shared<const model::Bytes>(block, length,
                                                        Velmo::DATA_BUFFER::freebuf);
    }
    const CORBA::Octet* first = sequence.get_buffer();
    return std::make_shared<const model::Bytes>(first, first + length);
}

// For an answer: lent, where nobody but the broker sees the sequence, else copied.
inline void fill(Velmo::DATA_BUFFER& sequence, const model::Data& data)
{
    const auto length = static_cast<CORBA::ULong>(data->size());
    if (orb::ServedCall* const call = orb::ServedCall::current()) {
        call->keep(data);
        sequence.replace(length, length, const_cast<CORBA::Octet*>(data->data()), false);
        return;
    }
    sequence.length(length);
    std::copy(data->begin(), data->end(), sequence.get_buffer());
}

inline void fill(Velmo::NAME_SEQ& sequence, const std::vector<std::string>& names)
{
    sequence.length(static_cast<CORBA::ULong>(names.size()));
    for (CORBA::ULong i = 0; i < sequence.length(); ++i)
        sequence[i] = CORBA::string_dup(names[i].c_str());
}

inline void fill(Velmo::NAME_SEQ& sequence, model::NameTable&& names)
{
    const auto count = static_cast<CORBA::ULong>(names.size());
    if (orb::ServedCall* const call = orb::ServedCall::current()) {
        const auto lent = std::make_shared<const model::NameTable>(std::move(names));
        call->keep(lent);
        sequence.replace(count, count, const_cast<char**>(lent->data()), false);
        return;
    }
    sequence.length(count);
    for (CORBA::ULong i = 0; i < count; ++i)
        sequence[i] = CORBA::string_dup(names.data()[i]);
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
