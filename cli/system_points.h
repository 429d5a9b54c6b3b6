// What a server tells about itself: the points whose names begin with "$SYS/".
#ifndef VELMO_CLI_SYSTEM_POINTS_H
#define VELMO_CLI_SYSTEM_POINTS_H

#include <optional>
#include <string>
#include <vector>

#include "cli/session.h"

namespace velmo::cli {

constexpr const char* port_points = "$SYS/ports/";
constexpr const char* event_points = "$SYS/events/";
constexpr const char* contention_points = "$SYS/contention/";

// Of all points FOLDER NAME "/" PROPERTY the names, in their order. Throws Failure.
std::vector<std::string> system_names(const Session& session, const std::string& folder,
                                      const std::string& property);

// The value of such a point; none when it is not there. Throws Failure.
std::optional<std::string> system_value(const Session& session, const std::string& point);

// The same, as a number; 0 for anything else.
unsigned long long system_number(const Session& session, const std::string& point);

} // namespace velmo::cli

#endif
