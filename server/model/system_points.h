// The points that a server itself provides: they tell how it is.
#ifndef VELMO_SERVER_MODEL_SYSTEM_POINTS_H
#define VELMO_SERVER_MODEL_SYSTEM_POINTS_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmo::model {

// Their names begin so, and clients cannot create, write or remove such points.
constexpr std::string_view system_prefix = "$SYS/";

// The type name that lists them; not a template.
constexpr std::string_view system_type = "$SYS";

// One service's share of them. Any function from any thread.
class SystemPoints {
public:
    virtual ~SystemPoints() = default;

    // Adds the full names that exist at this moment.
    virtual void list(std::vector<std::string>& names) const = 0;

    // The value at this moment, as text; none when this source has no such point.
    virtual std::optional<std::string> read(std::string_view name) const = 0;
};

} // namespace velmo::model

#endif
