#include "tests/api/no_memory.h"

#include <cstdlib>
#include <new>

namespace {

thread_local bool starving = false;
thread_local std::size_t refused_size = 0;

bool is_refused(std::size_t size)
{
    return starving && (refused_size == 0 || refused_size == size);
}

} // namespace

namespace velmo::tests {

NoMemory::NoMemory(std::size_t size)
{
    refused_size = size;
    starving = true;
}

NoMemory::~NoMemory()
{
    starving = false;
}

} // namespace velmo::tests

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return is_refused(size) ? nullptr : std::malloc(size > 0 ? size : 1);
}

void* operator new(std::size_t size)
{
    if (void* block = std::malloc(size > 0 ? size : 1))
        return block;
    throw std::bad_alloc();
}

void operator delete(void* block) noexcept
{
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    std::free(block);
}

void operator delete(void* block, const std::nothrow_t&) noexcept
{
    std::free(block);
}
