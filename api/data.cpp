#include "api/data.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include "api/bad_argument.h"

namespace velmo::api {

OutgoingData::OutgoingData(const void* data, int length) noexcept
{
    if (length < 0 || (length > 0 && !data)) {
        problem = std::make_exception_ptr(BadArgument());
        return;
    }
    try {
        bytes.length(static_cast<CORBA::ULong>(length));
        if (length > 0)
            std::memcpy(bytes.get_buffer(), data, static_cast<std::size_t>(length));
    } catch (const std::bad_alloc&) {
        problem = std::current_exception();
    } catch (const CORBA::NO_MEMORY&) {
        problem = std::current_exception();
    }
}

const Velmo::DATA_BUFFER& OutgoingData::sequence() const
{
    if (problem)
        std::rethrow_exception(problem);
    return bytes;
}

unsigned int IncomingData::length() const
{
    return sequence.operator->() ? sequence->length() : 0;
}

void IncomingData::copy_to(void* buffer, unsigned int max) const
{
    if (const unsigned int size = std::min(length(), max))
        std::memcpy(buffer, sequence->get_buffer(), size);
}

void* IncomingData::new_block() const
{
    void* block = allocate_block(length());
    copy_to(block);
    return block;
}

void IncomingData::abandon()
{
    static_cast<void>(sequence._retn());
}

void* allocate_block(std::size_t bytes)
{
    void* block = std::malloc(bytes > 0 ? bytes : 1);
    if (!block)
        throw std::bad_alloc();
    return block;
}

} // namespace velmo::api
