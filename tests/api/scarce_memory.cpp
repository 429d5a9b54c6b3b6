#include "tests/api/scarce_memory.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

thread_local velmo::tests::WatchedArrays* watched = nullptr;

constexpr int any_number = -1;
thread_local int blocks_left = any_number;

} // namespace

// What --wrap=malloc makes of malloc: our own code calls the second, and the first is
// the real one.
extern "C" {
void* __real_malloc(std::size_t size);
void* __wrap_malloc(std::size_t size);
}

void* __wrap_malloc(std::size_t size)
{
    if (blocks_left == 0)
        return nullptr;
    if (blocks_left != any_number)
        --blocks_left;
    return __real_malloc(size);
}

namespace velmo::tests {

WatchedArrays::WatchedArrays(std::size_t array_size) : size(array_size)
{
    watched = this;
}

WatchedArrays::~WatchedArrays()
{
    watched = nullptr;
}

int WatchedArrays::alive() const
{
    return static_cast<int>(
        std::count_if(arrays.begin(), arrays.end(), [](void* array) { return array; }));
}

void WatchedArrays::note_made(void* array, std::size_t bytes)
{
    if (bytes != size)
        return;
    ++count;
    const auto free_slot = std::find(arrays.begin(), arrays.end(), nullptr);
    if (free_slot == arrays.end())
        std::abort(); // more than a test can mean to watch
    *free_slot = array;
}

void WatchedArrays::note_deleted(void* array)
{
    if (array)
        std::replace(arrays.begin(), arrays.end(), array, static_cast<void*>(nullptr));
}

NoBlocks::NoBlocks(int after)
{
    blocks_left = after;
}

NoBlocks::~NoBlocks()
{
    blocks_left = any_number;
}

} // namespace velmo::tests

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
    if (watched && watched->refuses(size))
        return nullptr;
    void* const array = __real_malloc(size > 0 ? size : 1);
    if (watched && array)
        watched->note_made(array, size);
    return array;
}

void* operator new[](std::size_t size)
{
    if (void* const array = operator new[](size, std::nothrow))
        return array;
    throw std::bad_alloc();
}

void operator delete[](void* array) noexcept
{
    if (watched)
        watched->note_deleted(array);
    std::free(array);
}

void operator delete[](void* array, std::size_t) noexcept
{
    operator delete[](array);
}

void operator delete[](void* array, const std::nothrow_t&) noexcept
{
    operator delete[](array);
}
