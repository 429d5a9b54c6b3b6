// What a call gives: a value and a code.
#ifndef VELMO_CPP_RESULT_HPP
#define VELMO_CPP_RESULT_HPP

#include <cstdlib>
#include <utility>

#include "error.hpp"

namespace velmo {

/** The result of a call that gives no value. True means success.
 *
 *     if (auto sent = ports.send(42, "hello"); !sent)
 *         return sent.error();
 *     ports.send(42, "hello").value(); // or throws
 *
 * What is said here holds for Result<T> as well.
 */
template <typename T = void>
class Result;

template <>
class [[nodiscard]] Result<void> {
public:
    Result(int code) noexcept : code_(code) {}

    explicit operator bool() const noexcept { return code_ == VL_OK; }

    /** The number; VL_OK for success. */
    int code() const noexcept { return code_; }

    /** The code as others take it; a false one for success. */
    std::error_code error() const noexcept { return {code_, category()}; }

    /** Does nothing after a success. Otherwise throws std::system_error with error(), or
     * calls std::abort() where exceptions are switched off. */
    void value() const
    {
        if (code_ == VL_OK)
            return;
#ifdef __cpp_exceptions
        throw std::system_error(error());
#else
        std::abort();
#endif
    }

    /** The same result, when it is success or one of these codes that are as good:
     *
     *     ports.create("inbox", 42).or_good(OBJECT_ALREADY_EXSIT).value();
     */
    template <typename... Codes>
    Result or_good(Codes... codes) const noexcept
    {
        return ((code_ == static_cast<int>(codes)) || ...) ? Result(VL_OK) : *this;
    }

private:
    int code_;
};

/** The result of a call that gives a T. It has one after a failure, too: an empty one, or
 * 0. */
template <typename T>
class [[nodiscard]] Result : public Result<void> {
public:
    Result(int code, T value = T()) : Result<void>(code), value_(std::move(value)) {}

    T& operator*() & noexcept { return value_; }
    const T& operator*() const& noexcept { return value_; }
    T operator*() && { return std::move(value_); } // outlives the result in a for loop
    T* operator->() noexcept { return &value_; }
    const T* operator->() const noexcept { return &value_; }

    /** The value of a success; see Result<void>::value(). */
    T& value() &
    {
        Result<void>::value();
        return value_;
    }
    const T& value() const&
    {
        Result<void>::value();
        return value_;
    }
    T value() &&
    {
        Result<void>::value();
        return std::move(value_);
    }

    /** The value of a success, or another one. */
    template <typename U>
    T value_or(U&& other) &&
    {
        return *this ? std::move(value_) : static_cast<T>(std::forward<U>(other));
    }
    template <typename U>
    T value_or(U&& other) const&
    {
        return *this ? value_ : static_cast<T>(std::forward<U>(other));
    }

    /** As Result<void>::or_good(), with the value: the empty one, or 0, after a failure. */
    template <typename... Codes>
    Result or_good(Codes... codes) &&
    {
        return {Result<void>::or_good(codes...).code(), std::move(value_)};
    }

private:
    T value_;
};

} // namespace velmo

#endif
