// Views of memory that belongs to the caller, and how long to wait.
#ifndef VELMO_CPP_VIEWS_HPP
#define VELMO_CPP_VIEWS_HPP

#include <chrono>
#include <climits>
#include <cstddef>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

namespace velmo {

/** A string for a call: NUL-terminated, any bytes but NUL. A view that lives for the call.
 */
class Name {
public:
    Name(const char* string) noexcept : string_(string) {}
    Name(const std::string& string) noexcept : string_(string.c_str()) {}

    const char* c_str() const noexcept { return string_; }

private:
    const char* string_;
};

/** Elements in a row that belong to somebody else, as std::span of C++20. */
template <typename T>
class Span {
public:
    constexpr Span() noexcept = default;
    constexpr Span(T* data, std::size_t size) noexcept : data_(data), size_(size) {}

    constexpr T* data() const noexcept { return data_; }
    constexpr std::size_t size() const noexcept { return size_; }
    constexpr bool empty() const noexcept { return size_ == 0; }
    constexpr T* begin() const noexcept { return data_; }
    constexpr T* end() const noexcept { return data_ + size_; }
    constexpr T& operator[](std::size_t index) const noexcept { return data_[index]; }

private:
    T* data_ = nullptr;
    std::size_t size_ = 0;
};

namespace detail {

// Strings, vectors, arrays and spans of elements that are nothing but their bytes.
template <typename C>
using Element = std::remove_reference_t<decltype(*std::declval<C&>().data())>;

template <typename C, typename = void>
inline constexpr bool is_contiguous = false;
template <typename C>
inline constexpr bool
    is_contiguous<C, std::void_t<Element<C>, decltype(std::declval<C&>().size())>> =
        std::is_trivially_copyable_v<Element<C>>;

// A number or a plain struct, as opposed to what holds or leads to bytes elsewhere.
template <typename T>
inline constexpr bool is_plain = std::is_trivially_copyable_v<T> && !std::is_pointer_v<T> &&
                                 !std::is_array_v<T> && !is_contiguous<T>;

} // namespace detail

/** Bytes to be read: of a text, a container, or any memory. */
class Bytes : public Span<const std::byte> {
public:
    constexpr Bytes() noexcept = default;
    Bytes(const void* data, std::size_t size) noexcept
        : Span(static_cast<const std::byte*>(data), size)
    {
    }

    /** A text without its NUL; nothing for a null pointer. */
    Bytes(const char* text) noexcept : Bytes(text, text ? std::strlen(text) : 0) {}

    /** A std::string, std::string_view, std::vector, std::array... */
    template <typename C, std::enable_if_t<detail::is_contiguous<const C>, int> = 0>
    Bytes(const C& container) noexcept
        : Bytes(container.data(), container.size() * sizeof(*container.data()))
    {
    }

    std::string_view text() const noexcept
    {
        return {reinterpret_cast<const char*>(data()), size()};
    }

    /** A number or a struct; none when the size is another. */
    template <typename T>
    std::optional<T> as() const noexcept
    {
        static_assert(detail::is_plain<T>);
        if (size() != sizeof(T))
            return std::nullopt;
        T value;
        std::memcpy(&value, data(), sizeof value);
        return value;
    }

    /** The length as the C functions take it; -1, which they refuse, for what an int cannot
     * hold. */
    int length() const noexcept
    {
        return size() <= INT_MAX ? static_cast<int>(size()) : -1;
    }
};

/** The bytes of a number or a struct. A view. */
template <typename T, std::enable_if_t<detail::is_plain<T>, int> = 0>
Bytes bytes_of(const T& value) noexcept
{
    return {&value, sizeof value};
}

/** Room for bytes: a container's, or any memory. */
class Buffer : public Span<std::byte> {
public:
    constexpr Buffer() noexcept = default;
    Buffer(void* data, std::size_t size) noexcept
        : Span(static_cast<std::byte*>(data), size)
    {
    }

    /** All elements that it has: resize() it before. */
    template <typename C, std::enable_if_t<detail::is_contiguous<C> &&
                                               !std::is_const_v<detail::Element<C>>,
                                           int> = 0>
    Buffer(C& container) noexcept
        : Buffer(container.data(), container.size() * sizeof(*container.data()))
    {
    }
};

/** How long a call may wait; no wait when it is made from nothing. */
class Wait {
public:
    constexpr Wait() noexcept = default;

    /** Rounded up to milliseconds. Negative ones are none. */
    template <typename Rep, typename Period>
    constexpr Wait(std::chrono::duration<Rep, Period> limit) noexcept
    {
        const double wanted = std::chrono::duration<double, std::milli>(limit).count();
        if (wanted >= most)
            option_ = most;
        else if (wanted > 0)
            option_ = static_cast<unsigned int>(wanted);
        if (option_ < wanted && option_ < most)
            ++option_;
    }

    /** As long as the server allows. */
    static constexpr Wait longest() noexcept
    {
        Wait wait;
        wait.option_ = most;
        return wait;
    }

    /** As the C functions take it. */
    constexpr unsigned int option() const noexcept { return option_; }

private:
    static constexpr unsigned int most = 0xFFFFFFFF;
    unsigned int option_ = 0;
};

} // namespace velmo

#endif
