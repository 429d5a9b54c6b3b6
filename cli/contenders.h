// Contenders as the commands on them know them.
#ifndef VELMO_CLI_CONTENDERS_H
#define VELMO_CLI_CONTENDERS_H

#include <optional>
#include <string>

#include "cli/session.h"

namespace velmo::cli {

using Epoch = unsigned long long;

struct GroupState {
    Epoch epoch = 0;    // of the master; without one, of the last one
    std::string master; // "" for none
};

// None when nobody ever stood in the group. Throws Failure.
std::optional<GroupState> group_state(const Session& session, const std::string& group);

// The point that tells a property of a group, and of a contender.
std::string group_point(const std::string& group, const std::string& property);
std::string contender_point(const std::string& group, const std::string& contender,
                            const std::string& property);

// A name as it stands within those points, and back.
std::string escaped(const std::string& name);
std::string unescaped(const std::string& text);

} // namespace velmo::cli

#endif
