// Completion of velmo's command line in shells.
#ifndef VELMO_CLI_COMPLETION_SCRIPTS_H
#define VELMO_CLI_COMPLETION_SCRIPTS_H

#include <string>

namespace velmo::cli {

// For "bash", "zsh" or "fish", to be read by it at its start. They ask velmo itself what
// may come next, so that they never differ from what it takes.
std::string completion_script(const std::string& shell);

} // namespace velmo::cli

#endif
