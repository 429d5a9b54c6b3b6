// How a client of the matrix and the test that runs it take turns.
#ifndef VELMO_TESTS_MATRIX_DIALOGUE_H
#define VELMO_TESTS_MATRIX_DIALOGUE_H

#include <string>

namespace velmo::tests {

// What the client writes to its standard output when it has come to a point, each in a
// line of its own; it goes on when it has read a line.
inline const std::string used_server = "[dialogue] used the server";
inline const std::string missed_server = "[dialogue] missed the server";

} // namespace velmo::tests

#endif
