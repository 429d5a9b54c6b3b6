// Texts for people and machines.
#ifndef VELMO_CLI_TEXT_H
#define VELMO_CLI_TEXT_H

#include <optional>
#include <string>
#include <string_view>

namespace velmo::cli {

std::string to_utf8(const wchar_t* text);

bool is_utf8(std::string_view text);

// Whether a person would read it as text: UTF-8 without control characters other than
// line ends and tabulators.
bool is_readable(std::string_view text);

// As it may go to a terminal: control characters and broken UTF-8 as "\x1b".
std::string harmless(std::string_view text);

// How many columns it takes, one for each character.
std::size_t width(std::string_view text);

// Whether it would be cut where a C string is wanted.
bool has_nul(std::string_view text);

std::string to_hex(std::string_view bytes);

// Pairs of hexadecimal digits, with blanks, line ends or ":" between pairs; none when it
// is anything else.
std::optional<std::string> from_hex(std::string_view text);

std::string in_quotes(std::string_view text);

// "1 point", "2 points".
std::string counted(std::size_t count, const std::string& thing);

} // namespace velmo::cli

#endif
