// The options as CLI11 knows them.
#ifndef VELMO_SERVER_COMMAND_LINE_H
#define VELMO_SERVER_COMMAND_LINE_H

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "server/options.h"

namespace velmo::server {

// Reads one command line into its options. The defaults are theirs.
class CommandLine {
public:
    CommandLine();
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;

    // Throws CLI::ParseError.
    void parse(Arguments arguments);

    // Writes the help text, the version, or what is wrong; gives the exit status.
    int exit(const CLI::ParseError& error) const { return app.exit(error); }

    // The options that a file may hold, without dashes.
    std::vector<std::string> configurable() const;

    // Whether the command line has said something about this option.
    bool decides(const std::string& name) const;

    Options options;

private:
    void add_places();
    void add_operation();
    void add_limits();
    void add_bytes(const char* name, std::size_t& bytes, const char* description);
    void finish();

    CLI::App app{"The Velmo server. Without options it serves this host alone and "
                 "answers for naming itself.",
                 "velmod"};
    std::vector<std::string> listen;
    std::string metrics;
    bool no_unix = false;
    long long max_wait = options.limits.max_wait.count();
    long long lease = options.limits.lease.count();
};

} // namespace velmo::server

#endif
