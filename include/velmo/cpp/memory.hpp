// Owners of what the library hands out.
#ifndef VELMO_CPP_MEMORY_HPP
#define VELMO_CPP_MEMORY_HPP

#include <cstddef>
#include <iterator>
#include <memory>
#include <string_view>
#include <utility>

#include "../vl_api.h"
#include "../vl_util.h"
#include "result.hpp"
#include "views.hpp"

namespace velmo {

namespace detail {

struct FreeBlock {
    void operator()(void* block) const noexcept { ::vl_free_memory(&block); }
};

struct FreeString {
    void operator()(char* string) const noexcept { ::vl_string_free(string); }
};

struct FreeNames {
    unsigned int count = 0;

    void operator()(char** names) const noexcept
    {
        for (unsigned int i = 0; i < count; ++i)
            ::vl_string_free(names[i]);
        void* block = names;
        ::vl_free_memory(&block);
    }
};

struct FreeConnections {
    int count = 0;

    void operator()(ConnectionBlock* first) const noexcept
    {
        ConnectionList list{first, count};
        ::vl_destory_connection_seq(&list);
    }
};

} // namespace detail

/** A block of bytes: a packet, a reply, a value. */
class Block {
public:
    Block() noexcept = default;

    /** Takes a block over. */
    Block(void* data, std::size_t size) noexcept : data_(data), size_(size) {}

    const void* data() const noexcept { return data_.get(); }
    std::size_t size() const noexcept { return data_ ? size_ : 0; }
    bool empty() const noexcept { return size() == 0; }

    Bytes bytes() const noexcept { return {data(), size()}; }
    operator Bytes() const noexcept { return bytes(); }

    std::string_view text() const noexcept { return bytes().text(); }

    /** A number or a struct; none when the size is another. */
    template <typename T>
    std::optional<T> as() const noexcept
    {
        return bytes().as<T>();
    }

    /** Gives it away, to be freed with vl_free_memory(). */
    void* release() noexcept { return data_.release(); }

private:
    std::unique_ptr<void, detail::FreeBlock> data_;
    std::size_t size_ = 0;
};

/** A string: a type, a description. There may be none, which is false, and like "". */
class Text {
public:
    Text() noexcept = default;

    /** Takes a string over; a null pointer is none. */
    explicit Text(char* string) noexcept : string_(string) {}

    explicit operator bool() const noexcept { return string_ != nullptr; }
    const char* c_str() const noexcept { return string_ ? string_.get() : ""; }
    std::string_view view() const noexcept { return c_str(); }
    operator std::string_view() const noexcept { return view(); }

    /** Gives it away, to be freed with vl_string_free(). */
    char* release() noexcept { return string_.release(); }

private:
    std::unique_ptr<char, detail::FreeString> string_;
};

/** A list of names, each a const char*:
 *
 *     for (std::string_view name : names)
 */
class Names {
public:
    Names() noexcept = default;

    /** Takes a list over. */
    explicit Names(const NameList& list) noexcept
        : names_(list.names, detail::FreeNames{list.count})
    {
    }

    std::size_t size() const noexcept { return names_ ? names_.get_deleter().count : 0; }
    bool empty() const noexcept { return size() == 0; }
    const char* const* begin() const noexcept { return names_.get(); }
    const char* const* end() const noexcept { return begin() + size(); }
    const char* operator[](std::size_t index) const noexcept { return begin()[index]; }

private:
    std::unique_ptr<char*, detail::FreeNames> names_;
};

/** Two ports that are connected; views of a Connections. */
struct Connection {
    std::string_view from;
    std::string_view to;
};

/** A list of connections, in the order of connecting. */
class Connections {
public:
    class Iterator {
    public:
        using iterator_category = std::input_iterator_tag;
        using value_type = Connection;
        using difference_type = std::ptrdiff_t;
        using pointer = const Connection*;
        using reference = Connection;

        explicit Iterator(const ConnectionBlock* block = nullptr) noexcept : block_(block)
        {
        }

        // A long first text runs on through the area of the second.
        Connection operator*() const noexcept
        {
            return {reinterpret_cast<const char*>(block_), block_->second_text};
        }
        Iterator& operator++() noexcept
        {
            block_ = block_->next;
            return *this;
        }
        Iterator operator++(int) noexcept // NOLINT(cert-dcl21-cpp)
        {
            const Iterator before = *this;
            ++*this;
            return before;
        }
        bool operator==(Iterator other) const noexcept { return block_ == other.block_; }
        bool operator!=(Iterator other) const noexcept { return block_ != other.block_; }

    private:
        const ConnectionBlock* block_;
    };

    Connections() noexcept = default;

    /** Takes a list over. */
    explicit Connections(const ConnectionList& list) noexcept
        : first_(list.first, detail::FreeConnections{list.count})
    {
    }

    std::size_t size() const noexcept
    {
        return static_cast<std::size_t>(std::distance(begin(), end()));
    }
    bool empty() const noexcept { return !first_; }
    Iterator begin() const noexcept { return Iterator(first_.get()); }
    Iterator end() const noexcept { return Iterator(); }

private:
    std::unique_ptr<ConnectionBlock, detail::FreeConnections> first_;
};

namespace detail {

// fill(&list) is a C function that fills a list.
template <typename Fill>
Result<Names> names_from(Fill fill)
{
    NameList list{};
    const int code = fill(&list);
    // When the memory ran out half-way the array is incomplete.
    if (code > VL_REMOTE_FAILURE_FIRST && code <= VL_REMOTE_FAILURE_LAST)
        list.count = 0;
    return {code, Names(list)};
}

// fill(&data, &length) is a C function that allocates a block.
template <typename Fill>
Result<Block> block_from(Fill fill)
{
    void* data = nullptr;
    unsigned int length = 0;
    const int code = fill(&data, &length);
    return {code, Block(data, length)};
}

} // namespace detail

} // namespace velmo

#endif
