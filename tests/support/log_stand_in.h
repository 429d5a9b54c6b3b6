// What was logged, for tests. A program that contains log_stand_in.cpp has that
// CQuilp instead of the library's.
#ifndef VELMO_TESTS_SUPPORT_LOG_STAND_IN_H
#define VELMO_TESTS_SUPPORT_LOG_STAND_IN_H

#include <string>
#include <vector>

namespace velmo::tests {

// Every line logged since the last clearing, oldest first. Safe from any thread.
std::vector<std::string> logged_lines();
void clear_logged_lines();

} // namespace velmo::tests

#endif
