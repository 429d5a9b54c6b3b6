// How a command shows a value that it has got: its options, and what follows from them.
#ifndef VELMO_CLI_VALUE_OUTPUT_H
#define VELMO_CLI_VALUE_OUTPUT_H

#include <string>
#include <string_view>

#include <CLI/CLI.hpp>

#include "cli/session.h"
#include "cli/value.h"

namespace velmo::cli {

// Adds --as, the kind of a value.
void add_kind(CLI::App& app, std::string& kind);

class ValueOutput {
public:
    // Adds --as, --hex and --file.
    void declare(CLI::App& app);

    // Adds --as alone, for commands to which the others say what they are given.
    void declare_kind(CLI::App& app) { add_kind(app, kind); }

    const std::string& said_kind() const { return kind; } // "" when nothing is said
    bool is_to_file() const { return !file.empty(); }

    // The one value of a command: to the file; else as JSON, the value after what is in
    // the document already; else for a person, or bytes as they are for a program.
    // Throws Failure.
    void show(Session& session, Json document, Kind kind, std::string_view value) const;

    // One of many, on a line of its own. Throws Failure.
    void show_line(Session& session, Json document, Kind kind,
                   std::string_view value) const;

private:
    std::string kind, file;
    bool hex = false;
};

} // namespace velmo::cli

#endif
