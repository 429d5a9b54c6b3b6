// From printf-style arguments to the text of one log line.
#ifndef VELMO_QUILP_LINE_TEXT_H
#define VELMO_QUILP_LINE_TEXT_H

#include <cstdarg>
#include <cstddef>
#include <string>
#include <string_view>

namespace velmo::quilp {

// The longest text of a line in bytes, the mark of a cut included.
constexpr std::size_t max_text = 8192;
constexpr std::string_view cut_mark = " [cut]";

// The text, safe to show on one line of a terminal: control characters, and bytes
// that are not UTF-8, are written as \n, \r, \t or \x1b. A longer text is cut
// between two characters and marked. Throws std::bad_alloc.
std::string printable(std::string_view text);

// The arguments as printf would print them, and then printable. A null format, and
// arguments that cannot be printed, give a text that says so. Throws
// std::bad_alloc; the caller calls va_end().
std::string line_text(const char* format, std::va_list arguments)
    __attribute__((format(printf, 1, 0)));

} // namespace velmo::quilp

#endif
