// What may come next on a command line.
#ifndef VELMO_CLI_COMPLETER_H
#define VELMO_CLI_COMPLETER_H

#include <string>
#include <vector>

#include "cli/session.h"

namespace velmo::cli {

struct Candidate {
    std::string word;
    std::string description;
};

// The words that the last of these may become, in their order; "" stands for one that is
// still to be begun. It follows the commands as they are, and asks the server for names of
// points, ports and the like: none of those when it does not answer. Names of files are
// none of its business. Throws nothing.
std::vector<Candidate> completions(const Session& session,
                                   const std::vector<std::string>& words);

} // namespace velmo::cli

#endif
