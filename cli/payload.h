// Bytes that a command line gives: as an argument, from a file, or on standard input.
#ifndef VELMO_CLI_PAYLOAD_H
#define VELMO_CLI_PAYLOAD_H

#include <string>

#include <CLI/CLI.hpp>

namespace velmo::cli {

class Payload {
public:
    // Adds an argument of that name, --hex and --file.
    void declare(CLI::App& app, const char* name, const char* description);

    bool is_argument() const { return !argument->empty(); } // "" counts as one
    bool is_file() const { return !file.empty(); }
    bool is_hex() const { return hex; }
    bool is_given() const { return is_argument() || is_file(); }

    // The argument's bytes; without one those of the file, or of standard input when
    // that is "-" or not given. With --hex what the digits mean. Throws Failure.
    std::string bytes() const;

private:
    CLI::Option* argument = nullptr;
    std::string text;
    std::string file;
    bool hex = false;
};

// All of a file, of standard input for "-". Throws Failure.
std::string read_all(const std::string& path);

} // namespace velmo::cli

#endif
