// Result codes as std::error_code, and what they have in common as std::error_condition.
#ifndef VELMO_CPP_ERROR_HPP
#define VELMO_CPP_ERROR_HPP

#include <string>
#include <system_error>

#include "../vl_api.h"

namespace velmo {

/** What codes have in common, so that a program need not list them:
 *
 *     if (result.error() == velmo::Condition::timed_out)
 */
enum class Condition {
    other = 1,        ///< none of these
    timed_out,        ///< the wait is over: 2000, 2016, 2017
    would_block,      ///< there was no wait: 2002, 2003
    no_data,          ///< nothing is there yet: 2001
    not_found,        ///< 2007, 2009, 3011, 3012, 4000, 4002, 4003
    already_exists,   ///< 2004, 2014
    invalid_argument, ///< a name, number or option: 4, 2008, 3007
    wrong_size,       ///< 2012, 4001
    no_room,          ///< memory, or a limit of the server: 5, 3008
    not_reached,      ///< no call was made: 99, 3000, 3001
    call_failed,      ///< 100 to 169: the server may have carried the operation out or not;
                      ///< or it was not asked, for what the caller passed
};

/** The condition of a code; other for VL_OK as well. */
inline Condition condition_of(int code) noexcept
{
    switch (code) {
    case TIME_OUT:
    case REPLAY_TIMEOUT:
    case SENDMSG_TIMEOUT:
        return Condition::timed_out;
    case EMPTY_QUEUE:
    case WOULD_BLOCK:
        return Condition::would_block;
    case NON_EXIST_DATA:
        return Condition::no_data;
    case INVAILD_PORT_HANDLE:
    case RECEIVER_IS_NOT_EXIST:
    case EVENT_DECLARE_NUL:
    case NO_MATCH_EVENT_CODE:
    case ABSTRACT_DATA_TYPE_NULL:
    case VARIABLE_IS_NOT_EXIST:
    case CONTENDER_IS_NUL:
        return Condition::not_found;
    case ALREADY_CONNECTED:
    case OBJECT_ALREADY_EXSIT:
        return Condition::already_exists;
    case PARAMETER_ERROR:
    case INVAILD_SINK_MODE:
    case INVAILD_NULL_PARAMETER:
        return Condition::invalid_argument;
    case PARAMETER_NOT_MATCH:
    case SIZE_IS_NOT_MATCH:
        return Condition::wrong_size;
    case MEMORY_ALLOCATION_FAI:
    case CREATE_DATAPOINT_FAI:
        return Condition::no_room;
    case VL_NO_REFERENCE:
    case NULL_SERVER_NAME:
    case NAMING_SERVER_NOT_ONLINE:
        return Condition::not_reached;
    default:
        return code > VL_REMOTE_FAILURE_FIRST && code <= VL_REMOTE_FAILURE_LAST
                   ? Condition::call_failed
                   : Condition::other;
    }
}

namespace detail {

// Wide characters of Linux are whole code points.
inline std::string utf8(const wchar_t* text)
{
    std::string bytes;
    const auto add = [&](unsigned long byte) { bytes += static_cast<char>(byte); };
    const auto continued = [&](unsigned long bits) { add(0x80 | (bits & 0x3F)); };
    for (; *text; ++text) {
        const unsigned long point = std::char_traits<wchar_t>::to_int_type(*text);
        if (point < 0x80) {
            add(point);
        } else if (point < 0x800) {
            add(0xC0 | point >> 6);
            continued(point);
        } else if (point < 0x10000) {
            add(0xE0 | point >> 12);
            continued(point >> 6);
            continued(point);
        } else {
            add(0xF0 | (point >> 18 & 0x07));
            continued(point >> 12);
            continued(point >> 6);
            continued(point);
        }
    }
    return bytes;
}

// The instances are one for all shared libraries of a process, also for those that hide
// what they do not export.
class VL_EXPORT Category final : public std::error_category {
public:
    const char* name() const noexcept override { return "velmo"; }

    std::string message(int code) const override { return utf8(::get_error_string(code)); }

    std::error_condition default_error_condition(int code) const noexcept override
    {
        switch (condition_of(code)) {
        case Condition::timed_out:
            return std::errc::timed_out;
        case Condition::would_block:
            return std::errc::operation_would_block;
        case Condition::invalid_argument:
            return std::errc::invalid_argument;
        case Condition::wrong_size:
            return std::errc::message_size;
        default:
            return {code, *this};
        }
    }
};

} // namespace detail

/** The category of result codes. A message is the text of get_error_string(), in the
 * language of the user, as UTF-8; no locale has to be set. Some conditions are also those
 * of std::errc: timed_out, operation_would_block, invalid_argument and message_size. */
VL_EXPORT inline const std::error_category& category() noexcept
{
    static const detail::Category one;
    return one;
}

namespace detail {

class VL_EXPORT ConditionCategory final : public std::error_category {
public:
    const char* name() const noexcept override { return "velmo condition"; }

    std::string message(int condition) const override
    {
        switch (static_cast<Condition>(condition)) {
        case Condition::timed_out:
            return "the wait is over";
        case Condition::would_block:
            return "there is nothing to be had without waiting";
        case Condition::no_data:
            return "there is no data";
        case Condition::not_found:
            return "there is no such thing";
        case Condition::already_exists:
            return "it exists already";
        case Condition::invalid_argument:
            return "an argument is not valid";
        case Condition::wrong_size:
            return "the size does not fit";
        case Condition::no_room:
            return "there is no room for it";
        case Condition::not_reached:
            return "the server cannot be reached";
        case Condition::call_failed:
            return "the call failed on its way";
        default:
            return "another result";
        }
    }

    bool equivalent(const std::error_code& error, int condition) const noexcept override
    {
        return error.category() == category() && error &&
               condition_of(error.value()) == static_cast<Condition>(condition);
    }
};

} // namespace detail

/** The category of Condition. Its messages are for logs, in English. */
VL_EXPORT inline const std::error_category& condition_category() noexcept
{
    static const detail::ConditionCategory one;
    return one;
}

inline std::error_condition make_error_condition(Condition condition) noexcept
{
    return {static_cast<int>(condition), condition_category()};
}

} // namespace velmo

/** So that codes compare with their names: error == TIME_OUT. */
inline std::error_code make_error_code(vl_result code) noexcept
{
    return {static_cast<int>(code), velmo::category()};
}

template <>
struct std::is_error_code_enum<vl_result> : std::true_type {
};

template <>
struct std::is_error_condition_enum<velmo::Condition> : std::true_type {
};

#endif
