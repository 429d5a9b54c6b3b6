// Data template points: named values.
#ifndef VELMO_CPP_POINTS_HPP
#define VELMO_CPP_POINTS_HPP

#include <climits>

#include "server.hpp"

namespace velmo {

/** What a point is, and its value at one moment. */
struct PointInfo {
    Text type;
    Text description;
    Block value; ///< empty also where there is no data
};

/** The points of a server and realm. */
class Points : public detail::ServerUser {
public:
    explicit Points(Server server = {}) noexcept : ServerUser(std::move(server)) {}

    /** Creates a point of the type that a template gives: "float64", "text".
     * vl_create_data_template_point(). */
    Result<> create(Name point, Name type) const
    {
        return ::vl_create_data_template_point(point.c_str(), type.c_str(), name(),
                                               realm());
    }

    /** Creates points of one template, all or none. vl_create_set().
     *
     * @param set      the set's name, to which the points' names are added after a "/"
     * @param type     the template's name
     * @param members  the points' names, one a line
     */
    Result<> create_set(Name set, Name type, Bytes members) const
    {
        return ::vl_create_set(set.c_str(), type.c_str(), members.data(), members.length(),
                               name(), realm());
    }

    /** Removes a point. vl_remove_template_point(). */
    Result<> remove(Name point) const
    {
        return ::vl_remove_template_point(point.c_str(), name(), realm());
    }

    // ----------------------------------------------------------- values

    /** Reads a value into a buffer, cut without a sign where it is longer; the length of
     * a shorter one is not told. vl_get_data_template_point(). */
    Result<> read(Name point, Buffer buffer) const
    {
        const auto size = buffer.size() < INT_MAX ? buffer.size() : INT_MAX;
        return ::vl_get_data_template_point(point.c_str(), buffer.data(),
                                            static_cast<int>(size), name(), realm());
    }

    /** Reads a number, a bool or a struct that is as long as the point's template says: of
     * a longer value these are the first bytes, and a shorter one is filled up with zeros.
     * Where that is not known, info().value.as<T>() tells. vl_get_data_template_point(). */
    template <typename T>
    Result<T> get(Name point) const
    {
        static_assert(detail::is_plain<T>);
        if constexpr (std::is_same_v<T, bool>) { // not every byte is one
            const auto byte = get<unsigned char>(point);
            return {byte.code(), *byte != 0};
        } else {
            T value{};
            const auto read_it = read(point, Buffer(&value, sizeof value));
            return {read_it.code(), value};
        }
    }

    /** Writes a value: the bytes as they are. vl_set_data_template_point(). */
    Result<> set(Name point, Bytes value) const
    {
        return ::vl_set_data_template_point(point.c_str(), value.data(), value.length(),
                                            name(), realm());
    }

    /** Writes a number, a bool or a struct, whose size has to be that of the point's
     * template: 20.0 for "float64", std::int32_t{20} for "int32". */
    template <typename T, std::enable_if_t<detail::is_plain<T>, int> = 0>
    Result<> set(Name point, const T& value) const
    {
        return set(point, bytes_of(value));
    }

    // ---------------------------------------------------- about a point

    /** All about a point, at one moment. get_dtp_info2(). */
    Result<PointInfo> info(Name point) const
    {
        char* type = nullptr;
        char* description = nullptr;
        void* value = nullptr;
        unsigned int length = 0;
        const int code = ::get_dtp_info2(point.c_str(), &type, &description, &value,
                                         &length, name(), realm());
        return {code, PointInfo{Text(type), Text(description), Block(value, length)}};
    }

    /** Its type and description, at one moment; value is left empty. get_dtp_info(), which
     * does not tell how long the value is. */
    Result<PointInfo> texts(Name point) const
    {
        char* type = nullptr;
        char* description = nullptr;
        void* value = nullptr;
        const int code =
            ::get_dtp_info(point.c_str(), &type, &description, &value, name(), realm());
        return {code, PointInfo{Text(type), Text(description), Block(value, 0)}};
    }

    /** Describes a point in free text. vl_set_data_template_point_description(). */
    Result<> describe(Name point, Name description) const
    {
        return ::vl_set_data_template_point_description(point.c_str(), description.c_str(),
                                                        name(), realm());
    }

    /** A point's free text; none after any failure, "" for a point that does not exist.
     * vl_get_data_template_point_description(). */
    Text description(Name point) const
    {
        return Text(
            ::vl_get_data_template_point_description(point.c_str(), name(), realm()));
    }

    /** The name of a point's template; none after any failure, "" for a point that does not
     * exist. vl_get_data_template_point_type(). */
    Text type(Name point) const
    {
        return Text(::vl_get_data_template_point_type(point.c_str(), name(), realm()));
    }

    // ------------------------------------------------- names of points

    /** All points but for the server's own. vl_get_all_point_name(). */
    Result<Names> all() const
    {
        return detail::names_from(
            [&](NameList* list) { return ::vl_get_all_point_name(list, name(), realm()); });
    }

    /** The points of one template, or "$SYS" for the server's own.
     * vl_get_all_point_by_typename(). */
    Result<Names> of_type(Name type) const
    {
        return detail::names_from([&](NameList* list) {
            return ::vl_get_all_point_by_typename(list, type.c_str(), name(), realm());
        });
    }

    /** The points that hold no data. vl_check_null_data(). */
    Result<Names> without_data() const
    {
        return detail::names_from(
            [&](NameList* list) { return ::vl_check_null_data(list, name(), realm()); });
    }

    /** The templates. vl_get_query_data_type(). */
    Result<Names> types() const
    {
        return detail::names_from([&](NameList* list) {
            return ::vl_get_query_data_type(list, name(), realm());
        });
    }
};

} // namespace velmo

#endif
