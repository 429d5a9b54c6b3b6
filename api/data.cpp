#include "api/data.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include "api/bad_argument.h"

namespace velmo::api {

namespace {

// As a sequence owns it; null where there is no memory.
CORBA::Octet* copy_of(const void* data, CORBA::ULong size) noexcept
{
    try {
        CORBA::Octet* const copy = Velmo::DATA_BUFFER::allocbuf(size);
        if (copy)
            std::memcpy(copy, data, size);
        return copy;
    } catch (const std::bad_alloc&) {
        return nullptr;
    } catch (const CORBA::NO_MEMORY&) {
        return nullptr;
    }
}

} // namespace

OutgoingData::OutgoingData(const void* data, int length) noexcept
{
    if (length == 0)
        return;
    if (length < 0 || !data) {
        problem = Problem::bad_argument;
        return;
    }
    const auto size = static_cast<CORBA::ULong>(length);
    if (CORBA::Octet* const copy = copy_of(data, size))
        bytes.replace(size, size, copy, true);
    else
        problem = Problem::no_memory;
}

void OutgoingData::raise() const
{
    if (problem == Problem::bad_argument)
        throw BadArgument();
    throw std::bad_alloc();
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
