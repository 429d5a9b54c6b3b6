// Manual pages, in the language of man(7).
#ifndef VELMO_CLI_MANUAL_H
#define VELMO_CLI_MANUAL_H

#include <string>

#include <CLI/CLI.hpp>

namespace velmo::cli {

// The page of a program with commands, as its help describes them.
std::string manual_of(const CLI::App& program);

// A page whose line "@OPTIONS@" is replaced by the options that a help text describes.
std::string with_options(const std::string& page, const std::string& help);

} // namespace velmo::cli

#endif
