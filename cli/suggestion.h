// What somebody most likely meant.
#ifndef VELMO_CLI_SUGGESTION_H
#define VELMO_CLI_SUGGESTION_H

#include <string>
#include <vector>

namespace velmo::cli {

// The candidate nearest to a mistyped word; "" when none is near.
std::string nearest(const std::string& word, const std::vector<std::string>& candidates);

} // namespace velmo::cli

#endif
