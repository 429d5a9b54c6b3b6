// Every export, each with how to call it and what has to come of it.
#ifndef VELMO_TESTS_FUZZ_EXPORTS_H
#define VELMO_TESTS_FUZZ_EXPORTS_H

#include <vector>

#include "tests/fuzz/scene.h"

namespace velmo::tests {

using Exercise = void (*)(Call& call);
using Exercises = std::vector<Exercise>;

Exercises general_exports(); // without a service of their own
Exercises plain_exports();   // those that hand nothing back but their result
Exercises list_exports();
Exercises packet_exports();
Exercises point_exports();

} // namespace velmo::tests

#endif
